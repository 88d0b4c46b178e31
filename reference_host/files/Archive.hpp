#ifndef ZM_REFERENCE_HOST_FILES_ARCHIVE_HPP
#define ZM_REFERENCE_HOST_FILES_ARCHIVE_HPP

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
/// inside, no two of one name, none encrypted. Reading checks all of that, every entry's checksum and the
/// limits, and keeps the bytes: what becomes of the file later is nothing to it. Immutable.
class ZM_REFHOST_API Archive {
public:
    /// Whatever is refused is a host error: "InvalidArchive" with the reason when the archive as a whole is
    /// no good, "InvalidEntry" with the entry's name and the reason when one entry is.
    explicit Archive(std::string bytes, const ArchiveLimits& limits = {});
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;
    ~Archive();

    /// In the order of the archive; the name of a folder ends with "/".
    const std::vector<std::string>& names() const noexcept;
    bool has(std::string_view name) const;

    /// The unpacked bytes of an entry that is there.
    std::string read(std::string_view name) const;

    /// A new archive: the entries of an old one (null: none) in their order, packed bytes, method, time and
    /// attributes unchanged, but those that `changes` replaces or takes away; new ones at the end. The same
    /// input gives the same bytes.
    static std::string pack(const Archive* base, const std::vector<ArchiveChange>& changes);

private:
    struct Content;
    std::unique_ptr<Content> m_content;
};

}  // namespace reference_host

#endif
