#ifndef ZM_REFERENCE_HOST_FILES_VALUE_JSON_HPP
#define ZM_REFERENCE_HOST_FILES_VALUE_JSON_HPP

#include "reference_host/Export.hpp"
#include "reference_host/files/JsonReader.hpp"
#include "reference_host/values/Value.hpp"

#include <string>
#include <string_view>

namespace reference_host {

/// A host value as JSON text (UTF-8), from which `valueFromJson` makes an identical value: class, sizes,
/// field order and every bit. A 1-by-1 double is a JSON number with a fraction or an exponent, a 1-by-1
/// logical is true or false, a character row a string, an unset field or cell (or null) is null; all else is
/// an object that names its class. An object of the class system is a live thing: it is refused
/// ("ObjectInValue", with its place inside the value).
ZM_REFHOST_API std::string valueToJson(const nvArray* value);

/// Text that is not what `valueToJson` writes is a host error with the reason and the place in the value.
ZM_REFHOST_API OwnedValue valueFromJson(std::string_view json, const JsonLimits& limits = {});

}  // namespace reference_host

#endif
