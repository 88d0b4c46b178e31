#ifndef ZM_REFERENCE_HOST_SSP_ZIP_LIBRARY_HPP
#define ZM_REFERENCE_HOST_SSP_ZIP_LIBRARY_HPP

#include "host/Exceptions.hpp"

#include <zip.h>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// libzip's objects as owners, and its errors as host errors.

namespace reference_host {

/// The archive as a whole is refused, for the reason with this key in the catalog of files.
[[noreturn]] void refuseArchive(const char* key, std::vector<zmsvMessageArgument> arguments = {});

/// One entry is refused. Its name may be any bytes.
[[noreturn]] void refuseEntry(std::string_view name, const char* key,
                              std::vector<zmsvMessageArgument> arguments = {});

struct DiscardZip {
    void operator()(zip_t* archive) const noexcept { zip_discard(archive); }
};
using Zip = std::unique_ptr<zip_t, DiscardZip>;

struct FreeZipSource {
    void operator()(zip_source_t* source) const noexcept { zip_source_free(source); }
};
using ZipSource = std::unique_ptr<zip_source_t, FreeZipSource>;

/// A source of bytes that outlive it.
ZipSource zipSource(std::string_view bytes);

/// Opens an archive for reading. Archives that the library finds inconsistent are accepted only in the way in
/// which common tools write them into a pipe.
Zip openZip(std::string_view bytes);

/// Opens bytes for writing, or an empty archive if there are none. `result` gets the source from which
/// `writtenZip` reads the archive.
Zip openZipForWriting(std::string_view bytes, ZipSource& result);

/// Writes the archive and returns its bytes.
std::string writtenZip(Zip archive, zip_source_t* result);

/// Adds an entry at the end, deflated and with the earliest time. The library would ignore the level when it
/// replaces an entry, and take twice the time. REQUIRES: the content outlives the archive.
void addZipEntry(zip_t* archive, const std::string& name, std::string_view content);

/// The library's reason; out of memory is thrown as the host's error.
std::string zipReason(zip_error_t* error);

}  // namespace reference_host

#endif
