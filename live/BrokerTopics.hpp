#ifndef ZM_LIVE_BROKER_TOPICS_HPP
#define ZM_LIVE_BROKER_TOPICS_HPP

#include "live/Scene.hpp"

#include <optional>
#include <string>
#include <string_view>

// Topics and payloads for a broker:
//
//   <prefix>/status                     "online" or "offline", retained
//   <prefix>/description/<levels>       JSON, retained: what the signal is
//   <prefix>/value/<levels>             JSON: time in seconds and value
//
// The levels are the model's name, the names of the blocks down to the one with the port, and the port's
// name.

namespace live {

/// A name as a level of a topic. "%", "+", "#", "/" and control characters are percent-encoded, and a name
/// without characters is "%"; `nameOfLevel` reverses it.
std::string levelOfName(std::string_view name);

/// No value when no name gives this level.
std::optional<std::string> nameOfLevel(std::string_view level);

std::string levelsOf(const LiveChannel& channel);
std::string descriptionOf(const LiveChannel& channel);
std::string payloadOf(const LiveValue& value);

}  // namespace live

#endif
