#include "simulation/PortGraph.hpp"

#include <algorithm>

namespace simulation {

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::Connection;
using reference_host::Port;
using reference_host::PortKind;

namespace {

std::optional<std::size_t> indexOf(const Block& block, PortKind kind, const std::u16string& name)
{
    const auto& ports = block.ports(kind);
    const auto found =
        std::find_if(ports.begin(), ports.end(), [&](const Port& port) { return port.name == name; });
    return found == ports.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(found - ports.begin()));
}

}  // namespace

std::size_t PortGraph::EndHash::operator()(const End& end) const noexcept
{
    constexpr std::size_t factor = 31;
    const std::hash<const Block*> ofBlock;
    return (ofBlock(end.system) * factor + ofBlock(end.element)) * factor +
           std::hash<std::u16string>()(end.connector);
}

PortGraph::PortGraph(const reference_host::Model& model)
{
    const auto add = [this](const Block& system) {
        for (const Connection& connection : system.connections()) {
            if (connection.start.element != nullptr && connection.end.element != nullptr) {
                m_starts.try_emplace({&system, connection.end.element, connection.end.connector},
                                     End{&system, connection.start.element, connection.start.connector});
            }
        }
    };
    add(model.root());
    for (const Block* block : model.blocks()) {
        add(*block);
    }
}

std::optional<PortGraph::End> PortGraph::startOf(const End& end) const
{
    const auto found = m_starts.find(end);
    return found == m_starts.end() ? std::nullopt : std::optional(found->second);
}

std::optional<OutputPort> PortGraph::originOfOutput(const OutputPort& port,
                                                    const IsComputed& isComputed) const
{
    if (isComputed(port)) {
        return port;
    }
    const auto& ports = port.block->ports(PortKind::Output);
    if (port.block->kind() != BlockKind::System || port.index >= ports.size()) {
        return std::nullopt;
    }
    return follow(startOf({port.block, port.block, ports[port.index].name}), isComputed);
}

std::optional<OutputPort> PortGraph::originOfInput(const Block& block, std::size_t index,
                                                   const IsComputed& isComputed) const
{
    const auto& ports = block.ports(PortKind::Input);
    if (block.parent() == nullptr || index >= ports.size()) {
        return std::nullopt;
    }
    return follow(startOf({block.parent(), &block, ports[index].name}), isComputed);
}

/// From the start of a connection to the output that it begins at. Each turn uses a connection, and none is
/// used twice unless the connections form a circle.
std::optional<OutputPort> PortGraph::follow(std::optional<End> start, const IsComputed& isComputed) const
{
    for (std::size_t turns = 0; start && turns <= m_starts.size(); ++turns) {
        const Block& element = *start->element;
        if (start->element == start->system) {  // an input of the system itself: go on outside
            start = element.parent() == nullptr ? std::nullopt
                                                : startOf({element.parent(), &element, start->connector});
            continue;
        }
        const std::optional<std::size_t> index = indexOf(element, PortKind::Output, start->connector);
        if (!index) {
            return std::nullopt;
        }
        if (isComputed({&element, *index})) {
            return OutputPort{&element, *index};
        }
        // An output of a system: go on inside.
        start = element.kind() == BlockKind::System ? startOf({&element, &element, start->connector})
                                                    : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace simulation
