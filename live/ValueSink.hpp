#ifndef ZM_LIVE_VALUE_SINK_HPP
#define ZM_LIVE_VALUE_SINK_HPP

#include "live/Scene.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace live {

/// The simulation's side of a way to another thread. No function but `flush` waits for that thread, and the
/// memory that waiting values take is bounded. Simulation's thread only.
class ValueSink {
public:
    ValueSink() = default;
    ValueSink(const ValueSink&) = delete;
    ValueSink& operator=(const ValueSink&) = delete;
    virtual ~ValueSink() = default;

    virtual void setScene(std::shared_ptr<const Scene> scene) = 0;
    virtual bool needsPicture() const = 0;

    /// Whether other channels are wanted than when this was last true; `wanted` has them then.
    virtual bool takeWanted(std::vector<ChannelId>& wanted) = 0;

    virtual void put(const LiveValue& value) = 0;

    /// Hands over what was put. If the other thread takes values at this moment, they wait for the next call.
    virtual void publish(std::int64_t time) = 0;

    /// The same, but waits for the lock: for the end of a run, after which no call may follow.
    virtual void flush() = 0;
};

}  // namespace live

#endif
