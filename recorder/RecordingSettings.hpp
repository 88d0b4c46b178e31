#ifndef ZM_RECORDER_RECORDING_SETTINGS_HPP
#define ZM_RECORDER_RECORDING_SETTINGS_HPP

#include "streamout/FileRecordingContext.hpp"

#include <string>

namespace recorder {

/// The text settings of a recording as numbers. The decimation is a whole number from 1; the maximum
/// points are one too, or "inf" for no limit; either may be empty, which stands for 1 and for no limit.
/// Decimal digits and nothing else: any other text is a host error that names the recording by `who`.
streamout::RecordingLimits parseLimits(const std::string& who, const std::string& decimation,
                                       const std::string& maxPoints);

}  // namespace recorder

#endif
