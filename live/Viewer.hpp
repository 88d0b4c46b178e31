#ifndef ZM_LIVE_VIEWER_HPP
#define ZM_LIVE_VIEWER_HPP

#include "live/Scene.hpp"
#include "live/ViewerMessages.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace live {

struct ViewerLimits {
    std::size_t waitingControls = 1024;  ///< a viewer for which so many control messages wait is disconnected
    std::size_t subscriptions = 10'000;
    std::chrono::microseconds valueInterval{16'667};  ///< between two messages of one channel
    std::chrono::milliseconds statusInterval{5'000};  ///< between two counts of merged values
};

/// Why a connection is closed, with the WebSocket's code for it.
struct Closing {
    std::uint16_t code = 0;
    std::string reason;
};

struct Frame {
    bool isBinary = false;
    std::string data;
};

/// What one viewer is told, and what it asks for: the protocol without the network. Two ways lead out.
/// Control messages (advertise, withdraw, status) wait in order and are never dropped. Values wait merged by
/// channel, so that a viewer that did not read for a while gets the present.
///
/// Order of use: `sceneChanged` and `offer` at any time; the connection takes frames with `next` until there
/// is none, then calls it again at `due`. Network thread only.
class Viewer {
public:
    using Clock = std::chrono::steady_clock;

    /// The server's own page also sees channels that are not listed, and hears of each new scene.
    enum class Kind { Standard, Page };

    Viewer(Kind kind, const ViewerLimits& limits, const std::string& serverName, const std::string& session);

    /// Advertises and withdraws what differs from the scene before.
    void sceneChanged(std::shared_ptr<const Scene> scene);

    /// A complete message of the viewer. The result says whether, and why, to close the connection.
    std::optional<Closing> receiveText(std::string_view text);
    static Closing receiveBinary();

    /// A value of any channel. Values of channels without a subscription are ignored.
    void offer(const LiveValue& value);
    void offerTime(std::int64_t nanoseconds);

    /// The next frame to send now.
    std::optional<Frame> next(Clock::time_point now);

    /// When `next` has something again, if nothing new comes; no value when nothing waits.
    std::optional<Clock::time_point> due() const;

    /// Whether more control messages wait than the limit allows.
    bool isOverflowing() const noexcept { return m_controls.size() >= m_limits.waitingControls; }

    std::vector<ChannelId> subscribedChannels() const;

    /// The channels that were subscribed to since the last call, in order; a withdrawn one may be among them.
    std::vector<ChannelId> takeNewSubscriptions() { return std::exchange(m_newSubscriptions, {}); }

    /// Changes with each subscription that is made or ended.
    std::uint64_t subscriptionVersion() const noexcept { return m_subscriptionVersion; }

    std::uint64_t mergedCount() const noexcept { return m_mergedInTotal; }

private:
    struct Stream {
        SubscriptionId id = 0;
        LiveValue waiting;
        bool isWaiting = false;
        Clock::time_point sent{};  // the last message
    };

    bool sees(const LiveChannel& channel) const { return channel.isListed || m_kind == Kind::Page; }
    void advertise(const std::vector<const LiveChannel*>& channels);
    void withdraw(const std::vector<ChannelId>& channels);
    std::optional<Closing> handle(const Subscribe& message);
    void handle(const Unsubscribe& message);
    void complain(const std::string& text);
    std::optional<Frame> nextStatus(Clock::time_point now);
    std::optional<Frame> nextValue(Clock::time_point now);

    Kind m_kind;
    ViewerLimits m_limits;
    std::shared_ptr<const Scene> m_scene;
    std::unordered_map<ChannelId, LiveChannel> m_advertised;
    std::deque<std::string> m_controls;

    std::unordered_map<ChannelId, Stream> m_byChannel;
    std::unordered_map<SubscriptionId, ChannelId> m_byId;
    std::deque<ChannelId> m_waiting;  // channels with a value, in the order of their first one
    std::vector<ChannelId> m_newSubscriptions;
    std::uint64_t m_subscriptionVersion = 0;

    std::int64_t m_time = 0;
    bool m_timeWaits = false;
    Clock::time_point m_timeSent{};
    std::uint64_t m_merged = 0;  // not told yet
    std::uint64_t m_mergedInTotal = 0;
    Clock::time_point m_statusSent{};
};

}  // namespace live

#endif
