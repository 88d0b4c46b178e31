#include "reference_host/ssp/XmlNamespaces.hpp"

namespace reference_host {

namespace {

/// The standard kept the first one for its version 2.0; the second is what its pattern would give.
bool isDescriptionUri(std::string_view uri) noexcept
{
    return uri == ssdNamespace || uri == "http://ssp-standard.org/SSP2/SystemStructureDescription";
}

}  // namespace

std::optional<std::string_view> declaredPrefix(std::string_view attribute) noexcept
{
    constexpr std::string_view declaration = "xmlns";
    if (attribute == declaration) {
        return std::string_view();
    }
    if (attribute.starts_with("xmlns:")) {
        return attribute.substr(declaration.size() + 1);
    }
    return std::nullopt;
}

void XmlNamespaces::enter(const XmlAttributes& attributes)
{
    std::vector<std::string> declared;
    attributes.forEach([&](std::string_view name, std::string_view uri) {
        if (const auto prefix = declaredPrefix(name)) {
            declared.emplace_back(*prefix);
            m_meanings[declared.back()].push_back(isDescriptionUri(uri));  // makes the prefix known
        }
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
