#ifndef ZM_TESTS_REFERENCE_HOST_SSP_ZIP_BYTES_HPP
#define ZM_TESTS_REFERENCE_HOST_SSP_ZIP_BYTES_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// An entry of an archive that is written out byte by byte, with any lie that one likes. What is not given
/// is as it should be for a stored entry.
struct ZipEntry {
    std::string name;
    std::string packed = {};  ///< the content as it stands in the archive
    std::uint64_t method = 0;
    std::uint64_t flags = 0;
    std::optional<std::string> recordName = {};  ///< in the entry's own header, if it is another one there
    std::optional<std::uint64_t> packedSize = {};
    std::optional<std::uint64_t> unpackedSize = {};
    std::optional<std::uint64_t> checksum = {};
    std::optional<std::uint64_t> position = {};  ///< where the directory says that it begins
    std::uint64_t time = 0;
    std::uint64_t attributes = 0;
    std::uint64_t disk = 0;
    std::string recordExtra = {};
    std::string headerExtra = {};
    std::string comment = {};
    std::string after = {};  ///< bytes between this record and the next
};

/// What stands around the entries.
struct ZipFrame {
    std::string before = {};
    std::string comment = {};
    std::string after = {};
    bool isWide = false;  ///< with the end records of ZIP64
    std::uint64_t disk = 0;
    std::optional<std::uint64_t> count = {};
};

std::string zipBytes(const std::vector<ZipEntry>& entries, const ZipFrame& frame = {});

/// Entries "narrow" ("1234") and "wide" ("5678"). The lengths and the position of the second are in its wide
/// field (ZIP64), as a writer puts them there that does not know yet how long the entry gets.
std::string wideZip();

/// The content as deflated data that does not compress it.
std::string deflatedPlainly(std::string_view content);

std::uint64_t zipChecksum(std::string_view content);

/// A number of so many bytes, little-endian.
std::string zipNumber(std::uint64_t number, std::size_t size);

}  // namespace reference_host

#endif
