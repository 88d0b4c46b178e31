#ifndef ZM_REFERENCE_HOST_VALUES_VALUE_DESCRIPTION_HPP
#define ZM_REFERENCE_HOST_VALUES_VALUE_DESCRIPTION_HPP

#include "reference_host/values/Value.hpp"

#include <string>

namespace reference_host {

/// One readable line: `"Gain"`, `double 2`, `logical true`, `1x3 struct {UUID, BlockPath_}`,
/// `0x0 double`, `1x2 cell`, `1x1 Zelmar.HMI.SignalSpecification`, `null`, `a value that has ended`.
/// Never fails for a value that has ended.
ZM_REFHOST_API std::string describe(const nvArray* value);

/// As logs name it: `#12 double 2`.
ZM_REFHOST_API std::string describeWithSerial(const nvArray* value);

}  // namespace reference_host

#endif
