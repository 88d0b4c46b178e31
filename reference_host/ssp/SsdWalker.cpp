#include "reference_host/ssp/SsdWalker.hpp"

#include "reference_host/model/DiagramErrors.hpp"

#include <array>
#include <string>

namespace reference_host {

namespace {

/// What an element means where it stands. The outermost one stands inside nothing that we know.
struct Rule {
    SsdElement inside;
    std::string_view name;
    SsdElement meaning;
};

SsdElement meaningOf(SsdElement inside, std::string_view name) noexcept
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
    for (const Rule& rule : rules) {
        if (rule.inside == inside && rule.name == name) {
            return rule.meaning;
        }
    }
    return PassedOver;
}

bool isNumbered(SsdElement element) noexcept
{
    using enum SsdElement;
    return element == System || element == Component || element == Connector || element == Connection;
}

}  // namespace

void SsdWalker::begin(std::string_view element, const XmlAttributes& attributes, const XmlTag& tag)
{
    if (m_skipped > 0) {
        ++m_skipped;
        return;
    }
    m_namespaces.enter(attributes);
    const SsdElement inside = m_open.empty() ? SsdElement::PassedOver : m_open.back();
    const SsdElement meaning = meaningOf(inside, m_namespaces.descriptionElement(element));
    if (meaning != SsdElement::PassedOver) {
        m_open.push_back(meaning);
        m_origin += isNumbered(meaning) ? 1U : 0U;
    } else if (m_open.empty()) {
        throw diagramError("NotADescription", {std::string(element)});
    } else {
        m_namespaces.leave();
        m_skipped = 1;
    }
    enter(meaning, element, attributes, tag);
}

void SsdWalker::end(const XmlTag& tag)
{
    if (m_skipped > 0) {
        if (--m_skipped == 0) {
            leave(SsdElement::PassedOver, tag);
        }
        return;
    }
    const SsdElement element = m_open.back();
    m_open.pop_back();
    m_namespaces.leave();
    leave(element, tag);
}

}  // namespace reference_host
