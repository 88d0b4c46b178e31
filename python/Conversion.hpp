#ifndef ZM_PYTHON_CONVERSION_HPP
#define ZM_PYTHON_CONVERSION_HPP

#include "reference_host/values/Value.hpp"

#include <pybind11/pybind11.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// How host values appear in Python, and how Python objects are converted for the host:
///
///   None                        0-by-0 double; an unset field or cell reads as None, too
///   bool, str                   logical scalar, character row ("" is 0-by-0)
///   float, int, complex         double scalar; an int beyond 2**53 becomes an int64 or uint64
///   __index__, __float__        the int or float that the object converts itself to
///   buffers (numpy, array)      an array of numbers of that class and shape; one dimension is a row
///   dict, any mapping           1-by-1 struct, the keys in order
///   list or tuple of mappings   N-by-1 struct array; all must have the same keys
///   any other list or tuple     1-by-N cell array; [] is 0-by-0
///   objects of `zmhost`         the value that they hold, which they give in `__host_value__()`
///
/// The way back is the same, numbers by their class (integer classes to int). Values without such a form
/// (struct arrays, arrays of numbers, objects, cell arrays of other shapes) are handed to
/// `zmhost._values.wrap` in a `ValueHandle`, which keeps class and dimensions.
namespace zmhost {

/// The Python object has no host value. A `TypeError` in Python unless a caller adds the argument's position.
class NoHostValue : public pybind11::type_error {
public:
    using pybind11::type_error::type_error;
};

/// Throws `NoHostValue`, or the exception that the object's own conversion raised.
reference_host::OwnedValue toHost(pybind11::handle object);

/// One element of a struct array, or a field or cell, of any class; null is None.
pybind11::object toPython(const nvArray* value);
pybind11::object toPython(reference_host::OwnedValue value);

/// Element `index` of a numeric or logical value as a bool, int, float or complex.
pybind11::object numberToPython(const nvArray* value, std::size_t index);

/// A numeric or logical value of that class ("uint32"), filled column by column. Integers out of the
/// class's range, and fractions for an integer class, are refused.
reference_host::OwnedValue makeNumbers(const std::vector<std::size_t>& dimensions,
                                       const pybind11::list& numbers, const std::string& className);

/// An N-by-1 struct array of mappings. Without names, those of the first mapping are taken.
reference_host::OwnedValue makeStructArray(const pybind11::sequence& elements,
                                           const std::optional<std::vector<std::string>>& fieldNames);

/// A Python object as an argument: the value inside a wrapper is borrowed, any other object is converted.
class Argument {
public:
    explicit Argument(pybind11::handle object);
    const nvArray* get() const noexcept { return m_value; }

private:
    pybind11::object m_holder;
    reference_host::OwnedValue m_converted;
    const nvArray* m_value;
};

}  // namespace zmhost

#endif
