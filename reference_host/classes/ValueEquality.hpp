#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"

namespace reference_host {

/// Whether two values of any kind are equal, at every depth. Values of different dimensions differ. The
/// rest depends on the class:
///
///  - Numbers and logicals are compared by number, whatever their classes: a uint32 1, a double 1.0 and
///    a logical true are equal. Nothing is rounded on the way: a 64-bit integer differs from the double
///    next to it. NaN differs from everything, itself included; -0.0 equals 0.0. A complex number with
///    the imaginary part 0 equals the real one.
///  - Text equals text with the same code units, and nothing else.
///  - Structs are equal when they have the same fields, in whatever order, and each field of each
///    element is equal. An object of the older struct-based class has to be of the same class too.
///  - Cell arrays are compared cell by cell.
///  - Null, an unset field and an unset cell count as the empty value, a 0-by-0 number.
///  - Objects are handles. Two of the same instance are equal. Two instances of one class are equal when
///    all properties that scripts may assign are, as they read; instances of a class without such a
///    property are never equal. Cycles are ignored.
///
/// Reading properties runs the code of their classes, whose errors pass through.
ZM_REFHOST_API bool areEqual(const nvArray* left, const nvArray* right);

/// The host function "isequal": takes two values and gives one logical. Another number of inputs is a
/// host error ("WrongArgument").
ZM_REFHOST_API void isEqual(HostFunctionCall& call);

}  // namespace reference_host
