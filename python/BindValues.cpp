#include "python/Bindings.hpp"
#include "python/Conversion.hpp"
#include "python/ValueHandle.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <pybind11/stl.h>

#include <memory>

namespace py = pybind11;

namespace zmhost {

using reference_host::OwnedValue;
using reference_host::ValueClass;

namespace {

using HandlePtr = std::unique_ptr<ValueHandle>;

HandlePtr handleOf(OwnedValue value)
{
    return std::make_unique<ValueHandle>(std::move(value));
}

/// The kind by which `zmhost._values.wrap` chooses the Python class.
const char* kindOf(const ValueHandle& handle)
{
    switch (handle.get()->valueClass) {
        case ValueClass::Struct:
        case ValueClass::StructObject:
            return "struct";
        case ValueClass::Cell:
            return "cell";
        case ValueClass::ClassObject:
            return "object";
        case ValueClass::Char:
            return "char";
        default:
            return "numeric";
    }
}

py::tuple dimensionsOf(const ValueHandle& handle)
{
    return py::tuple(py::cast(reference_host::dimensions(handle.get()).list()));
}

void requireElement(const nvArray* value, std::size_t index)
{
    if (index >= reference_host::elementCount(value)) {
        throw py::index_error("the value has " + std::to_string(reference_host::elementCount(value)) +
                              " elements");
    }
}

py::object fieldOf(const ValueHandle& handle, std::size_t index, const std::string& name)
{
    return toPython(reference_host::field(handle.get(), index, name.c_str()));
}

py::dict elementAsDict(const ValueHandle& handle, std::size_t index)
{
    requireElement(handle.get(), index);
    py::dict element;
    for (const std::string& name : reference_host::fieldNames(handle.get())) {
        element[py::str(name)] = fieldOf(handle, index, name);
    }
    return element;
}

HandlePtr structElement(const ValueHandle& handle, std::size_t index)
{
    const nvArray* array = handle.get();
    requireElement(array, index);
    const std::vector<std::string>& names = reference_host::fieldNames(array);
    OwnedValue element =
        array->valueClass == ValueClass::StructObject
            ? reference_host::makeStructObject(reference_host::className(array), {1, 1}, names)
            : reference_host::makeStruct({1, 1}, names);
    for (const std::string& name : names) {
        if (const nvArray* field = reference_host::field(array, index, name.c_str())) {
            reference_host::setField(element.get(), 0, name.c_str(), reference_host::copyShared(field));
        }
    }
    return handleOf(std::move(element));
}

py::list numbersOf(const ValueHandle& handle)
{
    const std::size_t count = reference_host::elementCount(handle.get());
    py::list numbers(count);
    for (std::size_t i = 0; i < count; ++i) {
        numbers[i] = numberToPython(handle.get(), i);
    }
    return numbers;
}

py::list cellsOf(const ValueHandle& handle)
{
    const std::size_t count = reference_host::elementCount(handle.get());
    py::list cells(count);
    for (std::size_t i = 0; i < count; ++i) {
        cells[i] = toPython(reference_host::cell(handle.get(), i));
    }
    return cells;
}

HandlePtr makeCellArray(const std::vector<std::size_t>& sizes, const py::list& cells)
{
    OwnedValue value = reference_host::makeCells(reference_host::Dimensions(sizes));
    if (reference_host::elementCount(value.get()) != cells.size()) {
        throw py::value_error(reference_host::dimensions(value.get()).text() +
                              " has another number of cells than " + std::to_string(cells.size()));
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        reference_host::setCell(value.get(), i, toHost(cells[i]));
    }
    return handleOf(std::move(value));
}

nvcos::COSInterfacePtr instanceAt(const nvArray* value, std::size_t index)
{
    requireElement(value, index);
    return reference_host::objects(value)[index];
}

HandlePtr objectElement(const ValueHandle& handle, std::size_t index)
{
    return handleOf(reference_host::makeObjects(reference_host::className(handle.get()), {1, 1},
                                                {instanceAt(handle.get(), index)}));
}

HandlePtr makeObjectArray(const std::string& className, const py::sequence& objects)
{
    std::vector<nvcos::COSInterfacePtr> instances;
    for (const py::object object : objects) {  // a sequence may make its elements as they are asked for
        const Argument argument(object);
        if (argument.get()->valueClass != ValueClass::ClassObject) {
            throw NoHostValue("an object array holds host objects, not " +
                              reference_host::describe(argument.get()));
        }
        instances.push_back(instanceAt(argument.get(), 0));
    }
    return handleOf(reference_host::ObjectAccess::makeObjectArray(className, instances));
}

/// Tells instances apart for as long as one is held.
std::size_t instanceKey(const ValueHandle& handle)
{
    return reinterpret_cast<std::size_t>(instanceAt(handle.get(), 0).get());
}

}  // namespace

void bindValues(py::module_& module)
{
    py::class_<ValueHandle>(module, "Value", "A host value; whatever it holds keeps class and dimensions.")
        .def_property_readonly("kind", kindOf)
        .def_property_readonly(
            "class_name", [](const ValueHandle& handle) { return reference_host::className(handle.get()); })
        .def_property_readonly("dims", dimensionsOf)
        .def_property_readonly("fields",
                               [](const ValueHandle& handle) {
                                   return py::tuple(py::cast(reference_host::fieldNames(handle.get())));
                               })
        .def("__len__", [](const ValueHandle& handle) { return reference_host::elementCount(handle.get()); })
        .def("__repr__",
             [](const ValueHandle& handle) { return "<" + reference_host::describe(handle.get()) + ">"; })
        .def("field", fieldOf, py::arg("index"), py::arg("name"))
        .def("element", elementAsDict, py::arg("index"))
        .def("struct_element", structElement, py::arg("index"))
        .def(
            "number",
            [](const ValueHandle& handle, std::size_t index) { return numberToPython(handle.get(), index); },
            py::arg("index"))
        .def("numbers", numbersOf)
        .def("cells", cellsOf)
        .def("object", objectElement, py::arg("index"))
        .def_property_readonly("instance_key", instanceKey);
    module.def(
        "make_numbers",
        [](const std::vector<std::size_t>& dims, const py::list& numbers, const std::string& className) {
            return handleOf(makeNumbers(dims, numbers, className));
        },
        py::arg("dims"), py::arg("numbers"), py::arg("class_name"));
    module.def(
        "make_struct_array",
        [](const py::sequence& elements, const std::optional<std::vector<std::string>>& fields) {
            return handleOf(makeStructArray(elements, fields));
        },
        py::arg("elements"), py::arg("fields"));
    module.def("make_cell_array", makeCellArray, py::arg("dims"), py::arg("cells"));
    module.def("make_object_array", makeObjectArray, py::arg("class_name"), py::arg("objects"));
}

}  // namespace zmhost
