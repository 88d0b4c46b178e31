#include "reference_host/ssp/SsdReader.hpp"

#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/ssp/SsdConnections.hpp"
#include "reference_host/ssp/SsdElements.hpp"
#include "reference_host/ssp/XmlReader.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <utility>

namespace reference_host {

namespace {

std::string_view requiredName(const XmlStartTag& tag)
{
    const auto name = tag.attribute("name");
    if (!name) {
        throw diagramError("NameMissing", {std::string(tag.name)});
    }
    return *name;
}

void countUpTo(std::size_t& count, std::size_t limit, const char* what)
{
    if (++count > limit) {
        throw diagramError("TooMany", {std::string(what), std::uint64_t{limit}});
    }
}

/// Builds the model while the elements pass by.
class SsdHandler : public XmlHandler {
public:
    explicit SsdHandler(const SsdLimits& limits) noexcept : m_limits(limits) {}

    SsdDocument take() noexcept { return std::move(m_document); }

    void begin(const XmlStartTag& tag) override
    {
        using enum SsdElement;
        const SsdElement inside = m_open.empty() ? PassedOver : m_open.back();
        const bool isPassedOver =
            (inside == PassedOver && !m_open.empty()) || !isDescriptionNamespace(tag.uri, tag.prefix);
        const SsdElement element = isPassedOver ? PassedOver : ssdElement(inside, tag.name);
        if (element == PassedOver && m_open.empty()) {
            std::string prefix = tag.prefix.empty() ? "" : std::string(tag.prefix) + ':';
            throw diagramError("NotADescription", {prefix.append(tag.name)});
        }
        m_open.push_back(element);
        enter(element, tag);
    }

    void end() override
    {
        const SsdElement element = m_open.back();
        m_open.pop_back();
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
    void enter(SsdElement element, const XmlStartTag& tag)
    {
        using enum SsdElement;
        switch (element) {
            case System:
                beginBlock(tag, BlockKind::System);
                m_connections.emplace_back();
                break;
            case Component:
                beginBlock(tag, BlockKind::Component);
                break;
            case Dictionary:
                if (const auto name = tag.attribute("name")) {
                    m_connections.back().noteDictionary(blockNameFromFile(*name));
                }
                break;
            case Connector:
                m_block->addPort(portKind(tag.attribute("kind").value_or("")),
                                 utf16FromUtf8(requiredName(tag)));
                break;
            case Connection:
                countUpTo(m_connectionCount, m_limits.connections, "connections");
                m_connections.back().add(tag.line, connectionOf(tag));
                break;
            default:
                break;
        }
    }

    void beginBlock(const XmlStartTag& tag, BlockKind kind)
    {
        std::u16string name = blockNameFromFile(requiredName(tag));
        countUpTo(m_blockCount, m_limits.blocks, "blocks");
        if (m_block != nullptr) {
            m_block = &m_document.model->add(*m_block, std::move(name), kind);
            return;
        }
        if (m_document.model != nullptr) {
            throw diagramError("SecondSystem", {});
        }
        m_document.model = std::make_unique<Model>(std::move(name));
        m_block = &m_document.model->root();
    }

    static Connection connectionOf(const XmlStartTag& tag)
    {
        const auto text = [&tag](const char* name) { return tag.attribute(name).value_or(""); };
        return {{nullptr, blockNameFromFile(text("startElement")), utf16FromUtf8(text("startConnector"))},
                {nullptr, blockNameFromFile(text("endElement")), utf16FromUtf8(text("endConnector"))}};
    }

    const SsdLimits& m_limits;
    SsdDocument m_document;
    std::vector<SsdElement> m_open;             // the innermost last
    Block* m_block = nullptr;                   // the innermost block or system
    std::vector<SsdConnections> m_connections;  // of the open systems, the innermost last
    std::size_t m_blockCount = 0;
    std::size_t m_connectionCount = 0;
};

}  // namespace

SsdDocument readSsd(std::string_view document, const std::string& file, const SsdLimits& limits)
{
    SsdHandler handler(limits);
    readXml(document, file, {limits.bytes, limits.depth, limits.nodes, limits.attributes}, handler);
    return handler.take();
}

}  // namespace reference_host
