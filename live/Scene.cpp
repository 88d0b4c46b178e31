#include "live/Scene.hpp"

#include <cmath>

namespace live {

void LiveValue::merge(const LiveValue& later) noexcept
{
    time = later.time;
    latest = later.latest;
    // fmin and fmax prefer a number to a NaN.
    minimum = std::fmin(minimum, later.minimum);
    maximum = std::fmax(maximum, later.maximum);
    count += later.count;
}

}  // namespace live
