#include "reference_host/ssp/SsdOutline.hpp"

#include "host/Text.hpp"
#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/SsdReader.hpp"

#include <algorithm>
#include <array>

namespace reference_host {

namespace {

constexpr std::uint32_t outermostScope = 0;

std::string_view localName(std::string_view name) noexcept
{
    return name.substr(name.find(':') + 1);
}

/// The system's own connectors have no element.
std::optional<std::u16string> elementName(const ConnectionEnd& end, const Block& system)
{
    if (end.element == &system) {
        return std::nullopt;
    }
    return end.element == nullptr ? end.elementName : end.element->name();
}

}  // namespace

std::vector<SsdAttribute> blockAttributes(const Block& block)
{
    return {{"name", block.name()}};
}

std::vector<SsdAttribute> connectorAttributes(const Port& port)
{
    return {{"name", port.name}};
}

std::vector<SsdAttribute> connectionAttributes(const Connection& connection, const Block& system)
{
    return {{"startElement", elementName(connection.start, system)},
            {"startConnector", connection.start.connector},
            {"endElement", elementName(connection.end, system)},
            {"endConnector", connection.end.connector}};
}

std::uint32_t positionInSystem(std::string_view localName) noexcept
{
    static constexpr std::array inOrder{
        std::string_view("Connectors"),        std::string_view("ElementGeometry"),
        std::string_view("ParameterBindings"), std::string_view("MetaData"),
        std::string_view("Signature"),         std::string_view("Elements"),
        std::string_view("Connections"),
    };
    const auto* const found = std::find(inOrder.begin(), inOrder.end(), localName);
    return static_cast<std::uint32_t>(found - inOrder.begin());  // what comes later need not be told apart
}

// ---- the model --------------------------------------------------------------------------------------

SsdOutline::SsdOutline(const Model& model, std::string_view document)
{
    constexpr std::uint32_t first = 1;
    note(model.root(), first);
    m_scopes.push_back({outermostScope, {{"ssd", std::string(ssdNamespace)}}});  // even if never declared
    readXml(document, "", {document.size(), SsdLimits().depth}, *this);
    if (m_met != m_borne) {
        throw fileError("ForeignDescription", {toUtf8(model.name())});
    }
}

const SsdNode* SsdOutline::nodeOf(const Block& block) const noexcept
{
    return block.origin() == 0 ? nullptr : &m_nodes[m_origins[block.origin()].node];
}

void SsdOutline::note(const Block& block, std::uint32_t origin)
{
    note(origin, Origin{.block = &block});
    for (const PortKind kind : {PortKind::Output, PortKind::Input, PortKind::Other}) {
        for (const Port& port : block.ports(kind)) {
            note(port.origin, Origin{.block = &block, .port = &port});
        }
    }
    for (const Connection& connection : block.connections()) {
        note(connection.origin, Origin{.block = &block, .connection = &connection});
    }
    for (const std::unique_ptr<Block>& child : block.children()) {
        note(*child, child->origin());
    }
}

void SsdOutline::note(std::uint32_t origin, const Origin& bearer)
{
    if (origin == 0) {
        return;
    }
    if (origin >= m_origins.size()) {
        m_origins.resize(std::size_t{origin} + 1);
    }
    m_origins[origin] = bearer;
    ++m_borne;
}

// ---- the document -----------------------------------------------------------------------------------

void SsdOutline::enter(SsdElement element, std::string_view name, const XmlAttributes& attributes,
                       const XmlTag& tag)
{
    const auto number = static_cast<std::uint32_t>(m_nodes.size());
    SsdNode node;
    node.element = element;
    node.position = positionInSystem(localName(name));
    node.begin = tag.begin;
    node.tagEnd = tag.end;
    if (number == 0) {
        const char* version = attributes.find("version");
        m_isFirstVersion = version == nullptr || std::string_view(version).starts_with("1.");
        node.scope = scopeInside(outermostScope, attributes);
    } else {
        node.parent = m_open.back();
        node.scope = scopeInside(m_nodes[node.parent].scope, attributes);
        std::uint32_t& last = m_lastChild.back();
        (last == 0 ? m_nodes[node.parent].firstChild : m_nodes[last].next) = number;
        last = number;
    }
    m_nodes.push_back(node);
    m_open.push_back(number);
    m_lastChild.push_back(0);
    meet(m_nodes.back(), attributes);
}

void SsdOutline::leave(SsdElement, const XmlTag& tag)
{
    SsdNode& node = m_nodes[m_open.back()];
    node.contentEnd = tag.begin;
    node.end = tag.end;
    m_open.pop_back();
    m_lastChild.pop_back();
}

void SsdOutline::meet(SsdNode& node, const XmlAttributes& attributes)
{
    using enum SsdElement;
    const bool isBlock = node.element == System || node.element == Component;
    if (!isBlock && node.element != Connector && node.element != Connection) {
        return;
    }
    node.origin = origin();
    const Origin bearer = node.origin < m_origins.size() ? m_origins[node.origin] : Origin();
    const bool isInBlock = bearer.block != nullptr &&
                           (isBlock || m_nodes[m_nodes[node.parent].parent].origin == bearer.block->origin());
    const bool isAlike = (bearer.port != nullptr) == (node.element == Connector) &&
                         (bearer.connection != nullptr) == (node.element == Connection);
    node.isGone = !isInBlock || !isAlike;
    if (node.isGone) {
        return;
    }
    ++m_met;
    m_origins[node.origin].node = static_cast<std::uint32_t>(m_nodes.size() - 1);
    const std::vector<SsdAttribute> meant = isBlock ? blockAttributes(*bearer.block)
                                            : node.element == Connector
                                                ? connectorAttributes(*bearer.port)
                                                : connectionAttributes(*bearer.connection, *bearer.block);
    for (std::size_t i = 0; i < meant.size(); ++i) {
        const char* value = attributes.find(meant[i].name);
        node.isChanged[i] = toUtf16(value == nullptr ? "" : value) != meant[i].value.value_or(u"");
    }
}

// ---- namespaces -------------------------------------------------------------------------------------

std::uint32_t SsdOutline::scopeInside(std::uint32_t around, const XmlAttributes& attributes)
{
    Scope scope{around, {}};
    attributes.forEach([&scope](std::string_view name, std::string_view uri) {
        if (const auto prefix = declaredPrefix(name)) {
            scope.declared.emplace_back(*prefix, uri);
        }
    });
    if (scope.declared.empty()) {
        return around;
    }
    m_scopes.push_back(std::move(scope));
    return static_cast<std::uint32_t>(m_scopes.size() - 1);
}

const std::string* SsdOutline::uriOf(const std::string& prefix, std::uint32_t scope) const
{
    for (;; scope = m_scopes[scope].around) {
        for (const auto& [declared, uri] : m_scopes[scope].declared) {
            if (declared == prefix) {
                return &uri;
            }
        }
        if (scope == outermostScope) {
            return nullptr;
        }
    }
}

std::vector<std::pair<std::string, std::string>> SsdOutline::missingDeclarations(const SsdNode& node,
                                                                                 std::uint32_t scope) const
{
    std::vector<std::pair<std::string, std::string>> missing;
    const std::uint32_t home = m_nodes[node.parent].scope;
    if (home == scope) {
        return missing;
    }
    std::vector<std::string> prefixes{std::string()};
    for (std::uint32_t around = home; around != outermostScope; around = m_scopes[around].around) {
        for (const auto& [prefix, uri] : m_scopes[around].declared) {
            prefixes.push_back(prefix);
        }
    }
    prefixes.emplace_back("ssd");
    std::sort(prefixes.begin(), prefixes.end());
    prefixes.erase(std::unique(prefixes.begin(), prefixes.end()), prefixes.end());
    static const std::string none;
    const auto meaning = [this](const std::string& prefix, std::uint32_t in) -> const std::string& {
        const std::string* uri = uriOf(prefix, in);
        return uri == nullptr ? none : *uri;
    };
    const auto declaresItself = [&](const std::string& prefix) {
        const auto& own = m_scopes[node.scope].declared;
        return node.scope != home &&
               std::any_of(own.begin(), own.end(), [&](const auto& entry) { return entry.first == prefix; });
    };
    for (const std::string& prefix : prefixes) {
        if (meaning(prefix, home) != meaning(prefix, scope) && !declaresItself(prefix)) {
            missing.emplace_back(prefix, meaning(prefix, home));
        }
    }
    return missing;
}

}  // namespace reference_host
