#include "recorder/RecordingSettings.hpp"

#include "recorder/RecordingErrors.hpp"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace recorder {

namespace {

std::uint64_t parseCount(const char* key, const std::string& who, const std::string& text)
{
    std::uint64_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    if (error != std::errc() || stop != end || count == 0) {
        throw recordingError(key, {who, text});
    }
    return count;
}

}  // namespace

streamout::RecordingLimits parseLimits(const std::string& who, const std::string& decimation,
                                       const std::string& maxPoints)
{
    streamout::RecordingLimits limits;
    if (!decimation.empty()) {
        limits.decimation = parseCount("InvalidDecimation", who, decimation);
    }
    if (!maxPoints.empty() && maxPoints != "inf") {
        limits.maxPoints = parseCount("InvalidMaxPoints", who, maxPoints);
    }
    return limits;
}

}  // namespace recorder
