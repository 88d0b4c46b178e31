#ifndef ZM_PYTHON_BINDINGS_HPP
#define ZM_PYTHON_BINDINGS_HPP

#include <pybind11/pybind11.h>

/// Each source adds its classes and functions to the module `zmhost._zmhost`; scripts use the package
/// `zmhost`.
namespace zmhost {

void bindValues(pybind11::module_& module);
void bindArrayBuffers(pybind11::module_& module);
void bindClasses(pybind11::module_& module);
void bindCalls(pybind11::module_& module);
void bindDiagram(pybind11::module_& module);
void bindFiles(pybind11::module_& module);
void bindEditor(pybind11::module_& module);
void bindReports(pybind11::module_& module);
void bindRecorder(pybind11::module_& module);
void bindSimulation(pybind11::module_& module);
void bindLive(pybind11::module_& module);

}  // namespace zmhost

#endif
