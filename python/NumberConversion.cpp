#include "python/Conversion.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <array>
#include <concepts>
#include <limits>
#include <string_view>

namespace py = pybind11;

namespace zmhost {

using reference_host::OwnedValue;
using reference_host::ValueClass;

namespace {

const std::byte* dataOf(const nvArray* value)
{
    const void* data = value->valueClass == ValueClass::Logical
                           ? static_cast<const void*>(reference_host::logicals(value))
                           : reference_host::numericData(value);
    return static_cast<const std::byte*>(data);
}

py::object numberObject(bool number)
{
    return py::bool_(number);
}
py::object numberObject(std::integral auto number)
{
    return py::int_(number);
}
py::object numberObject(std::floating_point auto number)
{
    return py::float_(static_cast<double>(number));
}

struct NamedClass {
    std::string_view name;
    nvClassID classID;
};
constexpr std::array<NamedClass, 10> numericClasses{{
    {"double", nvClassID::Double},
    {"single", nvClassID::Single},
    {"int8", nvClassID::Int8},
    {"uint8", nvClassID::UInt8},
    {"int16", nvClassID::Int16},
    {"uint16", nvClassID::UInt16},
    {"int32", nvClassID::Int32},
    {"uint32", nvClassID::UInt32},
    {"int64", nvClassID::Int64},
    {"uint64", nvClassID::UInt64},
}};

OwnedValue makeZeros(const std::vector<std::size_t>& sizes, const std::string& className)
{
    const reference_host::Dimensions dimensions(sizes);
    if (className == "logical") {
        return reference_host::makeLogicals(dimensions);
    }
    for (const NamedClass& named : numericClasses) {
        if (named.name == className) {
            return reference_host::makeNumeric(dimensions, named.classID);
        }
    }
    throw py::value_error("no class of numbers is called \"" + className + "\"");
}

/// An int as an element of an integer class.
template <std::integral Integer>
Integer exactInteger(py::handle object)
{
    const auto number = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
    if (!number) {
        throw py::error_already_set();
    }
    int overflow = 0;
    const long long value = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
    if (overflow == 0 && std::in_range<Integer>(value)) {
        return static_cast<Integer>(value);
    }
    if (overflow > 0 && std::is_same_v<Integer, std::uint64_t>) {
        const unsigned long long large = PyLong_AsUnsignedLongLong(number.ptr());
        if (PyErr_Occurred() == nullptr) {
            return static_cast<Integer>(large);
        }
        PyErr_Clear();
    }
    throw py::value_error(std::string(py::str(number)) + " is out of range for the class");
}

template <class Number>
Number elementFrom(py::handle object)
{
    if constexpr (std::is_same_v<Number, bool>) {
        const int truth = PyObject_IsTrue(object.ptr());
        if (truth < 0) {
            throw py::error_already_set();
        }
        return truth != 0;
    } else if constexpr (std::is_integral_v<Number>) {
        return exactInteger<Number>(object);
    } else {
        const double number = PyFloat_AsDouble(object.ptr());
        if (PyErr_Occurred() != nullptr) {
            throw py::error_already_set();
        }
        return static_cast<Number>(number);
    }
}

}  // namespace

py::object numberToPython(const nvArray* value, std::size_t index)
{
    if (index >= reference_host::elementCount(value)) {
        throw py::index_error("no such element");
    }
    const std::byte* data = dataOf(value);
    return reference_host::withNumericType(value->valueClass, [&](auto type) -> py::object {
        using Number = typename decltype(type)::type;
        if (!reference_host::isComplex(value)) {
            return numberObject(reference_host::readNumber<Number>(data, index));
        }
        auto number = py::reinterpret_steal<py::object>(PyComplex_FromDoubles(
            static_cast<double>(reference_host::readNumber<Number>(data, 2 * index)),
            static_cast<double>(reference_host::readNumber<Number>(data, 2 * index + 1))));
        if (!number) {
            throw py::error_already_set();
        }
        return number;
    });
}

OwnedValue makeNumbers(const std::vector<std::size_t>& dimensions, const py::list& numbers,
                       const std::string& className)
{
    OwnedValue value = makeZeros(dimensions, className);
    // Objects convert themselves in code of their own, which may lengthen or shorten the list meanwhile.
    const std::size_t count = reference_host::elementCount(value.get());
    if (count != numbers.size()) {
        throw py::value_error(reference_host::dimensions(value.get()).text() +
                              " has another number of elements than " + std::to_string(numbers.size()));
    }
    if (value->valueClass == ValueClass::Logical) {
        for (std::size_t i = 0; i < count; ++i) {
            reference_host::setElement(value.get(), i, elementFrom<bool>(numbers[i]) ? 1.0 : 0.0);
        }
        return value;
    }
    auto* data = static_cast<std::byte*>(reference_host::writableNumericData(value.get()));
    reference_host::withNumericType(value->valueClass, [&](auto type) {
        using Number = typename decltype(type)::type;
        for (std::size_t i = 0; i < count; ++i) {
            const auto number = elementFrom<Number>(numbers[i]);
            std::memcpy(data + i * sizeof(Number), &number, sizeof(Number));
        }
    });
    return value;
}

}  // namespace zmhost
