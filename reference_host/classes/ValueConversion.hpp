#pragma once

#include "host/ClassObjects.hpp"
#include "reference_host/values/Value.hpp"

#include <span>
#include <string>

namespace reference_host {

/// Converts a value to the native type behind a declared type. Returns an empty text, or the reason for which
/// it cannot be converted, as the end of a sentence ("must be text, not double 2").
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

/// Values that cross to or from a library, for the journal.
struct NativeValues {
    std::span<const nvcos::COSValue> values;
};
std::string describeArgument(const NativeValues& values);

}  // namespace reference_host
