#ifndef ZM_SIMULATION_SOURCE_HPP
#define ZM_SIMULATION_SOURCE_HPP

#include "simulation/Channel.hpp"
#include "simulation/PortNames.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace simulation {

/// A place in a diagram that has values: an output port, or an item of the chart that the block carries.
struct Place {
    const reference_host::Block* block = nullptr;
    std::size_t port = 0;           ///< 0-based; of no meaning with an item
    std::optional<ChartItem> item;  ///< of the block's chart

    bool operator==(const Place&) const = default;
};

/// How messages name the place: as `portName`, or block path, "::", object and activity.
std::string placeName(const Place& place);

/// A place that a source computes.
struct SourcePort {
    Place place;
    ValueLayout layout;
    bool allowsNaN = false;  ///< NaN means that there is no value; otherwise it is an error
};

/// An input port that a source reads.
struct InputPort {
    const reference_host::Block* block = nullptr;
    std::size_t index = 0;  ///< 0-based
};

/// What is connected to the input ports of a source, in the order of `Source::inputs`.
class InputValues {
public:
    InputValues() = default;
    InputValues(const InputValues&) = delete;
    InputValues& operator=(const InputValues&) = delete;
    virtual ~InputValues() = default;

    /// Null where nothing that has values is connected, or no value came yet. Valid until the next call.
    virtual const double* values(std::size_t input) const = 0;

    /// REQUIRES: `values(input)` is not null.
    virtual const ValueLayout& layout(std::size_t input) const = 0;
};

/// Computes the values of output ports. A run calls `start`; then for each step `advance`, `revision` and
/// `write`, and `ports` and `inputs` where the revision has changed; and last `stop`, also after an error.
/// What a function throws ends the run.
///
/// Sources that read what others compute are advanced after those; in a loop of sources, one reads what the
/// other gave at the step before. A co-simulation unit fits in: `advance` is its step from the last time to
/// this one, and its end of a step is a time of its own.
class Source {
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    /// What errors call it.
    virtual std::string name() const = 0;

    /// Changes when `ports` or `inputs` would answer otherwise than before.
    virtual std::uint64_t revision() const { return 0; }

    /// The list may grow; what is on it stays at its position. The run follows edits of the ports itself.
    virtual std::vector<SourcePort> ports() const = 0;
    virtual std::vector<InputPort> inputs() const { return {}; }

    /// Whether the source decides at which times there is a step; then `nextTime` is the next one of them, or
    /// no value when there is none left. Where no source has times, the run's own clock ticks.
    virtual bool hasTimes() const { return false; }
    virtual std::optional<double> nextTime() const { return std::nullopt; }

    /// The last time that there will be, where that is known: progress is shown by it.
    virtual std::optional<double> lastTime() const { return std::nullopt; }

    virtual void start(double /*time*/) {}

    /// Goes on to a time that is not before the last one. A source with times goes on by one of them where
    /// that is the next one, else by all that are not later.
    virtual void advance(double time, const InputValues& inputs) = 0;

    /// Fills in the values of its ports, in their order. The array has those of the last step.
    virtual void write(std::span<double> values) = 0;

    virtual void stop() noexcept {}
};

}  // namespace simulation

#endif
