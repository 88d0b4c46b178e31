#ifndef ZM_LIVE_BROKER_QUEUE_HPP
#define ZM_LIVE_BROKER_QUEUE_HPP

#include "live/ValueSink.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

namespace live {

/// The way to a broker: every value of every listed channel, in order. At most so many values wait; beyond
/// that the oldest are dropped and counted.
class BrokerQueue final : public ValueSink {
public:
    explicit BrokerQueue(std::size_t limit) : m_limit(limit) {}

    // ---- simulation's thread ----

    void setScene(std::shared_ptr<const Scene> scene) override;
    bool needsPicture() const override { return false; }
    bool takeWanted(std::vector<ChannelId>& wanted) override;
    void put(const LiveValue& value) override { m_own.push_back(value); }
    void publish(std::int64_t time) override;
    void flush() override;

    // ---- publisher's thread ----

    /// Replaces `values` by the oldest ones that were handed over together, and `scene` by a new one if there
    /// is one. Returns false when there is neither.
    bool take(std::vector<LiveValue>& values, std::shared_ptr<const Scene>& scene);

    std::uint64_t dropped() const;
    std::size_t waiting() const;

private:
    void handOver();

    // simulation's thread only
    std::vector<LiveValue> m_own;
    std::shared_ptr<const Scene> m_ownScene;
    bool m_wantedChanged = false;

    const std::size_t m_limit;
    mutable std::mutex m_mutex;
    std::deque<std::vector<LiveValue>> m_batches;
    std::shared_ptr<const Scene> m_scene;
    std::size_t m_waiting = 0;
    std::uint64_t m_dropped = 0;
};

}  // namespace live

#endif
