#include "reference_host/ssp/SsdReader.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/ssp/SsdConnections.hpp"
#include "reference_host/ssp/SsdWalker.hpp"

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
class SsdHandler : public SsdWalker {
public:
    SsdDocument take() noexcept { return std::move(m_document); }

protected:
    void enter(SsdElement element, std::string_view, const XmlAttributes& attributes,
               const XmlTag& tag) override
    {
        using enum SsdElement;
        switch (element) {
            case System:
            case Component:
                beginBlock(element, attributes);
                break;
            case Dictionary:
                noteDictionary(attributes);
                break;
            case Connector:
                addConnector(attributes);
                break;
            case Connection:
                addConnection(attributes, tag.line);
                break;
            default:
                break;
        }
    }

    void leave(SsdElement element, const XmlTag&) override
    {
        if (element == SsdElement::System) {
            m_connections.back().connect(*m_block, m_document.warnings);
            m_connections.pop_back();
        }
        if (element == SsdElement::System || element == SsdElement::Component) {
            m_block = m_block->parent();
        } else if (element == SsdElement::Description && m_document.model == nullptr) {
            throw diagramError("NoSystem", {});
        }
    }

private:
    void beginBlock(SsdElement element, const XmlAttributes& attributes)
    {
        const bool isSystem = element == SsdElement::System;
        if (m_block == nullptr) {
            beginModel(attributes);
        } else {
            m_block =
                &m_document.model->add(*m_block, requiredName(attributes, isSystem ? "System" : "Component"),
                                       isSystem ? BlockKind::System : BlockKind::Component);
        }
        m_block->setOrigin(origin());
        if (isSystem) {
            m_connections.emplace_back();
        }
    }

    void beginModel(const XmlAttributes& attributes)
    {
        if (m_document.model != nullptr) {
            throw diagramError("SecondSystem", {});
        }
        m_document.model = std::make_unique<Model>(requiredName(attributes, "System"));
        m_block = &m_document.model->root();
    }

    void noteDictionary(const XmlAttributes& attributes)
    {
        if (const char* name = attributes.find("name")) {
            m_connections.back().noteDictionary(toUtf16(name));
        }
    }

    void addConnector(const XmlAttributes& attributes)
    {
        const char* kind = attributes.find("kind");
        const std::string_view kindName = kind == nullptr ? "" : kind;
        m_block->addPort(kindName == "output"  ? PortKind::Output
                         : kindName == "input" ? PortKind::Input
                                               : PortKind::Other,
                         requiredName(attributes, "Connector"), origin());
    }

    void addConnection(const XmlAttributes& attributes, std::uint64_t line)
    {
        const auto text = [&attributes](std::string_view name) {
            const char* value = attributes.find(name);
            return value == nullptr ? std::u16string() : toUtf16(value);
        };
        m_connections.back().add(line, {{nullptr, text("startElement"), text("startConnector")},
                                        {nullptr, text("endElement"), text("endConnector")},
                                        origin()});
    }

    SsdDocument m_document;
    Block* m_block = nullptr;                   // the innermost block or system we are in
    std::vector<SsdConnections> m_connections;  // of the systems we are in, the innermost last
};

}  // namespace

SsdDocument readSsd(std::istream& in, const std::string& file, const SsdLimits& limits)
{
    SsdHandler handler;
    readXml(in, file, {limits.bytes, limits.depth}, handler);
    return handler.take();
}

SsdDocument readSsd(std::string_view document, const std::string& file, const SsdLimits& limits)
{
    SsdHandler handler;
    readXml(document, file, {limits.bytes, limits.depth}, handler);
    return handler.take();
}

}  // namespace reference_host
