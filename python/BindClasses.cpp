#include "python/Bindings.hpp"
#include "python/Conversion.hpp"
#include "python/Edge.hpp"
#include "python/ScriptArguments.hpp"
#include "python/ValueHandle.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <pybind11/stl.h>

#include <memory>

namespace py = pybind11;

namespace zmhost {

using reference_host::ClassDescription;
using reference_host::ClassSystem;
using reference_host::MethodDescription;
using reference_host::ObjectAccess;
using reference_host::PropertyDescription;

namespace {

Callee methodOf(const std::string& className, const std::string& method)
{
    return {className + "." + method, {className, method}};
}

std::string simpleName(const std::string& fullName)
{
    return fullName.substr(fullName.rfind('.') + 1);
}

std::unique_ptr<ValueHandle> construct(const std::string& className, const py::tuple& arguments)
{
    return atEdge([&] {
        const CallArguments values(arguments, [&] { return methodOf(className, simpleName(className)); });
        return std::make_unique<ValueHandle>(ObjectAccess::construct(className, values.pointers()));
    });
}

py::object callMethod(const ValueHandle& object, const std::string& method, const py::tuple& arguments)
{
    return atEdge([&] {
        const nvArray* value = object.get();
        const CallArguments values(arguments,
                                   [&] { return methodOf(reference_host::className(value), method); });
        return resultsToPython(ObjectAccess::callMethod(value, method, values.pointers()));
    });
}

py::object callStatic(const std::string& className, const std::string& method, const py::tuple& arguments)
{
    return atEdge([&] {
        const CallArguments values(arguments, [&] { return methodOf(className, method); });
        return resultsToPython(ObjectAccess::callStatic(className, method, values.pointers()));
    });
}

py::object getProperty(const ValueHandle& object, const std::string& property)
{
    return atEdge([&] { return toPython(ObjectAccess::getProperty(object.get(), property)); });
}

void setProperty(const ValueHandle& object, const std::string& property, py::handle value)
{
    atEdge([&] {
        try {
            ObjectAccess::setProperty(object.get(), property, Argument(value).get());
        } catch (const NoHostValue& why) {
            const std::string className = reference_host::className(object.get());
            throw zmsvException({"reference_host:classes", "WrongValue", {className, property}},
                                className + "." + property + " cannot take this: " + why.what());
        }
    });
}

const char* kindName(const MethodDescription& method)
{
    switch (method.kind) {
        case MethodDescription::Kind::Static:
            return "static";
        case MethodDescription::Kind::Constructor:
            return "constructor";
        default:
            return "instance";
    }
}

bool isReadOnly(const PropertyDescription& property)
{
    return property.access == nvcos::COSPropAccess::ScriptReadOnly;
}

void bindDescriptions(py::module_& module)
{
    py::class_<MethodDescription>(module, "MethodDescription")
        .def_readonly("name", &MethodDescription::name)
        .def_property_readonly("kind", kindName)
        .def_readonly("inputs", &MethodDescription::inputs)
        .def_readonly("optional_inputs", &MethodDescription::optionalInputs)
        .def_readonly("outputs", &MethodDescription::outputs)
        .def_readonly("signature", &MethodDescription::signature);
    py::class_<PropertyDescription>(module, "PropertyDescription")
        .def_readonly("name", &PropertyDescription::name)
        .def_readonly("type", &PropertyDescription::type)
        .def_property_readonly("read_only", isReadOnly);
    py::class_<ClassDescription>(module, "ClassDescription")
        .def_readonly("full_name", &ClassDescription::fullName)
        .def_readonly("simple_name", &ClassDescription::simpleName)
        .def_readonly("constructor", &ClassDescription::constructor)
        .def_readonly("methods", &ClassDescription::methods)
        .def_readonly("properties", &ClassDescription::properties);
    module.def("describe_class", [](const std::string& name) {
        return atEdge([&] { return reference_host::describeClass(name); });
    });
}

}  // namespace

void bindClasses(py::module_& module)
{
    bindDescriptions(module);
    module.def("namespaces", [] { return atEdge([] { return ClassSystem::namespaces(); }); });
    module.def("inner_namespaces", [](const std::string& name) {
        return atEdge([&] { return ClassSystem::innerNamespaces(name); });
    });
    module.def("classes",
               [](const std::string& name) { return atEdge([&] { return ClassSystem::classes(name); }); });
    module.def("has_namespace", [](const std::string& name) {
        return atEdge([&] { return ClassSystem::hasNamespace(name); });
    });
    module.def("has_class",
               [](const std::string& name) { return atEdge([&] { return ClassSystem::hasClass(name); }); });
    module.def("construct", construct, py::arg("class_name"), py::arg("arguments"));
    module.def("call_method", callMethod, py::arg("object"), py::arg("method"), py::arg("arguments"));
    module.def("call_static", callStatic, py::arg("class_name"), py::arg("method"), py::arg("arguments"));
    module.def("get_property", getProperty, py::arg("object"), py::arg("property"));
    module.def("set_property", setProperty, py::arg("object"), py::arg("property"), py::arg("value"));
}

}  // namespace zmhost
