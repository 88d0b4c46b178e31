#include "python/HostThread.hpp"

#include <stdexcept>
#include <thread>

namespace py = pybind11;

namespace zmhost {

namespace {

const std::thread::id hostThread = std::this_thread::get_id();

/// The C function that pybind11 uses for everything that it binds.
PyCFunctionWithKeywords dispatch = nullptr;

PyObject* dispatchOnHostThread(PyObject* self, PyObject* arguments, PyObject* keywords)
{
    if (std::this_thread::get_id() != hostThread) {
        PyErr_SetString(PyExc_RuntimeError, "the host is used from the thread that imported zmhost");
        return nullptr;
    }
    return dispatch(self, arguments, keywords);
}

// Python keeps C functions of every signature as PyCFunction.
template <class To, class From>
To functionAs(From function)
{
    return reinterpret_cast<To>(reinterpret_cast<void (*)()>(function));
}

/// Puts the check in front of a bound function; leaves everything else alone.
void guard(py::handle function)
{
    const py::handle bare = py::detail::get_function(function);
    if (!bare || !PyCFunction_Check(bare.ptr())) {
        return;
    }
    PyCFunction& entry = reinterpret_cast<PyCFunctionObject*>(bare.ptr())->m_ml->ml_meth;
    const auto current = functionAs<PyCFunctionWithKeywords>(entry);
    if (current == dispatchOnHostThread) {
        return;
    }
    if (dispatch != nullptr && current != dispatch) {
        throw std::logic_error("a function that was bound in another way than the others");
    }
    dispatch = current;
    entry = functionAs<PyCFunction>(&dispatchOnHostThread);
}

void guardMember(py::handle member)
{
    if (PyObject_TypeCheck(member.ptr(), &PyProperty_Type) != 0) {
        guard(member.attr("fget"));
        guard(member.attr("fset"));
    } else if (PyObject_TypeCheck(member.ptr(), &PyStaticMethod_Type) != 0) {
        guard(member.attr("__func__"));
    } else {
        guard(member);
    }
}

}  // namespace

void bindToHostThread(const py::module_& module)
{
    for (const auto& [name, bound] : py::reinterpret_borrow<py::dict>(module.attr("__dict__"))) {
        guard(bound);
        if (PyType_Check(bound.ptr()) != 0) {
            for (const py::handle member : bound.attr("__dict__").attr("values")()) {
                guardMember(member);
            }
        }
    }
}

}  // namespace zmhost
