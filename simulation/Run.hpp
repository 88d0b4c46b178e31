#ifndef ZM_SIMULATION_RUN_HPP
#define ZM_SIMULATION_RUN_HPP

#include "reference_host/model/Model.hpp"
#include "simulation/Pacer.hpp"
#include "simulation/Source.hpp"
#include "simulation/ValueHub.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulation {

struct RunOptions {
    double start = 0.0;            ///< seconds; where sources have times, theirs count
    std::optional<double> step{};  ///< seconds: the run's own clock. Required where no source has times
    std::optional<double> stop{};  ///< no step is later
    std::optional<double> pace{};  ///< real time times this factor; no value: as fast as possible
    bool withSignals = true;       ///< the hub has the model's signals and clients; otherwise only probes
    HubLimits limits{};
    Waiting waiting{};                   ///< how to wait for the pace
    std::function<void()> checkpoint{};  ///< called at each step and while waiting; may throw to end the run
    std::function<void(const std::string&)> warn{};
};

/// A simulation of a model: its sources compute the values of output ports, step by step, and its hub gets
/// those of the instrumented signals. What scripts and editors change between two steps takes effect at the
/// next one. An error ends the run: the sources are stopped, consumers are told, and it is rethrown.
/// Main thread only.
class Run {
public:
    using Sources = std::vector<std::unique_ptr<Source>>;

    /// Asks the sources for their places and sets up the hub; the first step is still to come. Sources that
    /// do not fit the model or each other, and options that make no sense, are host errors.
    Run(std::shared_ptr<reference_host::Model> model, Sources sources, RunOptions options = {});
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    virtual ~Run();

    const std::shared_ptr<reference_host::Model>& model() const noexcept;
    ValueHub& hub() noexcept;

    /// Does one step, also while the run pauses; waits for the pace before. Returns false, and has ended,
    /// when there is no step left.
    bool step();

    /// As `step`, but also returns false while the run pauses.
    bool next();

    /// Steps until the run ends, pauses, or `stop` is called from inside.
    void runOn();

    void pause();
    void resume();

    /// Ends the run. Does nothing when it has ended.
    void stop();

    RunState state() const noexcept;

    /// Why the run ended early; empty where it did not.
    const std::string& error() const noexcept;

    /// Of the last step; no value before the first.
    std::optional<StepTime> time() const noexcept;

    /// The time of the last step that there will be, where it is known.
    std::optional<double> lastTime() const;

    std::optional<double> pace() const noexcept;
    void setPace(std::optional<double> pace);

    /// The values that the port has now, and their layout; no value where no source computes it, directly or
    /// through connections, or nothing came yet.
    std::optional<Sample> latest(const OutputPort& port) const;

    /// A channel for a port that need not be instrumented. Consumers get its samples only when they select
    /// it, and it is not among the hub's channels. It follows edits, and lasts as long as the run.
    ChannelId probe(const Place& place);

    /// Takes on what has changed since the last step. `step` does it by itself.
    void refresh();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace simulation

#endif
