#ifndef ZM_REFERENCE_HOST_SSP_VALUE_JSON_HPP
#define ZM_REFERENCE_HOST_SSP_VALUE_JSON_HPP

#include "reference_host/Export.hpp"
#include "reference_host/ssp/JsonDocument.hpp"
#include "reference_host/values/Value.hpp"

#include <string>
#include <string_view>

namespace reference_host {

// Host values as JSON. Files keep this form, so that what is written here stays readable.
//
//   null, an unset field or cell      null
//   double, 1-by-1, real and finite   1.0   -0.0   1e+300   always with a fraction or an exponent
//   logical, 1-by-1                   true   false
//   char, 1-by-N with N > 0, or 0-by-0, well-formed UTF-16     "text"
//   everything else                   an object that names its class:
//     {"class":"int8","size":[1,2],"data":[-1,7]}                     a numeric class; "logical" likewise
//     {"class":"single","data":[1.5],"imaginary":["NaN"]}             with "imaginary" it is complex
//     {"class":"char","size":[2,1],"text":"ab"}                       text may be {"units":[55296]}
//     {"class":"cell","size":[1,2],"values":[null,"a"]}
//     {"class":"struct","size":[1,2],"fields":["a","b"],"values":[[1.0,2.0],["x",null]]}
//     {"class":"object","name":"Old","fields":[],"values":[]}         the older struct-based objects
//
// "size" has two sizes or more and is left out for 1-by-1. Elements are in the order of memory, column by
// column; those of a struct array field by field, and in each field element by element. Names of fields and
// classes may be {"bytes":[255]} where they are not UTF-8. Integers are exact in all classes; a single is
// written as the double that it equals. What is not finite is "Inf", "-Inf" or "NaN"; a NaN of another sign
// or payload is its bits, "0xfff8000000000000". The order of members is free when read.

/// The value as JSON, from which `valueOfJson` makes an identical one: class, sizes, order of fields and
/// every bit. Objects of the class system cannot be kept: `ObjectInValue`.
ZM_REFHOST_API Json jsonOfValue(const nvArray* value);

struct ObjectInValue {
    std::string place;  ///< JSON Pointer, empty for the value itself
    std::string className;
};

/// As a host error about a value that is at `place` in a document.
ZM_REFHOST_API zmsvException objectError(const std::string& place, const ObjectInValue& found);

/// The value; null for null. JSON of another form is a `JsonRefusal`. No size is believed before as many
/// elements are there. A struct array without fields has nothing in its elements, and may have any size.
ZM_REFHOST_API OwnedValue valueOfJson(const Json& json);

/// The same from and to text; errors are host errors with the reason and the JSON Pointer. Text that the
/// limits would keep from being read is not written.
ZM_REFHOST_API std::string valueToJson(const nvArray* value, const JsonLimits& limits = {});
ZM_REFHOST_API OwnedValue valueFromJson(std::string_view json, const JsonLimits& limits = {});

}  // namespace reference_host

#endif
