#ifndef ZM_REFERENCE_HOST_SSP_FILE_ERRORS_HPP
#define ZM_REFERENCE_HOST_SSP_FILE_ERRORS_HPP

#include "host/Exceptions.hpp"

#include <vector>

namespace reference_host {

/// The message catalog of everything that concerns files.
inline constexpr const char* fileCatalog = "reference_host:files";

/// A message of the files' catalog and its text. What reads or writes a part of a file throws the bare
/// reason ("TooDeep" …); who knows the file and the entry puts both in front ("InvalidFile").
zmsvException fileError(const char* key, std::vector<zmsvMessageArgument> arguments);

}  // namespace reference_host

#endif
