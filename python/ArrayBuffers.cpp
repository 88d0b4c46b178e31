#include "python/ArrayBuffers.hpp"

#include "python/Bindings.hpp"
#include "python/Conversion.hpp"
#include "python/ValueHandle.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace py = pybind11;

namespace zmhost {

using reference_host::OwnedValue;
using reference_host::ValueClass;

namespace {

struct ElementType {
    ValueClass valueClass = ValueClass::Double;
    bool isComplex = false;
};

std::optional<ValueClass> integerClass(py::ssize_t size, bool isSigned)
{
    switch (size) {
        case 1:
            return isSigned ? ValueClass::Int8 : ValueClass::UInt8;
        case 2:
            return isSigned ? ValueClass::Int16 : ValueClass::UInt16;
        case 4:
            return isSigned ? ValueClass::Int32 : ValueClass::UInt32;
        case 8:
            return isSigned ? ValueClass::Int64 : ValueClass::UInt64;
        default:
            return std::nullopt;
    }
}

/// From a format of Python's `struct` module in native or little-endian order; nothing for other formats.
std::optional<ElementType> elementType(std::string format, py::ssize_t itemSize)
{
    if (!format.empty() && std::string("@=<").find(format.front()) != std::string::npos) {
        format.erase(0, 1);
    }
    if (format == "?") {
        return ElementType{ValueClass::Logical, false};
    }
    if (format == "d" || format == "Zd") {
        return ElementType{ValueClass::Double, format.size() == 2};
    }
    if (format == "f" || format == "Zf") {
        return ElementType{ValueClass::Single, format.size() == 2};
    }
    if (format.size() != 1 || std::string("bBhHiIlLqQnN").find(format) == std::string::npos) {
        return std::nullopt;
    }
    const auto integer = integerClass(itemSize, format.front() >= 'a');
    return integer ? std::optional(ElementType{*integer, false}) : std::nullopt;
}

nvClassID classIDOf(ValueClass valueClass)
{
    switch (valueClass) {
        case ValueClass::Single:
            return nvClassID::Single;
        case ValueClass::Int8:
            return nvClassID::Int8;
        case ValueClass::UInt8:
            return nvClassID::UInt8;
        case ValueClass::Int16:
            return nvClassID::Int16;
        case ValueClass::UInt16:
            return nvClassID::UInt16;
        case ValueClass::Int32:
            return nvClassID::Int32;
        case ValueClass::UInt32:
            return nvClassID::UInt32;
        case ValueClass::Int64:
            return nvClassID::Int64;
        case ValueClass::UInt64:
            return nvClassID::UInt64;
        default:
            return nvClassID::Double;
    }
}

/// Calls `visit` with the address of each element, the first dimension fastest, as the host stores them.
template <class Visit>
void forEachElement(const py::buffer_info& buffer, Visit visit)
{
    std::vector<py::ssize_t> place(buffer.shape.size(), 0);
    const auto* address = static_cast<const std::byte*>(buffer.ptr);
    for (py::ssize_t done = 0; done < buffer.size; ++done) {
        visit(address);
        for (std::size_t dimension = 0; dimension < place.size(); ++dimension) {
            address += buffer.strides[dimension];
            if (++place[dimension] < buffer.shape[dimension]) {
                break;
            }
            address -= buffer.strides[dimension] * buffer.shape[dimension];
            place[dimension] = 0;
        }
    }
}

reference_host::Dimensions hostShape(const py::buffer_info& buffer)
{
    std::vector<std::size_t> shape(buffer.shape.begin(), buffer.shape.end());
    if (shape.size() < 2) {
        shape.insert(shape.begin(), 2 - shape.size(), 1);
    }
    return reference_host::Dimensions(shape);
}

py::buffer_info requestBuffer(py::handle object, const std::string& kind)
{
    try {
        return py::reinterpret_borrow<py::buffer>(object).request();
    } catch (const py::error_already_set&) {
        throw NoHostValue("the elements of this " + kind + " have no host value");
    }
}

void fillLogicals(nvArray* value, const py::buffer_info& buffer)
{
    std::size_t index = 0;
    forEachElement(buffer, [&](const std::byte* element) {
        reference_host::setElement(value, index++, *element != std::byte{0} ? 1.0 : 0.0);
    });
}

/// A copy of a numeric value's elements, made when first asked for, so that views of it stay usable after the
/// host has shut down.
class NumberBuffer {
public:
    explicit NumberBuffer(py::object handle) : m_handle(std::move(handle)) {}

    const py::object& handle() const { return m_handle; }

    py::buffer_info buffer()
    {
        const nvArray* value = m_handle.cast<const ValueHandle&>().get();
        if (m_bytes == nullptr) {
            copyBytes(value);
        }
        const auto sizes = reference_host::dimensions(value).list();
        std::vector<py::ssize_t> shape(sizes.begin(), sizes.end());
        std::vector<py::ssize_t> strides;
        py::ssize_t stride = m_itemSize;
        for (const py::ssize_t size : shape) {
            strides.push_back(stride);
            stride *= size;
        }
        const auto dimensionCount = static_cast<py::ssize_t>(shape.size());
        return {m_bytes.get(),    m_itemSize, m_format, dimensionCount, std::move(shape), std::move(strides),
                /*readonly=*/true};
    }

private:
    void copyBytes(const nvArray* value)
    {
        const bool isComplex = reference_host::isComplex(value);
        const std::size_t count = reference_host::elementCount(value);
        const std::size_t size = reference_host::byteCount(value->valueClass, isComplex, count);
        const void* source = value->valueClass == ValueClass::Logical
                                 ? static_cast<const void*>(reference_host::logicals(value))
                                 : reference_host::numericData(value);
        auto bytes = std::make_unique<std::byte[]>(size + 1);
        if (size > 0) {
            std::memcpy(bytes.get(), source, size);
        }
        reference_host::withNumericType(value->valueClass, [&](auto type) {
            using Number = typename decltype(type)::type;
            m_format = (isComplex ? "Z" : "") + py::format_descriptor<Number>::format();
            m_itemSize = static_cast<py::ssize_t>(isComplex ? 2 * sizeof(Number) : sizeof(Number));
        });
        m_bytes = std::move(bytes);
    }

    py::object m_handle;
    std::unique_ptr<std::byte[]> m_bytes;
    std::string m_format;
    py::ssize_t m_itemSize = 0;
};

}  // namespace

bool isBuffer(py::handle object)
{
    return PyObject_CheckBuffer(object.ptr()) != 0 && PyBytes_Check(object.ptr()) == 0 &&
           PyByteArray_Check(object.ptr()) == 0;
}

OwnedValue bufferToHost(py::handle object)
{
    const std::string kind = py::str(py::type::handle_of(object).attr("__name__"));
    const py::buffer_info buffer = requestBuffer(object, kind);
    const auto type = elementType(buffer.format, buffer.itemsize);
    if (!type) {
        throw NoHostValue("elements of type \"" + buffer.format + "\" of this " + kind +
                          " have no host value");
    }
    if (type->valueClass == ValueClass::Logical) {
        OwnedValue value = reference_host::makeLogicals(hostShape(buffer));
        fillLogicals(value.get(), buffer);
        return value;
    }
    OwnedValue value =
        reference_host::makeNumeric(hostShape(buffer), classIDOf(type->valueClass),
                                    type->isComplex ? nvComplexity::Complex : nvComplexity::Real);
    if (buffer.size > 0) {
        auto* target = static_cast<std::byte*>(reference_host::writableNumericData(value.get()));
        const auto size = static_cast<std::size_t>(buffer.itemsize);
        forEachElement(buffer, [&](const std::byte* element) {
            std::memcpy(target, element, size);
            target += size;
        });
    }
    return value;
}

void bindArrayBuffers(py::module_& module)
{
    py::class_<NumberBuffer>(module, "NumberBuffer", py::buffer_protocol(),
                             "The base of Matrix: gives its elements as a read-only buffer.")
        .def(py::init<py::object>(), py::arg("value"))
        .def_property_readonly("_value", &NumberBuffer::handle)
        .def_buffer(&NumberBuffer::buffer);
}

}  // namespace zmhost
