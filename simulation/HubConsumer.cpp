#include "simulation/HubConsumer.hpp"

#include <cmath>
#include <limits>

namespace simulation {

StepTime StepTime::at(double seconds, std::uint64_t number)
{
    constexpr double nanosecondsInSecond = 1e9;
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const double nanoseconds = seconds * nanosecondsInSecond;
    const bool fits = std::abs(nanoseconds) < static_cast<double>(most);
    return {seconds, fits ? std::llround(nanoseconds) : (seconds < 0.0 ? -most : most), number};
}

}  // namespace simulation
