#pragma once

#include "host/ClassObjects.hpp"
#include "reference_host/values/Dimensions.hpp"
#include "reference_host/values/Value.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// A character row; 0-by-0 when the text is empty. The narrow form is UTF-8.
ZM_REFHOST_API OwnedValue makeText(std::u16string_view text);
ZM_REFHOST_API OwnedValue makeText(std::string_view text);

/// A character value of any size, filled column by column; the text has as many units as elements.
ZM_REFHOST_API OwnedValue makeCharacters(Dimensions dimensions, std::u16string text);

ZM_REFHOST_API OwnedValue makeDouble(double value);
ZM_REFHOST_API OwnedValue makeLogical(bool value);

/// A 1-by-1 number of the class, converted as `toInteger` says.
ZM_REFHOST_API OwnedValue makeNumber(double value, nvClassID classID);

/// All elements 0; `setElement` fills them.
ZM_REFHOST_API OwnedValue makeNumeric(Dimensions dimensions, nvClassID classID,
                                      nvComplexity complexity = nvComplexity::Real);
ZM_REFHOST_API OwnedValue makeLogicals(Dimensions dimensions);

/// A struct array, all fields unset. A field name given twice is a host error.
ZM_REFHOST_API OwnedValue makeStruct(Dimensions dimensions, std::vector<std::string> fieldNames);

/// An array of the older struct-based object class.
ZM_REFHOST_API OwnedValue makeStructObject(std::string className, Dimensions dimensions,
                                           std::vector<std::string> fieldNames);

/// A cell array, all cells unset.
ZM_REFHOST_API OwnedValue makeCells(Dimensions dimensions);

/// An array of handles to instances of one class, named in full; as many as the dimensions say.
ZM_REFHOST_API OwnedValue makeObjects(std::string className, Dimensions dimensions,
                                      std::vector<nvcos::COSInterfacePtr> instances);

/// The 0-by-0 double that means "no value".
ZM_REFHOST_API OwnedValue makeEmptyValue();

/// Copies; null of null. A copy is owned and in no scope.
ZM_REFHOST_API OwnedValue copyDeep(const nvArray* value);
ZM_REFHOST_API OwnedValue copyShared(const nvArray* value);

/// The payload for writing, no longer shared. For the sources of values/. REQUIRES: as `requireOwned`.
Payload& writablePayload(nvArray* value);

}  // namespace reference_host
