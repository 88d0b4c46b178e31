#ifndef ZM_REFERENCE_HOST_SSP_ARCHIVE_HPP
#define ZM_REFERENCE_HOST_SSP_ARCHIVE_HPP

#include "reference_host/Export.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// What an archive may demand of us.
struct ArchiveLimits {
    std::size_t packedBytes = std::size_t{1} << 30U;
    std::size_t unpackedBytes = std::size_t{2} << 30U;  ///< of all entries together
    std::size_t entries = 65535;
};

/// An entry to be written; none stands for one that is to go.
struct ArchiveChange {
    std::string name;
    std::optional<std::string> content;
};

/// A ZIP archive in memory, as SSP demands it: entries stored or deflated, with relative paths that stay
/// inside, no two of one name, none encrypted. Reading checks all of that, every entry's length and checksum
/// and the limits, and keeps the bytes: what becomes of the file later is nothing to it. Immutable, but not
/// to be read by two threads at once.
///
/// Strict where archives can mean two things: nothing may stand before the first entry (no self-extracting
/// program) or after the archive's comment, no entry may reach into another, and an entry has the same name
/// in the directory, in its own header and in any extra field. A name is UTF-8, has no backslash, drive
/// letter or NUL, and no component that is empty, "." or "..".
class ZM_REFHOST_API Archive {
public:
    /// Whatever is refused is a host error: "InvalidArchive" (reason) when the archive as a whole is no
    /// good, "InvalidEntry" (the entry's name in quotes, reason) when one entry is. What an entry declares
    /// is held against the limits before anything is unpacked, and unpacking stops where it declares its end.
    explicit Archive(std::string bytes, const ArchiveLimits& limits = {});
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;
    ~Archive();

    /// In the order of the archive; the name of a folder ends with "/".
    const std::vector<std::string>& names() const noexcept;
    bool has(std::string_view name) const;

    /// The unpacked bytes of an entry. REQUIRES: it is there.
    std::string read(std::string_view name) const;

    /// A new archive: the entries of an old one (null: none) in their order, byte for byte as they stand
    /// there with all that the archive says about them, but those that `changes` replaces, in their places,
    /// or takes away; new ones follow, deflated and without a time. The same input gives the same bytes. An
    /// archive that these limits would refuse is not made, by the same errors; taking away what is not there
    /// changes nothing.
    static std::string pack(const Archive* base, const std::vector<ArchiveChange>& changes,
                            const ArchiveLimits& limits = {});

private:
    struct Content;
    std::unique_ptr<Content> m_content;
};

}  // namespace reference_host

#endif
