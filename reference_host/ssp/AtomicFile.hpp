#ifndef ZM_REFERENCE_HOST_SSP_ATOMIC_FILE_HPP
#define ZM_REFERENCE_HOST_SSP_ATOMIC_FILE_HPP

#include "reference_host/Export.hpp"

#include <filesystem>
#include <string_view>

namespace reference_host {

/// Writes a file so that its name leads to the former content or to the new one, whole, also after a crash:
/// into a temporary file beside it, which is synced and then renamed. A link is followed, so that the file
/// which it names is replaced. A file that is there keeps its permissions, and its owner and group where this
/// process may set them; extended attributes, access control lists and further hard links are not kept. A
/// file that may not be written, or is no regular file, is refused.
///
/// A failure (a full disk, for example) is a host error "UnwritableFile" (file, reason); the former content
/// is there then, and no temporary file. Only when the file has been replaced and syncing its folder fails,
/// it is "FileNotDurable" (file, reason).
///
/// A process that is killed leaves its temporary file behind: a dot, the name, a dot and 12 hexadecimal
/// digits. The next call for a file in that folder with the same extension removes it.
ZM_REFHOST_API void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes);

}  // namespace reference_host

#endif
