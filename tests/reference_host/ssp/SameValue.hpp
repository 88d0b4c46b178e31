#ifndef ZM_TESTS_REFERENCE_HOST_SSP_SAME_VALUE_HPP
#define ZM_TESTS_REFERENCE_HOST_SSP_SAME_VALUE_HPP

#include "reference_host/values/Value.hpp"

#include <string>

namespace reference_host {

/// Where two values are not identical and in what: class, sizes, names and order of fields, every bit of
/// their elements. Empty when they are.
std::string difference(const nvArray* first, const nvArray* second);

}  // namespace reference_host

#endif
