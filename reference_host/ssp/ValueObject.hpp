#ifndef ZM_REFERENCE_HOST_SSP_VALUE_OBJECT_HPP
#define ZM_REFERENCE_HOST_SSP_VALUE_OBJECT_HPP

#include "reference_host/ssp/JsonDocument.hpp"
#include "reference_host/ssp/JsonPlace.hpp"
#include "reference_host/values/Value.hpp"

#include <vector>

namespace reference_host {

/// A JSON object that names a class, as ValueJson.hpp shows them: its members, and the values in "values",
/// which stands null among the members. An array in it is the values of one field.
struct ValueObject {
    using Values = std::vector<OwnedValue>;

    Json members = Json::object();
    Values values;
    std::vector<Values> fields;
};

/// The value. What is no such object is a host error with the place, which is given as that of the object.
OwnedValue valueOf(ValueObject object, const JsonPlace& place);

}  // namespace reference_host

#endif
