#include "python/Edge.hpp"

#include "host/Exceptions.hpp"

#include <pybind11/stl.h>

#include <new>
#include <utility>

namespace py = pybind11;

namespace zmhost {

using reference_host::Warning;

namespace {

[[noreturn]] void raise(const py::object& exception)
{
    PyErr_SetObject(py::type::handle_of(exception).ptr(), exception.ptr());
    throw py::error_already_set();
}

py::object hostError(const zmsvException& error)
{
    return py::module_::import("zmhost._errors")
        .attr("host_error")(error.what(), error.id().catalog(), error.id().key(),
                            py::tuple(py::cast(error.id().arguments())));
}

py::object scriptError(const ScriptError& error)
{
    const py::object errorType = py::module_::import("zmhost._errors").attr("HostError");
    if (py::isinstance(error.cause(), errorType)) {
        return error.cause();
    }
    py::object raised = hostError(error);
    raised.attr("__cause__") = error.cause();
    return raised;
}

py::object memoryError()
{
    return py::reinterpret_borrow<py::object>(PyExc_MemoryError)();
}

/// The Python exception for a failure; null where pybind11 has its own way.
py::object pythonError(const std::exception_ptr& failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const py::error_already_set& error) {
        return error.value();
    } catch (const ScriptError& error) {
        return scriptError(error);
    } catch (const zmsvException& error) {
        return hostError(error);
    } catch (const zmsvOutOfMemoryException&) {
        return memoryError();
    } catch (const std::bad_alloc&) {
        return memoryError();
    } catch (...) {
        return {};
    }
}

void translate(std::exception_ptr failure)
{
    try {
        std::rethrow_exception(std::move(failure));
    } catch (const zmsvException& error) {
        const py::object raised = hostError(error);
        PyErr_SetObject(py::type::handle_of(raised).ptr(), raised.ptr());
    } catch (const zmsvOutOfMemoryException&) {
        PyErr_NoMemory();
    }
}

}  // namespace

void registerErrors()
{
    py::register_local_exception_translator(translate);
}

void Edge::listenToWarnings()
{
    reference_host::Warnings::setListener([](const Warning& warning) {
        if (s_current != nullptr) {
            s_current->m_warnings.push_back(warning);
        }
    });
}

void Edge::close(const std::exception_ptr& failure)
{
    if (m_interrupt) {
        raise(m_interrupt);
    }
    if (m_warnings.empty() && failure == nullptr) {
        return;
    }
    const py::object error = failure == nullptr ? py::object() : pythonError(failure);
    if (!m_warnings.empty()) {
        deliver(error ? error : py::none());
    }
    if (error) {
        raise(error);
    }
    if (failure != nullptr) {
        std::rethrow_exception(failure);
    }
}

void Edge::deliver(const py::object& error)
{
    py::list warnings;
    for (const Warning& warning : m_warnings) {
        warnings.append(py::make_tuple(warning.text, warning.id.catalog(), warning.id.key(),
                                       py::tuple(py::cast(warning.id.arguments()))));
    }
    py::module_::import("zmhost._errors").attr("deliver_warnings")(warnings, error);
}

}  // namespace zmhost
