#ifndef ZM_REFERENCE_HOST_SSP_ATOMIC_FILE_HPP
#define ZM_REFERENCE_HOST_SSP_ATOMIC_FILE_HPP

#include "reference_host/Export.hpp"

#include <filesystem>
#include <string_view>

namespace reference_host {

/// Writes a file so that, whatever happens meanwhile, its name leads to the former content or to the new
/// one, whole: into a temporary file beside it, which is synced and then takes the name. A link is followed,
/// so that the file which it names is replaced; a file that is there keeps its permissions, and one that may
/// not be written or is no regular file is refused. A failure (a full disk, say) is a host error
/// ("UnwritableFile": file, reason); then the temporary file is gone and the former content is there, unless
/// it was only the last step that failed, syncing the folder. A process that is killed may leave its
/// temporary file behind: a dot, the name and random digits.
ZM_REFHOST_API void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes);

}  // namespace reference_host

#endif
