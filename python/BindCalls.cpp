#include "python/Bindings.hpp"
#include "python/Edge.hpp"
#include "python/ScriptArguments.hpp"
#include "python/ScriptFunctions.hpp"
#include "reference_host/calls/HostFunctions.hpp"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace zmhost {

using reference_host::HostFunctions;

namespace {

py::object callFunction(const std::string& name, const py::tuple& arguments, std::size_t outputs)
{
    return atEdge([&] {
        const CallArguments values(arguments, [&] { return Callee{name, {name}}; });
        return resultsToPython(HostFunctions::call(name, values.pointers(), outputs));
    });
}

}  // namespace

void bindCalls(py::module_& module)
{
    module.def("call_function", callFunction, py::arg("name"), py::arg("arguments"), py::arg("outputs"));
    module.def("function_names", &HostFunctions::names);
    module.def("define_function", defineScriptFunction, py::arg("name"), py::arg("function"),
               py::arg("replace"));
    module.def("remove_function", removeScriptFunction, py::arg("name"));
}

}  // namespace zmhost
