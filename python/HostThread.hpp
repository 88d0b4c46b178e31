#ifndef ZM_PYTHON_HOST_THREAD_HPP
#define ZM_PYTHON_HOST_THREAD_HPP

#include <pybind11/pybind11.h>

namespace zmhost {

/// The host has one thread, the one that imported the module. Has everything that is bound into the module
/// by now, functions and the members of classes alike, refuse another one with Python's `RuntimeError`.
void bindToHostThread(const pybind11::module_& module);

}  // namespace zmhost

#endif
