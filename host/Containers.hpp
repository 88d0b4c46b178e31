#ifndef ZM_HOST_CONTAINERS_HPP
#define ZM_HOST_CONTAINERS_HPP

#include "host/Array.hpp"

#include <string>
#include <vector>

// ---- struct arrays ------------------------------------------------------------------------------

/// [owned] [throws] A struct array with these fields in this order, all unset. One dimension N makes
/// an N-by-1 array. `names` may be null when `fieldCount` is 0.
ZM_HOST_API nvArray* nvCreateStructArray(std::size_t dimensionCount, const std::size_t* dimensions,
                                         std::size_t fieldCount, const char* const* names);

/// [borrowed] [throws] [null ok] The field of element `index`; null when there is no such field, when
/// it was never set, when the value is null or not a struct. An index past the end is a host error.
ZM_HOST_API const nvArray* nvGetField(const nvArray* value, std::size_t index, const char* name);

/// [consumed: field] [throws] Fills an unset field of element `index`. The struct must have the
/// field, and the field must be unset: a value that stands there would be lost.
ZM_HOST_API void nvSetField(nvArray* value, std::size_t index, const char* name, nvArray* field);

/// [consumed: field] [throws] As `nvSetField`, whether or not the field is set; the host ends what it
/// held before.
ZM_HOST_API void nvReplaceField(nvArray* value, std::size_t index, const char* name, nvArray* field);

/// [throws] [null ok] The number of fields of a struct array; 0 for null and for any other class.
ZM_HOST_API std::size_t nvGetNumberOfFields(const nvArray* value);

/// [throws] [null ok] The field names in order; none for null and for any other class.
ZM_HOST_API std::vector<std::string> nvGetFieldNames(const nvArray* value);

// ---- cell arrays --------------------------------------------------------------------------------

/// [owned] [throws] A cell array, all cells unset.
ZM_HOST_API nvArray* nvCreateCellArray(std::size_t dimensionCount, const std::size_t* dimensions);

/// [consumed: element] [throws] Fills a cell; the host ends what it held before.
ZM_HOST_API void nvSetCell(nvArray* value, std::size_t index, nvArray* element);

/// [borrowed] [throws] [null ok] The value in a cell; null when it is unset, when the value is null or
/// not a cell array. An index past the end is a host error.
ZM_HOST_API const nvArray* nvGetCell(const nvArray* value, std::size_t index);

// ---- properties of class objects ----------------------------------------------------------------

/// [owned] [throws] A property of object `index` of a class-object array. A property that the class
/// does not have is a host error.
ZM_HOST_API nvArray* nvGetProperty(const nvArray* value, std::size_t index, const char* name);

/// [owned] [throws] As `nvGetProperty`, sharing the data of the property where it can; null when the
/// property has no value.
ZM_HOST_API nvArray* nvGetPropertyShared(const nvArray* value, std::size_t index, const char* name);

/// [throws] Sets a property of object `index` to a copy of `property`, which stays the caller's.
ZM_HOST_API void nvSetProperty(nvArray* value, std::size_t index, const char* name, const nvArray* property);

#endif
