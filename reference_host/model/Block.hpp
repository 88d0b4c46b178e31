#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Chart.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace reference_host {

class Block;
class Model;

/// `Other` is a connector without a fixed signal direction, such as a parameter.
enum class PortKind { Output, Input, Other };

struct Port {
    std::u16string name;
};

/// One end of a connection. It refers to the block, so that it follows a rename.
struct ConnectionEnd {
    const Block* element = nullptr;  ///< the block, or the enclosing system; null when there is no such one
    std::u16string elementName;      ///< the name in the document, if `element` is null
    std::u16string connector;
};

/// A line between two connectors of a system's blocks, or between one and the system's own.
struct Connection {
    ConnectionEnd start;
    ConnectionEnd end;
};

enum class BlockKind { Component, System };

/// A block of a diagram: a component, or a system with blocks of its own. The outermost system of a
/// model is a block too, but it has no ZID and no handle. Blocks are created, renamed, moved and removed by
/// their `Model`, which owns them. References stay valid until the model is destroyed; a removed block keeps
/// its contents. These operations are not undoable: use `EditHistory` for that. Main thread only.
class ZM_REFHOST_API Block {
public:
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block();

    const std::u16string& name() const noexcept { return m_name; }
    BlockKind kind() const noexcept { return m_kind; }
    Model& model() const noexcept { return *m_model; }
    Block* parent() const noexcept { return m_parent; }  ///< null for the outermost system
    bool isInside(const Block& other) const noexcept;    ///< at any depth; false for itself

    /// The path with the model name in front, as it is now; parts joined by "/".
    std::u16string path() const;

    /// The number that identifies the block within its model, independent of its path: from 1, in the order
    /// of addition, never given twice. 0 for the outermost system.
    std::uint32_t number() const noexcept { return m_number; }

    /// The ZID: model name, ":" and number, UTF-8; empty for the outermost system.
    std::string zid() const;

    /// The run-time handle: never 0.0, unique in the process, never reused. 0.0 for the outermost system.
    double handle() const noexcept { return m_handle; }

    /// The connectors of one kind in document order. Output port k (1-based) is `ports(Output)[k - 1]`.
    const std::vector<Port>& ports(PortKind kind) const noexcept
    {
        return m_ports[static_cast<std::size_t>(kind)];
    }
    void addPort(PortKind kind, std::u16string name);
    void setPorts(PortKind kind, std::vector<Port> ports);

    /// The blocks and connections of a system, in document order. A component has none.
    const std::vector<std::unique_ptr<Block>>& children() const noexcept { return m_children; }
    Block* child(std::u16string_view name) const;  ///< null when there is none
    const std::vector<Connection>& connections() const noexcept { return m_connections; }
    void addConnection(Connection connection);
    void setConnections(std::vector<Connection> connections);

    /// The values of the block's parameters, by name.
    const std::map<std::u16string, std::u16string>& parameters() const noexcept { return m_parameters; }
    void setParameter(const std::u16string& name, std::u16string value);
    void removeParameter(const std::u16string& name);

    /// The chart that the block carries; null for none.
    Chart* chart() const noexcept { return m_chart.get(); }

    /// Gives the block a chart. A block that has one, and the outermost system, is a host error
    /// ("InvalidChartBlock").
    Chart& addChart(std::u16string chartName);

private:
    friend class Model;
    Block(Model& model, Block* parent, BlockKind kind, std::u16string name);

    /// Moves between owners; the names are checked by the model before.
    void adopt(std::unique_ptr<Block> child, std::size_t position);
    std::unique_ptr<Block> release(const Block& child);
    void rename(std::u16string name);

    Model* m_model;
    Block* m_parent;
    BlockKind m_kind;
    std::uint32_t m_number = 0;
    double m_handle = 0.0;
    std::u16string m_name;
    std::array<std::vector<Port>, 3> m_ports;  // by kind
    std::vector<std::unique_ptr<Block>> m_children;
    /// The children by name. The keys are views of the children's own names.
    std::unordered_map<std::u16string_view, Block*> m_childrenByName;
    std::vector<Connection> m_connections;
    std::map<std::u16string, std::u16string> m_parameters;
    std::unique_ptr<Chart> m_chart;
};

}  // namespace reference_host
