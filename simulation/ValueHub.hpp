#ifndef ZM_SIMULATION_VALUE_HUB_HPP
#define ZM_SIMULATION_VALUE_HUB_HPP

#include "simulation/Channel.hpp"
#include "simulation/HubConsumer.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace simulation {

class ValueHub;

struct HubLimits {
    std::size_t historyBytes = std::size_t{1} << 30;  ///< of all histories together
    std::size_t defaultMaxPoints = 10'000;            ///< for signals whose maximum points are 0
    std::size_t blockSamples = 64;                    ///< in a block of a buffered channel
};

/// A sample and its time in seconds.
struct Sample {
    double time = 0.0;
    std::vector<double> values;
    ValueLayout layout;
};

/// The samples that the hub has of a channel, oldest first: a copy, which later steps do not change.
struct History {
    std::vector<double> times;
    std::vector<double> values;  ///< `layout.width` doubles a sample
    ValueLayout layout;
};

/// Keeps a consumer subscribed as long as it lives. It may be destroyed after the hub.
class Subscription {
public:
    Subscription() = default;
    Subscription(Subscription&& other) noexcept = default;
    Subscription& operator=(Subscription&& other) noexcept;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { end(); }

    /// The channels whose samples the consumer gets from the next step on; at first all. Unknown ids are
    /// ignored. May be called inside the consumer's functions.
    void select(std::vector<ChannelId> channels);
    void selectAll();

    void end() noexcept;

private:
    friend class ValueHub;
    struct State;
    explicit Subscription(std::shared_ptr<State> state) : m_state(std::move(state)) {}

    std::shared_ptr<State> m_state;
};

/// A channel, and where its values are among those that `ValueHub::record` takes.
struct ChannelSetup {
    Channel channel;  ///< the hub gives the id
    std::optional<std::size_t> valueOffset;
};

/// The values of a run's instrumented signals: of each the latest sample and as many before it as the signal
/// asks for. Consumers are told of new samples after each step. A run sets the channels up (`align`), then
/// records step after step. Main thread only.
class ValueHub {
public:
    explicit ValueHub(HubLimits limits = {});
    ValueHub(const ValueHub&) = delete;
    ValueHub& operator=(const ValueHub&) = delete;
    ~ValueHub();

    // ---- for consumers ----

    /// The channels in the order of the signals.
    std::vector<Channel> channels() const;

    /// Null when there is none. Valid until the channels change.
    const Channel* find(ChannelId channel) const;

    /// The first channel of a signal; null when there is none.
    const Channel* findByUuid(const std::string& uuid) const;

    const std::vector<ResolvedClient>& clients() const noexcept;

    /// No value when the channel has no sample yet, or does not exist.
    std::optional<Sample> latest(ChannelId channel) const;

    /// Empty for a channel that does not exist.
    History history(ChannelId channel) const;

    /// Tells the consumer of the channels and clients that are there, and from now on of all that happens.
    /// REQUIRES: the consumer outlives the subscription.
    [[nodiscard]] Subscription subscribe(HubConsumer& consumer);

    RunState state() const noexcept;

    // ---- for the run ----

    /// The channels as they are from the next step on. A channel stays the same one as long as its signal
    /// has the same UUID; one that has another layout, decimation or maximum points loses its history.
    void align(std::vector<ChannelSetup> setups);
    void setClients(std::vector<ResolvedClient> clients);

    /// Records one step and delivers it.
    void record(const StepTime& time, std::span<const double> values);

    /// Delivers what buffered channels have collected, and tells of the new state.
    void setState(RunState state, const std::string& error = {});

    /// Tells the consumers that the run waits for its pace.
    void tellWaiting();

    /// Is called, once, when the histories do not fit into `historyBytes` and are shortened.
    void onShortened(std::function<void(const std::string& message)> report);

    /// The memory that the histories take now, in bytes.
    std::size_t historyBytes() const noexcept;

private:
    friend class Subscription;
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace simulation

#endif
