#ifndef ZM_LIVE_VALUE_EXCHANGE_HPP
#define ZM_LIVE_VALUE_EXCHANGE_HPP

#include "live/ValueSink.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace live {

/// Values by channel, at most one of each: a later one is merged into the one that is there.
class MergedValues {
public:
    void add(const LiveValue& value);
    void addAll(const MergedValues& later);
    void clear();
    bool empty() const noexcept { return m_values.empty(); }
    const std::vector<LiveValue>& all() const noexcept { return m_values; }

private:
    std::vector<LiveValue> m_values;
    std::vector<std::uint32_t> m_places;  // by channel id: place in m_values plus 1, or 0
};

/// What the network thread takes over at a time.
struct Delivery {
    std::shared_ptr<const Scene> scene;
    MergedValues values;
    std::int64_t time = 0;  ///< of the last step, in nanoseconds
    bool hasTime = false;
};

/// The way from the simulation's thread to the network thread. It holds at most one value of each channel
/// that viewers want, so its size is bounded. The simulation's thread never waits for the network thread,
/// which keeps the lock only to swap the contents.
///
/// Order of use: `onReady`; then each thread calls its own functions.
class ValueExchange final : public ValueSink {
public:
    // ---- simulation's thread ----

    void setScene(std::shared_ptr<const Scene> scene) override;
    bool needsPicture() const override { return true; }
    bool takeWanted(std::vector<ChannelId>& wanted) override;
    void put(const LiveValue& value) override { m_own.add(value); }
    void publish(std::int64_t time) override;
    void flush() override;

    // ---- network thread ----

    /// Is called on the simulation's thread when there is something to take, once for each delivery.
    /// REQUIRES: no other thread uses the exchange yet.
    void onReady(std::function<void()> wake) { m_wake = std::move(wake); }

    void setWanted(std::vector<ChannelId> wanted);

    /// Replaces `delivery`. The scene is null when it has not changed. Returns false when there is nothing.
    bool take(Delivery& delivery);

    /// From now on `onReady`'s function is not called any more.
    void close();

private:
    void handOver(std::unique_lock<std::mutex> lock);

    // simulation's thread only
    MergedValues m_own;
    std::int64_t m_time = 0;
    bool m_hasTime = false;

    std::mutex m_mutex;
    Delivery m_delivery;
    std::vector<ChannelId> m_wanted;
    bool m_isReady = false;  // the network thread was told of the delivery
    std::function<void()> m_wake;
    std::atomic<bool> m_wantedChanged = false;
};

}  // namespace live

#endif
