#include "live/BrokerTopics.hpp"

#include "live/ViewerMessages.hpp"

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>

namespace live {

std::string levelOfName(std::string_view name)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string level;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f || std::string_view("%+#/").find(c) != std::string_view::npos) {
            level += {'%', digits[byte / 16], digits[byte % 16]};
        } else {
            level += c;
        }
    }
    return level.empty() ? "%" : level;
}

std::optional<std::string> nameOfLevel(std::string_view level)
{
    if (level == "%") {
        return std::string();
    }
    std::string name;
    for (std::size_t i = 0; i < level.size(); ++i) {
        if (level[i] != '%') {
            name += level[i];
            continue;
        }
        unsigned byte = 0;
        const char* first = level.data() + i + 1;
        if (i + 2 >= level.size() || std::from_chars(first, first + 2, byte, 16).ptr != first + 2) {
            return std::nullopt;
        }
        name += static_cast<char>(byte);
        i += 2;
    }
    // Only the one spelling that `levelOfName` chooses is a level.
    return levelOfName(name) == level ? std::optional(name) : std::nullopt;
}

std::string levelsOf(const LiveChannel& channel)
{
    std::string levels;
    std::string_view path = channel.blockPath;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('/'));
        levels += levelOfName(part) + '/';
        path.remove_prefix(std::min(part.size() + 1, path.size()));
    }
    // The topic's end has what makes channels of one port different.
    const bool hasPath = channel.topic.size() > channel.blockPath.size();
    return levels + levelOfName(hasPath ? std::string_view(channel.topic).substr(channel.blockPath.size() + 1)
                                        : std::string_view(channel.portName));
}

std::string descriptionOf(const LiveChannel& channel)
{
    using Json = nlohmann::ordered_json;
    return Json{{"uuid", channel.uuid},
                {"model", channel.model},
                {"path", channel.blockPath},
                {"port", channel.portNumber},
                {"portName", channel.portName},
                {"name", channel.signalName},
                {"decimation", channel.decimation}}
        .dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string payloadOf(const LiveValue& value)
{
    return "{\"time\":" + number(static_cast<double>(value.time) / 1e9) +
           ",\"value\":" + number(value.latest) + '}';
}

}  // namespace live
