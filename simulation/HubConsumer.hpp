#ifndef ZM_SIMULATION_HUB_CONSUMER_HPP
#define ZM_SIMULATION_HUB_CONSUMER_HPP

#include "simulation/Channel.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace simulation {

/// A point in model time. Times never run back; two steps may have the same one.
struct StepTime {
    double seconds = 0.0;
    std::int64_t nanoseconds = 0;
    std::uint64_t number = 0;  ///< of the step in its run, from 0

    static StepTime at(double seconds, std::uint64_t number);
};

/// New samples of one channel: `times.size()` of them, one after the other in `values`. More than one only
/// where the channel is buffered.
struct ChannelSamples {
    ChannelId channel = 0;
    std::span<const double> times;   ///< seconds
    std::span<const double> values;  ///< `layout.width` doubles a sample
};

enum class RunState { Ready, Running, Paused, Ended };

/// Follows a run's values. Every function is called on the thread of the simulation, which is the host's main
/// thread, between two steps or at the end of one. What the arguments refer to is valid during the call only:
/// copy what another thread is to have. An exception ends the run with that error, after all other consumers
/// were called.
class HubConsumer {
public:
    HubConsumer() = default;
    HubConsumer(const HubConsumer&) = delete;
    HubConsumer& operator=(const HubConsumer&) = delete;
    virtual ~HubConsumer() = default;

    /// A channel is there: one call for each when the consumer subscribes, and for each new one later.
    virtual void channelAdded(const Channel& /*channel*/) {}

    /// The channel was renamed, renumbered, rebound, or has other settings or another layout. Its id stays.
    virtual void channelChanged(const Channel& /*channel*/) {}

    virtual void channelRemoved(ChannelId /*channel*/) {}

    /// All clients of the model, when the consumer subscribes and after each edit that concerns them.
    virtual void clientsChanged(const std::vector<ResolvedClient>& /*clients*/) {}

    /// After each step: the channels that have new samples, of those that the subscription selects. Also
    /// called, with no new time, when buffered samples are delivered because the run pauses or ends.
    virtual void step(const StepTime& time, std::span<const ChannelSamples> samples) = 0;

    /// Called again and again while the run waits for its pace. Must be short.
    virtual void waiting() {}

    /// `error` is empty, or says why the run ended.
    virtual void runStateChanged(RunState /*state*/, const std::string& /*error*/) {}
};

}  // namespace simulation

#endif
