#ifndef ZM_REFERENCE_HOST_SSP_NUMBER_JSON_HPP
#define ZM_REFERENCE_HOST_SSP_NUMBER_JSON_HPP

#include "reference_host/ssp/JsonDocument.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>

// The elements of numeric and logical values as JSON arrays; see ValueJson.hpp for the form.

namespace reference_host {

/// The real parts of the elements (0), or the imaginary ones (1).
Json numbersToJson(const nvArray* value, std::size_t part);

/// Fills that part of the elements from an array. A number that the class of the value cannot hold exactly is
/// a `JsonRefusal`. REQUIRES: the array has as many elements as the value.
void setNumbers(nvArray* value, std::size_t part, const Json& array);

}  // namespace reference_host

#endif
