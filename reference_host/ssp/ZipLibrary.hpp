#ifndef ZM_REFERENCE_HOST_SSP_ZIP_LIBRARY_HPP
#define ZM_REFERENCE_HOST_SSP_ZIP_LIBRARY_HPP

#include "reference_host/ssp/ArchiveDirectory.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct zip;

namespace reference_host {

/// Unpacks entries of an archive. What it finds damaged is a host error ("InvalidArchive", "InvalidEntry").
class ZipReader {
public:
    ZipReader() = default;

    /// The library has to see the same entries in the same order as we do. Its own checks of consistency are
    /// not asked for: they refuse what common tools write into a pipe. REQUIRES: the bytes outlive the
    /// reader.
    ZipReader(std::string_view bytes, const std::vector<ArchiveEntry>& entries);

    /// Hands the content of the entry on, part by part, no more than it declares; in the end length and
    /// checksum have been found right.
    void unpack(std::size_t position, const ArchiveEntry& entry,
                const std::function<void(std::string_view)>& take) const;

private:
    struct Discard {
        void operator()(zip* archive) const noexcept;
    };
    std::unique_ptr<zip, Discard> m_archive;
};

/// What is to become an entry. The views have to last until it is packed.
struct UnpackedEntry {
    std::string_view name;
    std::string_view content;
};

/// An archive of these alone, all deflated. REQUIRES: there is one, no two have the same name, and each name
/// is fit for an archive.
std::string deflatedArchive(const std::vector<UnpackedEntry>& entries);

}  // namespace reference_host

#endif
