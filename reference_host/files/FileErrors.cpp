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
    // whole files
    Message{"UnreadableFile", "{0}: {1}"},
    Message{"FileTooLarge", "{0}: {1} bytes are more than the {2} that are taken."},
    Message{"InvalidArchiveFile", "{0}: {1}"},
    Message{"NotAnArchiveName",
            "{0}: a model is saved as an archive, in a file whose name ends in \".ssp\"."},
    Message{"InvalidFile", "{0}: {1}: {2}"},  // file, entry, reason; the reasons follow
    // what is kept about a model
    Message{"NewerVersion", "It is of version {0}; versions up to {1} are known here."},
    Message{"LeftOver", "{0}: {1}: {2}."},  // a warning: file, entry, what
    // JSON, mostly with the place in front
    Message{"JsonTooLarge", "The text is larger than {0} bytes."},
    Message{"JsonTooDeep", "Arrays and objects are nested more than {0} deep."},
    Message{"JsonTooManyItems", "{0}: More than {1} items."},
    Message{"JsonNotWellFormed", "{0}: Not JSON at byte {1}: {2}."},
    Message{"JsonMemberTwice", "{0}: The member occurs twice."},
    Message{"JsonMemberMissing", "{0}: The member \"{1}\" is missing."},
    Message{"JsonUnknownMember", "{0}: The member is unknown."},
    Message{"JsonUnexpected", "{0}: Expected: {1}."},
    Message{"JsonWrongCount", "{0}: Elements: {1} instead of {2}."},
    Message{"ObjectInValue", "{0}: An object of class \"{1}\" cannot be kept in a file."},
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
