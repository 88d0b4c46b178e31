#ifndef ZM_SIMULATION_PORT_GRAPH_HPP
#define ZM_SIMULATION_PORT_GRAPH_HPP

#include "simulation/PortNames.hpp"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

namespace simulation {

/// Where the values of ports come from, through the connections of a diagram and the borders of its systems:
/// an input has the values of the output that it is connected to, a system's output those of the output
/// inside that it is connected to. A picture of the diagram when it was made; make a new one after an edit.
class PortGraph {
public:
    /// Whether a source computes the output port.
    using IsComputed = std::function<bool(const OutputPort&)>;

    explicit PortGraph(const reference_host::Model& model);

    /// The computed output port that the values come from; no value where there is none.
    std::optional<OutputPort> originOfOutput(const OutputPort& port, const IsComputed& isComputed) const;
    std::optional<OutputPort> originOfInput(const reference_host::Block& block, std::size_t index,
                                            const IsComputed& isComputed) const;

private:
    /// A connector of a block as seen from inside the system that has the connection.
    struct End {
        const reference_host::Block* system;
        const reference_host::Block* element;
        std::u16string connector;
        bool operator==(const End&) const = default;
    };
    struct EndHash {
        std::size_t operator()(const End& end) const noexcept;
    };

    std::optional<End> startOf(const End& end) const;
    std::optional<OutputPort> follow(std::optional<End> start, const IsComputed& isComputed) const;

    std::unordered_map<End, End, EndHash> m_starts;  // by the end of the connection
};

}  // namespace simulation

#endif
