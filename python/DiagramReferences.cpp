#include "python/DiagramReferences.hpp"

namespace zmhost {

using reference_host::Block;
using reference_host::Model;
using reference_host::PortKind;

namespace {

ConnectionEnd connectionEnd(const BlockReference& system, const reference_host::ConnectionEnd& end)
{
    if (end.element == nullptr) {
        return {std::nullopt, end.elementName, end.connector};
    }
    Block* element =
        end.element == system.block ? system.block : system.model->findByNumber(end.element->number());
    return {reference(system.model, element), end.element->name(), end.connector};
}

}  // namespace

std::optional<BlockReference> reference(const std::shared_ptr<Model>& model, Block* block)
{
    return block == nullptr ? std::nullopt : std::optional(BlockReference{model, block});
}

std::vector<BlockReference> references(const std::shared_ptr<Model>& model, const std::vector<Block*>& blocks)
{
    std::vector<BlockReference> all;
    all.reserve(blocks.size());
    for (Block* block : blocks) {
        all.push_back({model, block});
    }
    return all;
}

std::vector<BlockReference> childrenOf(const BlockReference& system)
{
    std::vector<BlockReference> children;
    for (const std::unique_ptr<Block>& child : system->children()) {
        children.push_back({system.model, child.get()});
    }
    return children;
}

std::vector<Connection> connectionsOf(const BlockReference& system)
{
    std::vector<Connection> connections;
    for (const reference_host::Connection& connection : system->connections()) {
        connections.push_back(
            {connectionEnd(system, connection.start), connectionEnd(system, connection.end)});
    }
    return connections;
}

std::optional<ChartReference> chartOf(const BlockReference& block)
{
    return block->chart() == nullptr ? std::nullopt : std::optional(ChartReference{block});
}

std::vector<PortReference> portsOf(const BlockReference& block, PortKind kind)
{
    std::vector<PortReference> ports;
    addPorts(ports, block, kind);
    return ports;
}

void addPorts(std::vector<PortReference>& ports, const BlockReference& block, PortKind kind)
{
    for (std::size_t i = 0; i < block->ports(kind).size(); ++i) {
        ports.push_back({block, kind, i});
    }
}

}  // namespace zmhost
