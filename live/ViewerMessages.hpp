#ifndef ZM_LIVE_VIEWER_MESSAGES_HPP
#define ZM_LIVE_VIEWER_MESSAGES_HPP

#include "live/Scene.hpp"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// The messages of the Foxglove WebSocket protocol that this server reads and writes. Texts are JSON objects
// whose "op" names the kind; binary messages begin with an operation code of one byte, and their numbers are
// little endian.

namespace live {

using SubscriptionId = std::uint32_t;

struct Subscribe {
    struct Entry {
        SubscriptionId id = 0;
        ChannelId channel = 0;
    };
    std::vector<Entry> entries;
};
struct Unsubscribe {
    std::vector<SubscriptionId> ids;
};
/// A request of the protocol that would need a capability that the server does not offer.
struct Unsupported {
    std::string operation;
};
using ClientMessage = std::variant<Subscribe, Unsubscribe, Unsupported>;

/// A text message that is not one of the protocol's. The connection is closed.
struct MalformedMessage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

ClientMessage parseClientMessage(std::string_view text);

enum class StatusLevel { Info = 0, Warning = 1, Error = 2 };

std::string serverInfoMessage(const std::string& name, const std::string& session);
std::string advertiseMessage(const std::vector<const LiveChannel*>& channels);
std::string unadvertiseMessage(const std::vector<ChannelId>& channels);

/// A status with an id replaces the one of the same id in the viewer.
std::string statusMessage(StatusLevel level, const std::string& text, const std::string& id = {});

/// Not of the protocol: tells the server's own page, and no other viewer, that the scene has changed.
std::string sceneMessage(const Scene& scene);

/// Binary. `number` formats as JSON does; NaN and infinities are null.
std::string valueMessage(SubscriptionId subscription, const LiveValue& value);
std::string timeMessage(std::int64_t nanoseconds);
std::string number(double value);

/// The scene as JSON for the page, without the picture.
std::string sceneJson(const Scene& scene);

}  // namespace live

#endif
