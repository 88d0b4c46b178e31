#ifndef ZM_PYTHON_ARRAY_BUFFERS_HPP
#define ZM_PYTHON_ARRAY_BUFFERS_HPP

#include "reference_host/values/Value.hpp"

#include <pybind11/pybind11.h>

/// Arrays of numbers across Python's buffer protocol, which numpy, `array` and `memoryview` speak.
namespace zmhost {

/// Whether the object offers its elements as a buffer and is not a text of bytes.
bool isBuffer(pybind11::handle object);

/// A numeric or logical value with the shape and class of the buffer: no dimension gives one number, one
/// dimension a row. Throws `NoHostValue` for element types that the host does not have, such as dates and
/// 16-bit floats.
reference_host::OwnedValue bufferToHost(pybind11::handle object);

}  // namespace zmhost

#endif
