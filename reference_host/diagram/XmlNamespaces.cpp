#include "reference_host/diagram/XmlNamespaces.hpp"

#include <utility>

namespace reference_host {

namespace {

/// The standard kept the first one for its version 2.0; the second is what its pattern would give.
/// use.
bool isDescriptionUri(std::string_view uri) noexcept
{
    return uri == "http://ssp-standard.org/SSP1/SystemStructureDescription" ||
           uri == "http://ssp-standard.org/SSP2/SystemStructureDescription";
}

}  // namespace

void XmlNamespaces::enter(const XmlAttributes& attributes)
{
    std::vector<std::string> declared;
    attributes.forEach([&](std::string_view name, std::string_view uri) {
        constexpr std::string_view declaration = "xmlns";
        if (name != declaration && !name.starts_with("xmlns:")) {
            return;
        }
        std::string prefix(name.substr(name == declaration ? name.size() : declaration.size() + 1));
        m_meanings[prefix].push_back(isDescriptionUri(uri));  // makes the prefix known
        declared.push_back(std::move(prefix));
    });
    m_declared.push_back(std::move(declared));
}

void XmlNamespaces::leave()
{
    for (const std::string& prefix : m_declared.back()) {
        const auto meaning = m_meanings.find(prefix);
        meaning->second.pop_back();
        if (meaning->second.empty()) {
            m_meanings.erase(meaning);
        }
    }
    m_declared.pop_back();
}

std::string_view XmlNamespaces::descriptionElement(std::string_view qualifiedName) const
{
    const std::size_t separator = qualifiedName.find(':');
    const bool hasPrefix = separator != std::string_view::npos;
    const std::string_view prefix = hasPrefix ? qualifiedName.substr(0, separator) : std::string_view();
    const std::string_view local = hasPrefix ? qualifiedName.substr(separator + 1) : qualifiedName;
    return isDescription(prefix) ? local : std::string_view();
}

bool XmlNamespaces::isDescription(std::string_view prefix) const
{
    const auto meaning = m_meanings.find(std::string(prefix));
    return meaning == m_meanings.end() ? prefix == "ssd" : meaning->second.back();
}

}  // namespace reference_host
