#include "live/Viewer.hpp"

#include <algorithm>
#include <utility>

namespace live {

namespace {

// Codes of RFC 6455, section 7.4.1.
constexpr std::uint16_t protocolError = 1002;
constexpr std::uint16_t unsupportedData = 1003;
constexpr std::uint16_t policyViolation = 1008;

constexpr std::size_t channelsPerAdvertisement = 1000;  // keeps a message below about half a megabyte

}  // namespace

Viewer::Viewer(Kind kind, const ViewerLimits& limits, const std::string& serverName,
               const std::string& session)
    : m_kind(kind), m_limits(limits)
{
    m_controls.push_back(serverInfoMessage(serverName, session));
}

void Viewer::sceneChanged(std::shared_ptr<const Scene> scene)
{
    std::unordered_map<ChannelId, LiveChannel> now;
    std::vector<const LiveChannel*> added;
    for (const LiveChannel& channel : scene->channels) {
        if (sees(channel)) {
            now.emplace(channel.id, channel);
            if (!m_advertised.contains(channel.id)) {
                added.push_back(&channel);
            }
        }
    }
    std::vector<ChannelId> removed;
    for (const auto& [id, channel] : m_advertised) {
        if (!now.contains(id)) {
            removed.push_back(id);
        }
    }
    withdraw(removed);
    advertise(added);
    m_advertised = std::move(now);
    m_scene = std::move(scene);
    if (m_kind == Kind::Page) {
        m_controls.push_back(sceneMessage(*m_scene));
    }
}

void Viewer::advertise(const std::vector<const LiveChannel*>& channels)
{
    for (std::size_t i = 0; i < channels.size(); i += channelsPerAdvertisement) {
        const auto first = channels.begin() + static_cast<std::ptrdiff_t>(i);
        const auto count = std::min(channelsPerAdvertisement, channels.size() - i);
        m_controls.push_back(advertiseMessage({first, first + static_cast<std::ptrdiff_t>(count)}));
    }
}

void Viewer::withdraw(const std::vector<ChannelId>& channels)
{
    if (channels.empty()) {
        return;
    }
    for (const ChannelId channel : channels) {
        const auto stream = m_byChannel.find(channel);
        if (stream != m_byChannel.end()) {
            m_byId.erase(stream->second.id);
            m_byChannel.erase(stream);
            ++m_subscriptionVersion;
        }
    }
    m_controls.push_back(unadvertiseMessage(channels));
}

std::optional<Closing> Viewer::receiveText(std::string_view text)
{
    try {
        const ClientMessage message = parseClientMessage(text);
        if (const auto* subscribe = std::get_if<Subscribe>(&message)) {
            return handle(*subscribe);
        }
        if (const auto* unsubscribe = std::get_if<Unsubscribe>(&message)) {
            handle(*unsubscribe);
        } else {
            complain("this server is read-only and does not support \"" +
                     std::get<Unsupported>(message).operation + '"');
        }
        return std::nullopt;
    } catch (const MalformedMessage& error) {
        return Closing{protocolError, error.what()};
    }
}

Closing Viewer::receiveBinary()
{
    return {unsupportedData, "this server is read-only and takes no binary messages"};
}

std::optional<Closing> Viewer::handle(const Subscribe& message)
{
    for (const Subscribe::Entry& entry : message.entries) {
        if (m_byId.contains(entry.id)) {
            complain("subscription " + std::to_string(entry.id) + " exists already");
        } else if (m_byChannel.contains(entry.channel)) {
            complain("channel " + std::to_string(entry.channel) + " has a subscription already");
        } else if (!m_advertised.contains(entry.channel)) {
            complain("there is no channel " + std::to_string(entry.channel));
        } else if (m_byId.size() >= m_limits.subscriptions) {
            return Closing{policyViolation,
                           "more than " + std::to_string(m_limits.subscriptions) + " subscriptions"};
        } else {
            m_byId.emplace(entry.id, entry.channel);
            m_byChannel[entry.channel].id = entry.id;
            m_newSubscriptions.push_back(entry.channel);
            ++m_subscriptionVersion;
        }
    }
    return std::nullopt;
}

void Viewer::handle(const Unsubscribe& message)
{
    for (const SubscriptionId id : message.ids) {
        const auto found = m_byId.find(id);
        if (found == m_byId.end()) {
            complain("there is no subscription " + std::to_string(id));
            continue;
        }
        m_byChannel.erase(found->second);
        m_byId.erase(found);
        ++m_subscriptionVersion;
    }
}

void Viewer::complain(const std::string& text)
{
    // One message may name thousands of wrong ids; the last complaints say enough.
    if (m_controls.size() < m_limits.waitingControls / 2) {
        m_controls.push_back(statusMessage(StatusLevel::Error, text));
    }
}

void Viewer::offer(const LiveValue& value)
{
    const auto found = m_byChannel.find(value.channel);
    if (found == m_byChannel.end()) {
        return;
    }
    Stream& stream = found->second;
    std::uint64_t merged = value.count > 1 ? value.count - 1 : 0;
    if (stream.isWaiting) {
        merged += std::min<std::uint64_t>(value.count, 1);
        stream.waiting.merge(value);
    } else {
        stream.waiting = value;
        stream.isWaiting = true;
        m_waiting.push_back(value.channel);
    }
    m_merged += merged;
    m_mergedInTotal += merged;
}

void Viewer::offerTime(std::int64_t nanoseconds)
{
    m_time = nanoseconds;
    m_timeWaits = true;
}

std::optional<Frame> Viewer::next(Clock::time_point now)
{
    if (!m_controls.empty()) {
        Frame frame{false, std::move(m_controls.front())};
        m_controls.pop_front();
        return frame;
    }
    if (auto status = nextStatus(now)) {
        return status;
    }
    if (m_timeWaits && now - m_timeSent >= m_limits.valueInterval) {
        m_timeWaits = false;
        m_timeSent = now;
        return Frame{true, timeMessage(m_time)};
    }
    return nextValue(now);
}

std::optional<Frame> Viewer::nextStatus(Clock::time_point now)
{
    if (m_merged == 0 || now - m_statusSent < m_limits.statusInterval) {
        return std::nullopt;
    }
    m_statusSent = now;
    const std::uint64_t merged = std::exchange(m_merged, 0);
    return Frame{false,
                 statusMessage(StatusLevel::Info,
                               std::to_string(merged) + " values were merged into later ones (of " +
                                   std::to_string(m_mergedInTotal) +
                                   " since the connection was made); latest, minimum and maximum are kept",
                               "merged")};
}

std::optional<Frame> Viewer::nextValue(Clock::time_point now)
{
    // Every channel has the same interval, so the first one that waits is the first that may be sent, except
    // that a long write can bring them out of order by a fraction of the interval.
    while (!m_waiting.empty()) {
        const ChannelId channel = m_waiting.front();
        const auto found = m_byChannel.find(channel);
        if (found == m_byChannel.end() || !found->second.isWaiting) {
            m_waiting.pop_front();  // the subscription has ended
            continue;
        }
        Stream& stream = found->second;
        if (now - stream.sent < m_limits.valueInterval) {
            return std::nullopt;
        }
        m_waiting.pop_front();
        stream.isWaiting = false;
        stream.sent = now;
        return Frame{true, valueMessage(stream.id, stream.waiting)};
    }
    return std::nullopt;
}

std::optional<Viewer::Clock::time_point> Viewer::due() const
{
    if (!m_controls.empty()) {
        return Clock::time_point::min();
    }
    std::optional<Clock::time_point> result;
    const auto notAfter = [&result](Clock::time_point time) {
        result = result ? std::min(*result, time) : time;
    };
    if (m_merged > 0) {
        notAfter(m_statusSent + m_limits.statusInterval);
    }
    if (m_timeWaits) {
        notAfter(m_timeSent + m_limits.valueInterval);
    }
    for (const ChannelId channel : m_waiting) {
        const auto found = m_byChannel.find(channel);
        if (found != m_byChannel.end()) {
            notAfter(found->second.sent + m_limits.valueInterval);
            break;
        }
    }
    return result;
}

std::vector<ChannelId> Viewer::subscribedChannels() const
{
    std::vector<ChannelId> result;
    result.reserve(m_byChannel.size());
    for (const auto& [channel, stream] : m_byChannel) {
        result.push_back(channel);
    }
    return result;
}

}  // namespace live
