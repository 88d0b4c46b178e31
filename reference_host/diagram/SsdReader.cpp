#include "reference_host/diagram/SsdReader.hpp"

#include "host/Text.hpp"
#include "reference_host/diagram/DiagramErrors.hpp"
#include "reference_host/diagram/SsdConnections.hpp"
#include "reference_host/diagram/XmlNamespaces.hpp"
#include "reference_host/diagram/XmlReader.hpp"

#include <array>
#include <string_view>
#include <utility>

namespace reference_host {

namespace {

std::u16string requiredName(const XmlAttributes& attributes, std::string_view element)
{
    const char* name = attributes.find("name");
    if (name == nullptr) {
        throw diagramError("NameMissing", {std::string(element)});
    }
    return toUtf16(name);
}

/// Builds the model while the elements pass by.
class SsdHandler : public XmlHandler {
public:
    void begin(std::string_view element, const XmlAttributes& attributes, std::uint64_t line) override
    {
        if (m_skipped > 0) {
            ++m_skipped;
            return;
        }
        m_namespaces.enter(attributes);
        const Rule* rule = findRule(m_namespaces.descriptionElement(element));
        if (rule == nullptr) {
            m_namespaces.leave();
            skip(element);
            return;
        }
        m_places.push_back(rule->enters);
        if (rule->action != nullptr) {
            (this->*rule->action)(attributes, line);
        }
    }

    void end() override
    {
        if (m_skipped > 0) {
            --m_skipped;
            return;
        }
        const Place place = m_places.back();
        m_places.pop_back();
        m_namespaces.leave();
        if (place == Place::System || place == Place::Component) {
            endBlock(place);
        } else if (place == Place::Description && m_document.model == nullptr) {
            throw diagramError("NoSystem", {});
        }
    }

    SsdDocument take() noexcept { return std::move(m_document); }

private:
    enum class Place { Document, Description, System, Elements, Component, Connectors, Connections, Leaf };
    using Action = void (SsdHandler::*)(const XmlAttributes&, std::uint64_t);

    /// What an element means where it stands.
    struct Rule {
        Place inside;
        std::string_view element;
        Place enters;
        Action action;
    };

    const Rule* findRule(std::string_view element) const noexcept
    {
        using enum Place;
        static constexpr std::array rules{
            Rule{Document, "SystemStructureDescription", Description, nullptr},
            Rule{Description, "System", System, &SsdHandler::beginModel},
            Rule{System, "Connectors", Connectors, nullptr},
            Rule{System, "Elements", Elements, nullptr},
            Rule{System, "Connections", Connections, nullptr},
            Rule{Elements, "Component", Component, &SsdHandler::beginComponent},
            Rule{Elements, "System", System, &SsdHandler::beginSystem},
            Rule{Elements, "SignalDictionaryReference", Leaf, &SsdHandler::noteDictionary},
            Rule{Component, "Connectors", Connectors, nullptr},
            Rule{Connectors, "Connector", Leaf, &SsdHandler::addConnector},
            Rule{Connections, "Connection", Leaf, &SsdHandler::addConnection},
        };
        for (const Rule& rule : rules) {
            if (rule.inside == m_places.back() && rule.element == element) {
                return &rule;
            }
        }
        return nullptr;
    }

    void skip(std::string_view element)
    {
        if (m_places.back() == Place::Document) {
            throw diagramError("NotADescription", {std::string(element)});
        }
        m_skipped = 1;
    }

    void beginModel(const XmlAttributes& attributes, std::uint64_t)
    {
        if (m_document.model != nullptr) {
            throw diagramError("SecondSystem", {});
        }
        m_document.model = std::make_unique<Model>(requiredName(attributes, "System"));
        m_block = &m_document.model->root();
        m_connections.emplace_back();
    }

    void beginComponent(const XmlAttributes& attributes, std::uint64_t)
    {
        m_block =
            &m_document.model->add(*m_block, requiredName(attributes, "Component"), BlockKind::Component);
    }

    void beginSystem(const XmlAttributes& attributes, std::uint64_t)
    {
        m_block = &m_document.model->add(*m_block, requiredName(attributes, "System"), BlockKind::System);
        m_connections.emplace_back();
    }

    void endBlock(Place place)
    {
        if (place == Place::System) {
            m_connections.back().connect(*m_block, m_document.warnings);
            m_connections.pop_back();
        }
        m_block = m_block->parent();
    }

    void noteDictionary(const XmlAttributes& attributes, std::uint64_t)
    {
        if (const char* name = attributes.find("name")) {
            m_connections.back().noteDictionary(toUtf16(name));
        }
    }

    void addConnector(const XmlAttributes& attributes, std::uint64_t)
    {
        const char* kind = attributes.find("kind");
        const std::string_view kindName = kind == nullptr ? "" : kind;
        m_block->addPort(kindName == "output"  ? PortKind::Output
                         : kindName == "input" ? PortKind::Input
                                               : PortKind::Other,
                         requiredName(attributes, "Connector"));
    }

    void addConnection(const XmlAttributes& attributes, std::uint64_t line)
    {
        const auto text = [&attributes](std::string_view name) {
            const char* value = attributes.find(name);
            return value == nullptr ? std::u16string() : toUtf16(value);
        };
        m_connections.back().add(line, {nullptr, text("startElement"), text("startConnector")},
                                 {nullptr, text("endElement"), text("endConnector")});
    }

    SsdDocument m_document;
    Block* m_block = nullptr;                   // the innermost block or outermost system we are in
    std::vector<SsdConnections> m_connections;  // of the systems we are in, the innermost last
    XmlNamespaces m_namespaces;
    std::vector<Place> m_places{Place::Document};
    std::size_t m_skipped = 0;  // how deep we are in an element that is passed over
};

}  // namespace

SsdDocument readSsd(std::istream& in, const std::string& file, const SsdLimits& limits)
{
    SsdHandler handler;
    readXml(in, file, {limits.bytes, limits.depth}, handler);
    return handler.take();
}

}  // namespace reference_host
