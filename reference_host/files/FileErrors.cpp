#include "reference_host/files/FileErrors.hpp"

#include "reference_host/calls/MessageCatalog.hpp"

#include <array>
#include <utility>

namespace reference_host {

namespace {

struct Message {
    const char* key;
    const char* text;
};

constexpr std::array messages{
    Message{"InvalidFile", "{0}: {1}: {2}"},  // file, entry, reason; the reasons follow
};

bool defineMessages()
{
    for (const Message& message : messages) {
        MessageCatalog::define(fileCatalog, message.key, message.text);
    }
    return true;
}

}  // namespace

zmsvException fileError(const char* key, std::vector<zmsvMessageArgument> arguments)
{
    [[maybe_unused]] static const bool areDefined = defineMessages();
    const zmsvMessageId id(fileCatalog, key, std::move(arguments));
    return {id, MessageCatalog::text(id)};
}

}  // namespace reference_host
