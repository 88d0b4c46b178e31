#ifndef ZM_REFERENCE_HOST_SSP_ARCHIVE_DIRECTORY_HPP
#define ZM_REFERENCE_HOST_SSP_ARCHIVE_DIRECTORY_HPP

#include "host/Exceptions.hpp"
#include "reference_host/ssp/Archive.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// What the directory of a ZIP archive says about an entry, and where its bytes lie. The views are into
/// the archive.
struct ArchiveEntry {
    std::string_view name;  ///< the bytes as they stand, whatever they are
    std::uint64_t method = 0;
    std::uint64_t packedSize = 0;
    std::uint64_t unpackedSize = 0;
    bool isEncrypted = false;
    std::uint64_t recordBegin = 0;   ///< where in the archive the entry's own header begins
    std::string_view record;         ///< from there, with content, up to the next record or the directory
    std::string_view header;         ///< its part of the directory
    std::size_t beginField = 0;      ///< where in `header` its `recordBegin` is kept …
    std::size_t beginFieldSize = 0;  ///< … and in how many bytes
};

struct ArchiveDirectory {
    std::vector<ArchiveEntry> entries;  ///< in the directory's order
    std::string_view comment;           ///< the archive's
};

/// Takes the bytes of an archive apart: it begins with its first record, no record reaches into another,
/// the directory stands between the last one and the end, the archive's comment ends it, and each entry's own
/// header says what the directory says. Names, methods and sizes are reported, not judged, and no content is
/// looked at. Whatever is not so is a host error
/// ("InvalidArchive", "InvalidEntry"), and so are more entries than `maximum`.
ArchiveDirectory readArchiveDirectory(std::string_view bytes, std::size_t maximum);

/// An archive of these entries in this order, each with its record and its header as they stand, and of this
/// comment. REQUIRES: at most 65535 entries, and fewer than 2^32 bytes together.
std::string joinArchive(const std::vector<ArchiveEntry>& entries, std::string_view comment);

/// How long `joinArchive` makes it.
std::uint64_t joinedSize(const std::vector<ArchiveEntry>& entries, std::string_view comment);

/// Gives all entries the earliest time that there is, the beginning of 1980, instead of the one at which they
/// were packed. REQUIRES: the directory is that of the bytes.
void clearTimes(std::string& bytes, const ArchiveDirectory& directory);

/// The archive as a whole is no good, for the reason with this key in the files' catalog.
[[noreturn]] void refuseArchive(const char* key, std::vector<zmsvMessageArgument> arguments = {});

/// One entry is no good. Its name may be any bytes.
[[noreturn]] void refuseEntry(std::string_view name, const char* key,
                              std::vector<zmsvMessageArgument> arguments = {});

}  // namespace reference_host

#endif
