#pragma once

#include "host/Array.hpp"
#include "reference_host/support/MemoryLimit.hpp"

#include <boost/mp11/algorithm.hpp>
#include <boost/mp11/list.hpp>

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace reference_host {

/// The class of a value. The numeric classes have the host's own codes.
enum class ValueClass : std::uint8_t {
    Double = static_cast<std::uint8_t>(nvClassID::Double),
    Single,
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Logical,
    Char,
    Struct,
    StructObject,  ///< the older object class: a struct array with a class name
    Cell,
    ClassObject  ///< handles to instances of the class object system
};

inline bool isNumericClass(ValueClass valueClass)
{
    return valueClass <= ValueClass::UInt64;
}

/// The only conversion from a double to an integer: truncated toward zero within the range of the type, the
/// nearest limit outside it, 0 for NaN.
template <std::integral Integer>
Integer toInteger(double number) noexcept
{
    if (std::isnan(number)) {
        return 0;
    }
    // The largest 64-bit number is rounded up to a double outside the range: hence `>=`.
    if (number >= static_cast<double>(std::numeric_limits<Integer>::max())) {
        return std::numeric_limits<Integer>::max();
    }
    if (number <= static_cast<double>(std::numeric_limits<Integer>::min())) {
        return std::numeric_limits<Integer>::min();
    }
    return static_cast<Integer>(number);
}

/// The C++ types behind the numeric classes and logical, in the order of `ValueClass`.
using NumericTypes =
    boost::mp11::mp_list<double, float, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                         std::uint32_t, std::int64_t, std::uint64_t, bool>;

/// Calls `visitor` with a `std::type_identity` of the C++ type behind a numeric class or logical.
template <class Visitor>
decltype(auto) withNumericType(ValueClass valueClass, Visitor&& visitor)
{
    const auto index = static_cast<std::size_t>(valueClass) - static_cast<std::size_t>(ValueClass::Double);
    return boost::mp11::mp_with_index<boost::mp11::mp_size<NumericTypes>>(
        index, [&](auto i) -> decltype(auto) {
            return visitor(std::type_identity<boost::mp11::mp_at<NumericTypes, decltype(i)>>{});
        });
}

/// The size of `count` elements of a numeric or logical class. `std::bad_alloc` if no block can hold it.
inline std::size_t byteCount(ValueClass valueClass, bool isComplex, std::size_t count)
{
    const std::size_t elementSize =
        withNumericType(valueClass, [](auto type) { return sizeof(typename decltype(type)::type); });
    return requireBytes(count, isComplex ? 2 * elementSize : elementSize);
}

/// Element `index` of an array that is given by its bytes.
template <class Number>
Number readNumber(const std::byte* data, std::size_t index)
{
    Number number{};
    std::memcpy(&number, data + index * sizeof(Number), sizeof(Number));
    return number;
}

/// Converts to the element type and stores.
template <class Number>
void writeNumber(std::byte* data, std::size_t index, double value)
{
    Number number{};
    if constexpr (std::is_same_v<Number, bool>) {
        number = value != 0.0;
    } else if constexpr (std::is_integral_v<Number>) {
        number = toInteger<Number>(value);
    } else {
        number = static_cast<Number>(value);
    }
    std::memcpy(data + index * sizeof(Number), &number, sizeof(Number));
}

}  // namespace reference_host
