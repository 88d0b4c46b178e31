#ifndef ZM_RECORDER_RECORDING_ERRORS_HPP
#define ZM_RECORDER_RECORDING_ERRORS_HPP

#include "host/Exceptions.hpp"

#include <vector>

namespace recorder {

/// The message catalog of everything that concerns recording and replay.
inline constexpr const char* recordingCatalog = "recorder:errors";

/// A message of the catalog and its text, to be thrown.
zmsvException recordingError(const char* key, std::vector<zmsvMessageArgument> arguments);

}  // namespace recorder

#endif
