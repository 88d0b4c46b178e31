#ifndef ZM_REFERENCE_HOST_SUPPORT_FILE_READING_HPP
#define ZM_REFERENCE_HOST_SUPPORT_FILE_READING_HPP

#include "reference_host/Export.hpp"

#include <cstddef>
#include <filesystem>
#include <string>

namespace reference_host {

/// Reads a whole file of at most `limit` bytes. Only regular files are read: a device may have no end, and
/// opening a FIFO may block. Throws `std::runtime_error` whose text is the reason, without the file's name:
/// that of the operating system, "not a regular file", or the limit.
ZM_REFHOST_API std::string readRegularFile(const std::filesystem::path& file, std::size_t limit);

}  // namespace reference_host

#endif
