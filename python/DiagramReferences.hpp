#ifndef ZM_PYTHON_DIAGRAM_REFERENCES_HPP
#define ZM_PYTHON_DIAGRAM_REFERENCES_HPP

#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Parts of a diagram as Python holds them: each keeps its whole model alive.
namespace zmhost {

struct BlockReference {
    std::shared_ptr<reference_host::Model> model;
    reference_host::Block* block;

    reference_host::Block* operator->() const noexcept { return block; }
};

struct PortReference {
    BlockReference block;
    reference_host::PortKind kind;
    std::size_t index;  ///< 0-based

    const reference_host::Port& port() const { return block->ports(kind).at(index); }
};

struct ChartReference {
    BlockReference block;

    reference_host::Chart* operator->() const noexcept { return block->chart(); }
};

struct ConnectionEnd {
    std::optional<BlockReference> element;
    std::u16string elementName;  ///< as it is now, or as the document calls one that does not exist
    std::u16string connector;
};

struct Connection {
    ConnectionEnd start;
    ConnectionEnd end;
};

/// None of null.
std::optional<BlockReference> reference(const std::shared_ptr<reference_host::Model>& model,
                                        reference_host::Block* block);
std::vector<BlockReference> references(const std::shared_ptr<reference_host::Model>& model,
                                       const std::vector<reference_host::Block*>& blocks);

std::vector<BlockReference> childrenOf(const BlockReference& system);
std::vector<Connection> connectionsOf(const BlockReference& system);
std::optional<ChartReference> chartOf(const BlockReference& block);

std::vector<PortReference> portsOf(const BlockReference& block, reference_host::PortKind kind);
void addPorts(std::vector<PortReference>& ports, const BlockReference& block, reference_host::PortKind kind);

}  // namespace zmhost

#endif
