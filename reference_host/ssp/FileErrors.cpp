#include "reference_host/ssp/FileErrors.hpp"

#include "reference_host/support/ErrorCatalog.hpp"

#include <array>
#include <utility>

namespace reference_host {

namespace {

using Message = CatalogMessage;

constexpr std::array messages{
    // whole files
    Message{"UnreadableFile", "{0}: {1}"},
    Message{"InvalidArchiveFile", "{0}: {1}"},
    Message{
        "NotSavable",
        "{0}: The archive has an entry {1} where the model's data is kept. The model can be used, but saving "
        "it is refused until another program has renamed that entry."},
    Message{"NotAnArchiveName",
            "{0}: a model is saved as an archive, in a file whose name ends in \".ssp\"."},
    Message{"InvalidFile", "{0}: {1}: {2}"},  // file, entry, reason; the reasons follow
    // archives
    Message{"InvalidArchive", "{0}"},     // reason; the reasons follow
    Message{"InvalidEntry", "{0}: {1}"},  // entry in quotes, reason; the reasons follow
    Message{"NotAnArchive", "It is not a ZIP archive, or not all of one."},
    Message{"ArchiveDamaged", "The archive is damaged: {0}."},
    Message{"ArchiveAmbiguous", "The archive can be read in two ways."},
    Message{"ArchiveTooLarge", "The archive is larger than {0} bytes."},
    Message{"UnpackedTooLarge", "The archive unpacks to more than {0} bytes."},
    Message{"TooManyEntries", "The archive has {0} entries; {1} are accepted."},
    Message{"EntryUnnamed", "An entry needs a name."},
    Message{"EntryNameNotUtf8", "The name is not UTF-8."},
    Message{"EntryNameCharacter", "The name has a backslash or a NUL character."},
    Message{"EntryNameNotInside", "The name is not a plain path inside the archive."},
    Message{"EntryRepeated", "The archive has two entries of this name."},
    Message{"EntryBelowFile", "The entry lies below one that is not a folder."},
    Message{"EntryEncrypted", "The entry is encrypted."},
    Message{"EntryMethod", "The entry is packed by method {0}; stored (0) and deflated (8) are accepted."},
    Message{"FolderWithContent", "The entry is a folder and has content."},
    Message{"EntryLength", "The entry does not unpack to the {0} bytes that it declares."},
    Message{"EntryDamaged", "The entry is damaged: {0}."},
    Message{"EntryTooLarge", "The entry has {0} bytes; {1} are accepted."},
    Message{"EntryMissing", "The archive has no such entry."},
    // writing
    Message{"UnwritableFile", "{0}: {1}"},  // file, reason
    Message{"FileNotDurable",
            "{0}: The file is written, but may not be there after a power failure: its folder could not be "
            "synced: {1}"},
    Message{"NotARegularFile", "It is not a regular file."},
    // descriptions
    Message{"UnwritableName", "The name \"{0}\" holds, at {1}, {2}, which XML cannot hold."},
    Message{"ForeignDescription", "The model \"{0}\" was not read from this description."},
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
    Message{"JsonUnexpected", "{0}: expected {1}, found {2}."},
    Message{"JsonWrongCount", "{0}: expected {1} elements, found {2}."},
    Message{"JsonUnwritable", "It cannot be written as JSON: {0}."},
    Message{"NotRecords", "Expected a struct array of records, found \"{0}\"."},
    Message{"ObjectInValue", "{0}: An object of class \"{1}\" cannot be kept in a file."},
};

}  // namespace

zmsvException fileError(const char* key, std::vector<zmsvMessageArgument> arguments)
{
    static const ErrorCatalog catalog(fileCatalog, messages);
    return catalog.error(key, std::move(arguments));
}

}  // namespace reference_host
