#pragma once

#include "host/ClassObjects.hpp"
#include "reference_host/values/Dimensions.hpp"
#include "reference_host/values/Value.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace reference_host {

// Readers of null: it is empty, has no elements, no class and an empty text. Where a reader needs a
// value, null is a host error. Indices are 0-based and linear, and checked.

ZM_REFHOST_API const Dimensions& dimensions(const nvArray* value);
ZM_REFHOST_API std::size_t elementCount(const nvArray* value);
ZM_REFHOST_API bool isEmpty(const nvArray* value);

/// One of the ten numeric classes.
ZM_REFHOST_API bool isNumeric(const nvArray* value);
ZM_REFHOST_API bool isComplex(const nvArray* value);

/// The text of a character value; empty for any empty value. Other classes are a host error.
ZM_REFHOST_API std::u16string text(const nvArray* value);
ZM_REFHOST_API std::string utf8Text(const nvArray* value);

/// The first element of a numeric, logical or character value.
ZM_REFHOST_API double scalar(const nvArray* value);
ZM_REFHOST_API std::int64_t scalarInteger(const nvArray* value);
ZM_REFHOST_API bool isTrueScalar(const nvArray* value);

/// Element `index` of a numeric or logical value; the real part where it is complex. The integer
/// form reads 64-bit classes exactly.
ZM_REFHOST_API double element(const nvArray* value, std::size_t index);
ZM_REFHOST_API std::int64_t integerElement(const nvArray* value, std::size_t index);

/// Converts as `toInteger` says; a logical becomes true for anything but 0.
ZM_REFHOST_API void setElement(nvArray* value, std::size_t index, double element);

ZM_REFHOST_API const bool* logicals(const nvArray* value);

/// The elements of a numeric value, complex ones as pairs; the second form stops sharing first.
ZM_REFHOST_API const void* numericData(const nvArray* value);
ZM_REFHOST_API void* writableNumericData(nvArray* value);

/// The instances of a class-object array.
ZM_REFHOST_API const std::vector<nvcos::COSInterfacePtr>& objects(const nvArray* value);

}  // namespace reference_host
