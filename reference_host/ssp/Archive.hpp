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

/// The largest archives that are read and written.
struct ArchiveLimits {
    std::size_t packedBytes = std::size_t{1} << 30U;
    std::size_t unpackedBytes = std::size_t{2} << 30U;  ///< of all entries together
    std::size_t entries = 65535;
};

/// An entry to be written, or to be removed if it has no content.
struct ArchiveChange {
    std::string name;
    std::optional<std::string> content;
};

/// A ZIP archive in memory, read with libzip: entries are stored or deflated and not encrypted, their names
/// are UTF-8 (names in code page 437 are converted), relative paths that stay inside, and unique. Later
/// changes of the file have no effect. Immutable; one thread at a time.
///
/// Errors are host errors: "InvalidArchive" (reason) about the archive as a whole, "InvalidEntry" (the
/// entry's name in quotes, reason) about one entry.
class ZM_REFHOST_API Archive {
public:
    /// Checks the directory: names, and the declared sizes against the limits. Unpacks nothing.
    explicit Archive(std::string bytes, const ArchiveLimits& limits = {});
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;
    ~Archive();

    /// In the order of the archive; the name of a folder ends with "/".
    const std::vector<std::string>& names() const noexcept;
    bool has(std::string_view name) const;

    /// The unpacked bytes of an entry, whose length and checksum have been checked. An entry that is missing,
    /// or declares more than `maximum` bytes, is refused before anything is unpacked.
    std::string read(std::string_view name, std::size_t maximum = std::size_t{2} << 30U) const;

    /// Unpacks all entries that were not read yet, and checks their lengths and checksums.
    void verify() const;

    /// Why entries of these names cannot be added: the name of an entry that is a file and would have to be a
    /// folder, or the reverse; empty if they can. An entry with the same name is no obstacle.
    std::string obstacleTo(const std::vector<std::string>& names) const;

    /// Returns a new archive: the entries of an old one (null: none) in their order, with the content and
    /// attributes that they have, except those that `changes` names; then the new entries and the new content
    /// of old ones, deflated and with the earliest time that ZIP has. The same input gives the same bytes. An
    /// archive that the constructor would refuse is refused. Removing an entry that is missing has no effect.
    /// REQUIRES: an entry is left.
    static std::string pack(const Archive* base, const std::vector<ArchiveChange>& changes,
                            const ArchiveLimits& limits = {});

private:
    struct Content;
    std::unique_ptr<Content> m_content;
};

}  // namespace reference_host

#endif
