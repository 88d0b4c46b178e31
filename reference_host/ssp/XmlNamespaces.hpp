#ifndef ZM_REFERENCE_HOST_SSP_XML_NAMESPACES_HPP
#define ZM_REFERENCE_HOST_SSP_XML_NAMESPACES_HPP

#include "reference_host/ssp/XmlReader.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace reference_host {

inline constexpr std::string_view ssdNamespace = "http://ssp-standard.org/SSP1/SystemStructureDescription";

/// The prefix that an attribute of this name declares, empty for the default namespace; none when the
/// attribute is no declaration.
std::optional<std::string_view> declaredPrefix(std::string_view attribute) noexcept;

/// Which prefixes stand for the namespace of system structure descriptions, element by element. The
/// parser's own namespace mode would refuse documents that use a prefix which they never declare.
class XmlNamespaces {
public:
    /// Enters and leaves an element, whose declarations hold for itself and what is inside it.
    void enter(const XmlAttributes& attributes);
    void leave();

    /// The name without its prefix when the element belongs to a system structure description;
    /// otherwise empty.
    std::string_view descriptionElement(std::string_view qualifiedName) const;

private:
    bool isDescription(std::string_view prefix) const;

    std::unordered_map<std::string, std::vector<bool>> m_meanings;  // by prefix, the innermost last
    std::vector<std::vector<std::string>> m_declared;               // by element, the innermost last
};

}  // namespace reference_host

#endif
