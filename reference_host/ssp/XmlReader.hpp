#ifndef ZM_REFERENCE_HOST_SSP_XML_READER_HPP
#define ZM_REFERENCE_HOST_SSP_XML_READER_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace reference_host {

/// A start tag. All texts are UTF-8 and valid while the handler is called.
struct XmlStartTag {
    std::string_view name;    ///< without the prefix
    std::string_view prefix;  ///< empty for none
    std::string_view uri;     ///< of the namespace; empty for none and for an undeclared prefix
    std::uint64_t line = 0;   ///< 1-based, of the end of the tag

    /// The value of an attribute without prefix; none if the tag does not have it.
    std::optional<std::string_view> attribute(std::string_view attributeName) const noexcept;

    /// Five pointers for each attribute, as libxml2 gives them: name, prefix, URI, value, end of the value.
    std::span<const unsigned char* const> attributes;
};

/// Gets the elements of a document in order. An exception ends the reading.
class XmlHandler {
public:
    XmlHandler() = default;
    XmlHandler(const XmlHandler&) = delete;
    XmlHandler& operator=(const XmlHandler&) = delete;
    virtual ~XmlHandler() = default;

    virtual void begin(const XmlStartTag& tag) = 0;
    virtual void end() = 0;
};

struct XmlLimits {
    std::size_t bytes;
    std::size_t depth;       ///< of nested elements; libxml2 takes 256
    std::size_t nodes;       ///< elements, texts, comments and processing instructions
    std::size_t attributes;  ///< namespace declarations included
};

/// Reads a document in any encoding that libxml2 knows, without building a tree. An attribute may have
/// 10,000,000 bytes. A document that is not well-formed, has a document type, exceeds a limit, or is refused
/// by the handler with a host error, is the host error "InvalidDiagram" (file, line, reason).
void readXml(std::string_view document, const std::string& file, const XmlLimits& limits,
             XmlHandler& handler);

}  // namespace reference_host

#endif
