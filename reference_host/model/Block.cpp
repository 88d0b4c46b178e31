#include "reference_host/model/Block.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/support/ChangeCount.hpp"

#include <algorithm>
#include <utility>

namespace reference_host {

Block::Block(Model& model, Block* parent, BlockKind kind, std::u16string name)
    : m_model(&model), m_parent(parent), m_kind(kind), m_name(std::move(name))
{
}

Block::~Block() = default;

bool Block::isInside(const Block& other) const noexcept
{
    const Block* around = m_parent;
    while (around != nullptr && around != &other) {
        around = around->m_parent;
    }
    return around != nullptr;
}

std::u16string Block::path() const
{
    std::vector<const Block*> parts;
    for (const Block* part = this; part != nullptr; part = part->m_parent) {
        parts.push_back(part);
    }
    std::u16string path = parts.back()->m_name;
    for (auto part = parts.rbegin() + 1; part != parts.rend(); ++part) {
        path += u'/';
        path += (*part)->m_name;
    }
    return path;
}

std::string Block::zid() const
{
    if (m_parent == nullptr) {
        return {};
    }
    const Block* root = m_parent;
    while (root->m_parent != nullptr) {
        root = root->m_parent;
    }
    return toUtf8(root->m_name) + ':' + std::to_string(m_number);  // the model has the name of its root
}

void Block::addPort(PortKind kind, std::u16string name)
{
    m_ports[static_cast<std::size_t>(kind)].push_back({std::move(name)});
    ChangeCount::diagramChanged();
}

void Block::setPorts(PortKind kind, std::vector<Port> ports)
{
    m_ports[static_cast<std::size_t>(kind)] = std::move(ports);
    ChangeCount::diagramChanged();
}

Block* Block::child(std::u16string_view name) const
{
    const auto found = m_childrenByName.find(name);
    return found == m_childrenByName.end() ? nullptr : found->second;
}

void Block::addConnection(Connection connection)
{
    m_connections.push_back(std::move(connection));
    ChangeCount::diagramChanged();
}

void Block::setConnections(std::vector<Connection> connections)
{
    m_connections = std::move(connections);
    ChangeCount::diagramChanged();
}

void Block::setParameter(const std::u16string& name, std::u16string value)
{
    m_parameters.insert_or_assign(name, std::move(value));
}

void Block::removeParameter(const std::u16string& name)
{
    m_parameters.erase(name);
}

Chart& Block::addChart(std::u16string chartName)
{
    if (m_parent == nullptr || m_chart != nullptr) {
        const char* reason = m_parent == nullptr ? "it is the model itself" : "it carries one already";
        throw diagramError("InvalidChartBlock", {toUtf8(path()), std::string(reason)});
    }
    m_chart = std::make_unique<Chart>(std::move(chartName));
    ChangeCount::diagramChanged();
    return *m_chart;
}

void Block::adopt(std::unique_ptr<Block> child, std::size_t position)
{
    const auto place = m_children.begin() + static_cast<std::ptrdiff_t>(position);
    Block& adopted = **m_children.insert(place, std::move(child));
    adopted.m_parent = this;
    m_childrenByName.emplace(adopted.m_name, &adopted);
    ChangeCount::diagramChanged();
}

std::unique_ptr<Block> Block::release(const Block& child)
{
    std::erase_if(m_connections, [&child](const Connection& connection) {
        return connection.start.element == &child || connection.end.element == &child;
    });
    m_childrenByName.erase(child.m_name);
    ChangeCount::diagramChanged();
    const auto place = std::find_if(m_children.begin(), m_children.end(),
                                    [&child](const auto& owned) { return owned.get() == &child; });
    std::unique_ptr<Block> released = std::move(*place);
    m_children.erase(place);
    return released;
}

void Block::rename(std::u16string name)
{
    ChangeCount::diagramChanged();
    if (m_parent == nullptr) {
        m_name = std::move(name);
        return;
    }
    auto entry = m_parent->m_childrenByName.extract(m_name);
    m_name = std::move(name);
    entry.key() = m_name;
    m_parent->m_childrenByName.insert(std::move(entry));
}

}  // namespace reference_host
