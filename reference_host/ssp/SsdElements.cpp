#include "reference_host/ssp/SsdElements.hpp"

#include "host/Text.hpp"
#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace reference_host {

namespace {

struct Rule {
    SsdElement inside;
    std::string_view name;
    SsdElement meaning;
};

/// Whether a text begins with "%2F" or "%3A", or with one of them that has "25" after its "%", once or more.
bool isEscape(std::u16string_view text) noexcept
{
    if (!text.starts_with(u'%')) {
        return false;
    }
    text.remove_prefix(1);
    while (text.starts_with(u"25")) {
        text.remove_prefix(2);
    }
    return text.starts_with(u"2F") || text.starts_with(u"3A");
}

std::string codeText(char16_t unit)
{
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "U+%04X", static_cast<unsigned>(unit));
    return code.data();
}

}  // namespace

bool isDescriptionNamespace(std::string_view uri, std::string_view prefix) noexcept
{
    // The standard kept the first URI for its version 2.0; the second is the one that its pattern would give.
    return uri == ssdNamespace || uri == "http://ssp-standard.org/SSP2/SystemStructureDescription" ||
           (uri.empty() && prefix == "ssd");
}

SsdElement ssdElement(SsdElement inside, std::string_view name) noexcept
{
    using enum SsdElement;
    static constexpr std::array rules{
        Rule{PassedOver, "SystemStructureDescription", Description},
        Rule{Description, "System", System},
        Rule{System, "Connectors", Connectors},
        Rule{System, "Elements", Elements},
        Rule{System, "Connections", Connections},
        Rule{Elements, "Component", Component},
        Rule{Elements, "System", System},
        Rule{Elements, "SignalDictionaryReference", Dictionary},
        Rule{Component, "Connectors", Connectors},
        Rule{Connectors, "Connector", Connector},
        Rule{Connections, "Connection", Connection},
    };
    const auto* const found = std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) {
        return rule.inside == inside && rule.name == name;
    });
    return found == rules.end() ? PassedOver : found->meaning;
}

int ssdPosition(std::string_view name) noexcept
{
    static constexpr std::array<std::string_view, 7> inOrder{
        "Connectors", "ElementGeometry", "ParameterBindings", "MetaData",
        "Signature",  "Elements",        "Connections",
    };
    return static_cast<int>(std::find(inOrder.begin(), inOrder.end(), name) - inOrder.begin());
}

PortKind portKind(std::string_view kindAttribute) noexcept
{
    return kindAttribute == "output"  ? PortKind::Output
           : kindAttribute == "input" ? PortKind::Input
                                      : PortKind::Other;
}

std::u16string blockNameFromFile(std::string_view name)
{
    const std::u16string text = utf16FromUtf8(name);
    std::u16string shown;
    for (std::u16string_view rest = text; !rest.empty(); rest.remove_prefix(1)) {
        shown += rest.front() == u'/'   ? u"%2F"
                 : rest.front() == u':' ? u"%3A"
                 : isEscape(rest)       ? u"%25"
                                        : rest.substr(0, 1);
    }
    return shown;
}

std::u16string blockNameForFile(const std::u16string& name)
{
    std::u16string text;
    for (std::u16string_view rest = name; !rest.empty();) {
        constexpr std::size_t escapeLength = 3;
        const bool isEscaped = isEscape(rest);
        text += !isEscaped                 ? rest.front()
                : rest.starts_with(u"%2F") ? u'/'
                : rest.starts_with(u"%3A") ? u':'
                                           : u'%';
        rest.remove_prefix(isEscaped ? escapeLength : 1);
    }
    return text;
}

std::string attributeText(const std::u16string& name)
{
    const auto bad = std::find_if(name.begin(), name.end(), [](char16_t unit) {
        return (unit < u' ' && unit != u'\t' && unit != u'\n' && unit != u'\r') || unit >= 0xFFFE;
    });
    const std::size_t place = std::min(static_cast<std::size_t>(bad - name.begin()), unpairedSurrogate(name));
    if (place < name.size()) {
        throw fileError("UnwritableName", {toUtf8(name), std::uint64_t{place + 1}, codeText(name[place])});
    }
    return utf8FromUtf16(name);
}

}  // namespace reference_host
