#ifndef ZM_REFERENCE_HOST_SSP_XML_READER_HPP
#define ZM_REFERENCE_HOST_SSP_XML_READER_HPP

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace reference_host {

/// The attributes of one element, names as they are written (with their prefixes), values resolved.
class XmlAttributes {
public:
    /// A list of name, value, name, value … null, which must outlive this.
    explicit XmlAttributes(const char* const* list) noexcept : m_list(list) {}

    /// The value; null when there is no such attribute.
    const char* find(std::string_view name) const noexcept;

    template <class Visitor>
    void forEach(Visitor visit) const
    {
        for (const char* const* pair = m_list; *pair != nullptr; pair += 2) {
            visit(std::string_view(pair[0]), std::string_view(pair[1]));
        }
    }

private:
    const char* const* m_list;
};

/// Where a tag stands in the document, as UTF-8.
struct XmlTag {
    std::uint64_t line;  ///< 1-based, of its first character
    std::size_t begin;   ///< in bytes from the start of the document
    std::size_t end;     ///< after its ">"
};

/// Takes the elements of a document in order. What it throws ends the reading.
class XmlHandler {
public:
    XmlHandler() = default;
    XmlHandler(const XmlHandler&) = delete;
    XmlHandler& operator=(const XmlHandler&) = delete;
    virtual ~XmlHandler() = default;

    /// `element` with its prefix.
    virtual void begin(std::string_view element, const XmlAttributes& attributes, const XmlTag& tag) = 0;

    /// An element in one tag ("<a/>") has an end tag of no bytes behind that.
    virtual void end(const XmlTag& tag) = 0;
};

struct XmlLimits {
    std::size_t bytes;
    std::size_t depth;
};

/// Reads a document to its end, prefixes left as they are. A document that is not well-formed, has a
/// document type, exceeds a limit, or has what the handler refuses with a host error, is a host error
/// "InvalidDiagram" with file, line and reason. A stream that fails is "UnreadableFile".
void readXml(std::istream& in, const std::string& file, const XmlLimits& limits, XmlHandler& handler);
void readXml(std::string_view document, const std::string& file, const XmlLimits& limits,
             XmlHandler& handler);

}  // namespace reference_host

#endif
