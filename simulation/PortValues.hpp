#ifndef ZM_SIMULATION_PORT_VALUES_HPP
#define ZM_SIMULATION_PORT_VALUES_HPP

#include "reference_host/model/EditHistory.hpp"
#include "simulation/Source.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

namespace simulation {

/// Has a place follow an edit of its block's ports. Returns whether the edit deleted the port; the place is
/// left as it is then.
bool followEdit(Place& place, const reference_host::DiagramChange& change);

/// The values of all places that the sources of a run compute, in one array: source after source, and the
/// places of a source in its own order. A place follows the edits of its diagram: a renumbered port keeps its
/// values, a deleted one has none until an undo brings it back.
class PortValues {
public:
    struct Entry {
        SourcePort port;
        std::size_t source = 0;
        std::size_t offset = 0;      ///< in the array
        bool isGone = false;         ///< the port was deleted
        std::uint64_t goneWith = 0;  ///< the edit that deleted it
    };

    explicit PortValues(std::size_t sourceCount) : m_bySource(sourceCount), m_allAllowNaN(sourceCount, true)
    {
    }

    /// Takes the places of a source. Those that it had before keep their positions in its list, and are
    /// followed in here: what it says of them again counts for the layout only. A place that another source
    /// computes, or that the source names twice, is a host error ("TwoSources"), as are places that do not
    /// exist; nothing has changed then. Values of places that stay are kept; new ones are NaN.
    void set(std::size_t source, const std::vector<SourcePort>& ports, const reference_host::Model& model,
             const std::function<std::string(std::size_t)>& sourceName);

    std::span<const double> all() const noexcept { return m_values; }
    std::span<double> of(std::size_t source) noexcept;

    /// Null when no source computes the place, or the port is gone.
    const Entry* find(const Place& place) const;
    bool isComputed(const OutputPort& port) const { return find({port.block, port.index, {}}) != nullptr; }

    /// The first place with a NaN that is not allowed, among those of a source; null when there is none.
    const Entry* findNaN(std::size_t source) const;

    void follow(const reference_host::DiagramChange& change);

private:
    using Key = std::tuple<const reference_host::Block*, std::size_t, bool, std::string>;
    static Key keyOf(const Place& place);
    void place(std::vector<std::vector<Entry>> bySource);
    void rebuildIndex();

    std::vector<std::vector<Entry>> m_bySource;
    std::vector<bool> m_allAllowNaN;  // by source
    std::map<Key, const Entry*> m_index;
    std::vector<double> m_values;
};

}  // namespace simulation

#endif
