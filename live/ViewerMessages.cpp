#include "live/ViewerMessages.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace live {

using Json = nlohmann::ordered_json;

namespace {

// "number" alone, because viewers read only one type for each property; null is for NaN and infinities.
constexpr const char* valueSchema =
    R"({"type":"object","properties":{)"
    R"("value":{"type":"number","description":"latest value; null when it is not finite"},)"
    R"("min":{"type":"number","description":"minimum since the message before"},)"
    R"("max":{"type":"number","description":"maximum since the message before"}}})";

constexpr std::array readOnlyOperations = {
    "advertise",
    "unadvertise",
    "getParameters",
    "setParameters",
    "fetchAsset",
    "subscribeParameterUpdates",
    "subscribeConnectionGraph",
    "unsubscribeParameterUpdates",
    "unsubscribeConnectionGraph",
};

std::uint32_t idFrom(const Json& value, const char* what)
{
    if (!value.is_number_unsigned() ||
        value.get<std::uint64_t>() > std::numeric_limits<std::uint32_t>::max()) {
        throw MalformedMessage(std::string(what) + " is not an unsigned 32-bit number");
    }
    return value.get<std::uint32_t>();
}

const Json& listIn(const Json& message, const char* name)
{
    const auto found = message.find(name);
    if (found == message.end() || !found->is_array()) {
        throw MalformedMessage(std::string("\"") + name + "\" is missing or no array");
    }
    return *found;
}

const Json& memberOf(const Json& object, const char* name)
{
    if (!object.is_object() || !object.contains(name)) {
        throw MalformedMessage(std::string("a subscription has no \"") + name + '"');
    }
    return object.at(name);
}

Subscribe subscribeFrom(const Json& message)
{
    Subscribe result;
    for (const Json& entry : listIn(message, "subscriptions")) {
        result.entries.push_back(
            {idFrom(memberOf(entry, "id"), "id"), idFrom(memberOf(entry, "channelId"), "channelId")});
    }
    return result;
}

Unsubscribe unsubscribeFrom(const Json& message)
{
    Unsubscribe result;
    for (const Json& id : listIn(message, "subscriptionIds")) {
        result.ids.push_back(idFrom(id, "a subscription id"));
    }
    return result;
}

template <class Number>
void appendLittleEndian(std::string& bytes, Number number)
{
    static_assert(std::endian::native == std::endian::little);
    std::array<char, sizeof number> raw{};
    std::memcpy(raw.data(), &number, sizeof number);
    bytes.append(raw.data(), raw.size());
}

std::string text(const Json& json)
{
    // Names come from files: what is not UTF-8 is replaced, not refused.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json widgetJson(const Widget& widget)
{
    Json json{{"uuid", widget.uuid},
              {"type", widget.type},
              {"title", widget.title},
              {"path", widget.path},
              {"signal", widget.signal},
              {"updateRate", widget.updateRate},
              {"decimation", widget.decimation},
              {"maxPoints", widget.maxPoints}};
    if (widget.channel) {
        json["channel"] = *widget.channel;
    }
    if (widget.minimum) {
        json["minimum"] = *widget.minimum;
    }
    if (widget.maximum) {
        json["maximum"] = *widget.maximum;
    }
    return json;
}

}  // namespace

ClientMessage parseClientMessage(std::string_view text)
{
    const Json message = Json::parse(text, nullptr, false);
    if (!message.is_object()) {
        throw MalformedMessage("a message must be a JSON object");
    }
    const auto operation = message.find("op");
    if (operation == message.end() || !operation->is_string()) {
        throw MalformedMessage("a message must have a text \"op\"");
    }
    const auto name = operation->get<std::string>();
    if (name == "subscribe") {
        return subscribeFrom(message);
    }
    if (name == "unsubscribe") {
        return unsubscribeFrom(message);
    }
    if (std::find(readOnlyOperations.begin(), readOnlyOperations.end(), name) != readOnlyOperations.end()) {
        return Unsupported{name};
    }
    throw MalformedMessage("unknown operation");
}

std::string serverInfoMessage(const std::string& name, const std::string& session)
{
    return text({{"op", "serverInfo"},
                 {"name", name},
                 {"capabilities", Json::array({"time"})},
                 {"supportedEncodings", Json::array()},
                 {"metadata", Json::object()},
                 {"sessionId", session}});
}

std::string advertiseMessage(const std::vector<const LiveChannel*>& channels)
{
    Json list = Json::array();
    for (const LiveChannel* channel : channels) {
        list.push_back({{"id", channel->id},
                        {"topic", channel->topic},
                        {"encoding", "json"},
                        {"schemaName", "SignalValue"},
                        {"schemaEncoding", "jsonschema"},
                        {"schema", valueSchema}});
    }
    return text({{"op", "advertise"}, {"channels", std::move(list)}});
}

std::string unadvertiseMessage(const std::vector<ChannelId>& channels)
{
    return text({{"op", "unadvertise"}, {"channelIds", channels}});
}

std::string statusMessage(StatusLevel level, const std::string& message, const std::string& id)
{
    Json json{{"op", "status"}, {"level", static_cast<int>(level)}, {"message", message}};
    if (!id.empty()) {
        json["id"] = id;
    }
    return text(json);
}

std::string sceneMessage(const Scene& scene)
{
    return text({{"op", "scene"}, {"version", scene.version}});
}

std::string number(double value)
{
    if (!std::isfinite(value)) {
        return "null";
    }
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

std::string valueMessage(SubscriptionId subscription, const LiveValue& value)
{
    std::string bytes(1, '\x01');
    appendLittleEndian(bytes, subscription);
    appendLittleEndian(bytes, static_cast<std::uint64_t>(std::max<std::int64_t>(value.time, 0)));
    bytes += "{\"value\":" + number(value.latest) + ",\"min\":" + number(value.minimum) +
             ",\"max\":" + number(value.maximum) + '}';
    return bytes;
}

std::string timeMessage(std::int64_t nanoseconds)
{
    std::string bytes(1, '\x02');
    appendLittleEndian(bytes, static_cast<std::uint64_t>(std::max<std::int64_t>(nanoseconds, 0)));
    return bytes;
}

std::string sceneJson(const Scene& scene)
{
    Json channels = Json::array();
    for (const LiveChannel& channel : scene.channels) {
        channels.push_back({{"id", channel.id}, {"topic", channel.topic}});
    }
    Json widgets = Json::array();
    std::transform(scene.widgets.begin(), scene.widgets.end(), std::back_inserter(widgets), widgetJson);
    Json marks = Json::array();
    for (const PortMark& mark : scene.marks) {
        marks.push_back({{"channel", mark.channel}, {"node", mark.node}, {"port", mark.portName}});
    }
    return text({{"version", scene.version},
                 {"model", scene.model},
                 {"state", scene.state},
                 {"picture", scene.picture.empty() ? 0 : scene.pictureVersion},
                 {"channels", std::move(channels)},
                 {"widgets", std::move(widgets)},
                 {"marks", std::move(marks)}});
}

}  // namespace live
