#include "python/Conversion.hpp"

#include "python/ArrayBuffers.hpp"
#include "python/PythonText.hpp"
#include "python/ValueHandle.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <pybind11/stl.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace py = pybind11;

namespace zmhost {

using reference_host::OwnedValue;
using reference_host::ValueClass;

namespace {

constexpr const char* hostValueMethod = "__host_value__";

std::string typeName(py::handle object)
{
    return py::str(py::type::handle_of(object).attr("__name__"));
}

/// Containers may hold themselves; Python's own limit ends that.
class NestingGuard {
public:
    NestingGuard()
    {
        if (Py_EnterRecursiveCall(" while converting a value for the host") != 0) {
            throw py::error_already_set();
        }
    }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;
    ~NestingGuard() { Py_LeaveRecursiveCall(); }
};

template <class Integer>
OwnedValue makeInteger(Integer number, nvClassID classID)
{
    OwnedValue value = reference_host::makeNumeric({1, 1}, classID);
    std::memcpy(reference_host::writableNumericData(value.get()), &number, sizeof(number));
    return value;
}

OwnedValue integerToHost(py::handle number)
{
    constexpr long long exactInDouble = 1LL << 53U;
    int overflow = 0;
    const long long value = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
    if (overflow == 0) {
        return value >= -exactInDouble && value <= exactInDouble
                   ? reference_host::makeDouble(static_cast<double>(value))
                   : makeInteger(static_cast<std::int64_t>(value), nvClassID::Int64);
    }
    const unsigned long long large = overflow > 0 ? PyLong_AsUnsignedLongLong(number.ptr()) : 0;
    if (overflow < 0 || PyErr_Occurred() != nullptr) {
        PyErr_Clear();
        throw NoHostValue("an int of more than 64 bits has no host value");
    }
    return makeInteger(static_cast<std::uint64_t>(large), nvClassID::UInt64);
}

// ---- struct arrays and cells --------------------------------------------------------------------

bool isMapping(py::handle object)
{
    return PyDict_Check(object.ptr()) ||
           (!PyType_Check(object.ptr()) && py::hasattr(object, "keys") && PyMapping_Check(object.ptr()));
}

bool isPlainSequence(py::handle object)
{
    return PyList_Check(object.ptr()) || PyTuple_Check(object.ptr());
}

bool hasHostValue(py::handle object)
{
    return !PyType_Check(object.ptr()) && py::hasattr(object, hostValueMethod);
}

std::vector<std::string> keysOf(py::handle mapping)
{
    if (!isMapping(mapping)) {
        throw NoHostValue("an element of a struct array is a mapping, not a " + typeName(mapping));
    }
    std::vector<std::string> names;
    for (const py::handle key : mapping.attr("keys")()) {
        if (!PyUnicode_Check(key.ptr())) {
            throw NoHostValue("a struct field is named by a str, not by a value of type " + typeName(key));
        }
        names.push_back(py::cast<std::string>(key));
    }
    return names;
}

void setFields(nvArray* target, std::size_t index, py::handle mapping, const std::vector<std::string>& names)
{
    if (!isMapping(mapping) || py::len(mapping) != names.size()) {
        throw NoHostValue("element " + std::to_string(index) +
                          " of the struct array has other fields than the first");
    }
    for (const std::string& name : names) {
        const py::str key(name);
        if (!mapping.contains(key)) {
            throw NoHostValue("element " + std::to_string(index) + " of the struct array has no field \"" +
                              name + "\"");
        }
        reference_host::setField(target, index, name.c_str(), toHost(mapping[key]));
    }
}

/// Wrappers know more of their fields than Python shows: number classes, unset fields.
void copyFields(nvArray* target, std::size_t index, const nvArray* source,
                const std::vector<std::string>& names)
{
    if (reference_host::fieldNames(source).size() != names.size()) {
        throw NoHostValue("element " + std::to_string(index) +
                          " of the struct array has other fields than the first");
    }
    for (const std::string& name : names) {
        if (const nvArray* field = reference_host::field(source, 0, name.c_str())) {
            reference_host::setField(target, index, name.c_str(), reference_host::copyShared(field));
        }
    }
}

OwnedValue mappingToHost(py::handle mapping)
{
    const std::vector<std::string> names = keysOf(mapping);
    OwnedValue value = reference_host::makeStruct({1, 1}, names);
    setFields(value.get(), 0, mapping, names);
    return value;
}

OwnedValue sequenceToHost(py::handle object)
{
    const auto sequence = py::reinterpret_borrow<py::sequence>(object);
    const std::size_t count = sequence.size();
    if (count > 0 && std::all_of(sequence.begin(), sequence.end(), isMapping)) {
        return makeStructArray(sequence, std::nullopt);
    }
    OwnedValue value = reference_host::makeCells({count > 0 ? std::size_t{1} : std::size_t{0}, count});
    for (std::size_t i = 0; i < count; ++i) {
        reference_host::setCell(value.get(), i, toHost(sequence[i]));
    }
    return value;
}

/// The value that a wrapper holds. The result keeps it alive.
py::object askForHostValue(py::handle object)
{
    if (py::isinstance<ValueHandle>(object)) {
        return py::reinterpret_borrow<py::object>(object);
    }
    if (!hasHostValue(object)) {
        return {};
    }
    py::object held = object.attr(hostValueMethod)();
    if (!py::isinstance<ValueHandle>(held)) {
        throw NoHostValue(typeName(object) + ".__host_value__() gave no host value");
    }
    return held;
}

nvArray* heldValue(const py::object& handle)
{
    return handle.cast<const ValueHandle&>().get();
}

/// A complex number, or an object that converts itself to an int or a float; null for other objects. Throws
/// what the conversion raised.
OwnedValue numberToHost(py::handle object)
{
    if (PyIndex_Check(object.ptr()) != 0) {
        const auto integer = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
        if (!integer) {
            throw py::error_already_set();
        }
        return integerToHost(integer);
    }
    if (PyComplex_Check(object.ptr())) {
        const Py_complex number = PyComplex_AsCComplex(object.ptr());
        OwnedValue value = reference_host::makeNumeric(reference_host::Dimensions({1, 1}), nvClassID::Double,
                                                       nvComplexity::Complex);
        std::memcpy(reference_host::writableNumericData(value.get()), &number, sizeof(number));
        return value;
    }
    const PyNumberMethods* const number = Py_TYPE(object.ptr())->tp_as_number;
    if (number == nullptr || number->nb_float == nullptr) {
        return nullptr;
    }
    const double value = PyFloat_AsDouble(object.ptr());
    if (PyErr_Occurred() != nullptr) {
        throw py::error_already_set();
    }
    return reference_host::makeDouble(value);
}

/// Null when the object is none of Python's own plain ones.
OwnedValue plainToHost(py::handle object)
{
    PyObject* const plain = object.ptr();
    if (plain == Py_None) {
        return reference_host::makeEmptyValue();
    }
    if (PyBool_Check(plain)) {
        return reference_host::makeLogical(plain == Py_True);
    }
    if (PyUnicode_Check(plain)) {
        return reference_host::makeText(textFromPython(object));
    }
    if (PyFloat_Check(plain)) {
        return reference_host::makeDouble(PyFloat_AS_DOUBLE(plain));
    }
    if (PyLong_Check(plain)) {
        return integerToHost(object);
    }
    if (PyDict_CheckExact(plain)) {
        const NestingGuard guard;
        return mappingToHost(object);
    }
    return nullptr;
}

// ---- to Python ----------------------------------------------------------------------------------

bool isCharacterRow(const nvArray* value)
{
    const reference_host::Dimensions& dimensions = reference_host::dimensions(value);
    return dimensions.elementCount() == 0 || (dimensions.count() == 2 && dimensions.list().front() == 1);
}

bool isEmptyPlaceholder(const nvArray* value)
{
    return value->valueClass == ValueClass::Double && reference_host::dimensions(value).text() == "0x0";
}

/// A null object when the value has no direct form.
py::object directForm(const nvArray* value)
{
    if (value->valueClass == ValueClass::Char) {
        return isCharacterRow(value) ? textToPython(reference_host::text(value)) : py::object();
    }
    if (value->valueClass <= ValueClass::Logical) {
        if (reference_host::elementCount(value) == 1) {
            return numberToPython(value, 0);
        }
        if (reference_host::elementCount(value) == 0 && isEmptyPlaceholder(value)) {
            return py::none();
        }
    }
    return {};
}

py::object wrap(OwnedValue value)
{
    static const py::object& wrapper = *new py::object(py::module_::import("zmhost._values").attr("wrap"));
    const NestingGuard guard;
    return wrapper(std::make_unique<ValueHandle>(std::move(value)));
}

}  // namespace

OwnedValue toHost(py::handle object)
{
    if (OwnedValue value = plainToHost(object)) {
        return value;
    }
    if (const py::object held = askForHostValue(object)) {
        return reference_host::copyShared(heldValue(held));
    }
    if (isBuffer(object)) {
        return bufferToHost(object);
    }
    if (OwnedValue number = numberToHost(object)) {
        return number;
    }
    const NestingGuard guard;
    if (isMapping(object)) {
        return mappingToHost(object);
    }
    if (isPlainSequence(object)) {
        return sequenceToHost(object);
    }
    throw NoHostValue("an object of type " + typeName(object) + " has no host value");
}

py::object toPython(const nvArray* value)
{
    if (value == nullptr) {
        return py::none();
    }
    if (py::object direct = directForm(value)) {
        return direct;
    }
    return wrap(reference_host::copyShared(value));
}

py::object toPython(OwnedValue value)
{
    if (value == nullptr) {
        return py::none();
    }
    if (py::object direct = directForm(value.get())) {
        return direct;
    }
    return wrap(std::move(value));
}

OwnedValue makeStructArray(const py::sequence& elements,
                           const std::optional<std::vector<std::string>>& fieldNames)
{
    const std::size_t count = elements.size();
    std::vector<std::string> names;
    if (fieldNames) {
        names = *fieldNames;
    } else if (count > 0) {
        names = keysOf(elements[0]);
    }
    OwnedValue value = reference_host::makeStruct({count, 1}, names);
    for (std::size_t i = 0; i < count; ++i) {
        const py::object element = elements[i];
        if (const py::object held = askForHostValue(element)) {
            copyFields(value.get(), i, heldValue(held), names);
        } else {
            setFields(value.get(), i, element, names);
        }
    }
    return value;
}

Argument::Argument(py::handle object) : m_converted(plainToHost(object)), m_value(m_converted.get())
{
    if (m_value != nullptr) {
        return;
    }
    m_holder = askForHostValue(object);
    if (m_holder) {
        m_value = heldValue(m_holder);
    } else {
        m_converted = toHost(object);
        m_value = m_converted.get();
    }
}

}  // namespace zmhost
