#pragma once

#include "reference_host/values/Value.hpp"

#include <string>
#include <vector>

namespace reference_host {

/// A struct array, or an array of the older struct-based object class; false for null.
ZM_REFHOST_API bool isStruct(const nvArray* value);
ZM_REFHOST_API bool isCell(const nvArray* value);

/// The field names in order; none for null and other classes.
ZM_REFHOST_API const std::vector<std::string>& fieldNames(const nvArray* value);

/// The borrowed field; null when it does not exist or is unset, and for null and other classes. An
/// element past the end is a host error.
ZM_REFHOST_API const nvArray* field(const nvArray* value, std::size_t index, const char* name);

/// Fills an unset field. The container owns the value when the operation returns normally; when it throws,
/// the value is destroyed. Containers can be nested up to 1000 deep: deeper is a host error, here and in
/// every operation that stores.
ZM_REFHOST_API void setField(nvArray* value, std::size_t index, const char* name, OwnedValue field);

/// As `field` and `setField`, by the index of the field, 0-based. An index out of range is a host error.
ZM_REFHOST_API const nvArray* numberedField(const nvArray* value, std::size_t index, std::size_t number);
ZM_REFHOST_API void setNumberedField(nvArray* value, std::size_t index, std::size_t number, OwnedValue field);

/// As `setField`; the former value of the field is destroyed.
ZM_REFHOST_API void replaceField(nvArray* value, std::size_t index, const char* name, OwnedValue field);

/// The borrowed value in a cell; null when it is unset, and for null and other classes.
ZM_REFHOST_API const nvArray* cell(const nvArray* value, std::size_t index);

/// Fills a cell; its former value is destroyed.
ZM_REFHOST_API void setCell(nvArray* value, std::size_t index, OwnedValue element);

// For the boundary, which takes values by bare pointer: the container owns the value only when the operation
// returns normally.
void storeField(nvArray* value, std::size_t index, const char* name, nvArray* field, bool mayBeSet);
void storeCell(nvArray* value, std::size_t index, nvArray* element);

}  // namespace reference_host
