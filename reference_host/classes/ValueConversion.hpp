#ifndef ZM_REFERENCE_HOST_CLASSES_VALUE_CONVERSION_HPP
#define ZM_REFERENCE_HOST_CLASSES_VALUE_CONVERSION_HPP

#include "host/ClassObjects.hpp"
#include "reference_host/values/Value.hpp"

#include <string>

namespace reference_host {

/// Converts a value to what method bodies and properties of a declared type see. Returns why it cannot
/// be done, as the end of a sentence ("must be a uint32 scalar, not \"abc\""), or an empty text.
///
///   texts      a character row, or any empty character or numeric value
///   numbers    a real number or a logical, 1-by-1; for the integer types without a fraction, in range
///   logical    as numbers; anything but 0 is true
///   any        every value, unchanged and borrowed
///   classes    a 1-by-1 object of that class, borrowed
std::string convertToType(const nvArray* value, const nvcos::COSType& type, nvcos::COSValue& converted);

/// The host value of anything but a `nvArray*`; null for no value.
///
/// REQUIRES: `value` holds no `nvArray*`.
OwnedValue makeValue(const nvcos::COSValue& value);

}  // namespace reference_host

#endif
