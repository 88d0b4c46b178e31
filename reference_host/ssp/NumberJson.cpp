#include "reference_host/ssp/NumberJson.hpp"

#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace reference_host {

namespace {

template <class Number>
using BitsOf = std::conditional_t<sizeof(Number) == 8, std::uint64_t, std::uint32_t>;

/// "Inf", "-Inf", "NaN" for the plain one, and the bits of any other NaN in hexadecimal digits.
template <std::floating_point Number>
std::string notFiniteText(Number number)
{
    using Bits = BitsOf<Number>;
    if (std::isinf(number)) {
        return number > 0 ? "Inf" : "-Inf";
    }
    const auto bits = std::bit_cast<Bits>(number);
    if (bits == std::bit_cast<Bits>(std::numeric_limits<Number>::quiet_NaN())) {
        return "NaN";
    }
    std::array<char, 2 * sizeof(Number)> digits{};  // all of them: a NaN has its highest bits set, or a sign
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), bits, 16).ptr;
    return "0x" + std::string(digits.data(), end);
}

/// The number of a text that `notFiniteText` gives; none for any other text.
template <std::floating_point Number>
std::optional<Number> notFiniteNumber(const std::string& text)
{
    using Limits = std::numeric_limits<Number>;
    for (const Number number : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        if (text == notFiniteText(number)) {
            return number;
        }
    }
    BitsOf<Number> bits = 0;
    if (text.starts_with("0x")) {
        std::from_chars(text.data() + 2, text.data() + text.size(), bits, 16);
    }
    const auto number = std::bit_cast<Number>(bits);
    const bool isWritten = std::isnan(number) && text == notFiniteText(number);
    return isWritten ? std::optional(number) : std::nullopt;
}

template <std::floating_point Number>
std::optional<Number> numberFrom(const Json& json)
{
    if (json.is_string()) {
        return notFiniteNumber<Number>(json.get_ref<const std::string&>());
    }
    if (!json.is_number_float()) {
        return std::nullopt;
    }
    const auto number = json.get<double>();
    const bool isInRange = std::abs(number) <= static_cast<double>(std::numeric_limits<Number>::max());
    const bool isExact = isInRange && static_cast<double>(static_cast<Number>(number)) == number;
    return isExact ? std::optional(static_cast<Number>(number)) : std::nullopt;
}

template <std::integral Number>
std::optional<Number> numberFrom(const Json& json)
{
    if constexpr (std::is_same_v<Number, bool>) {
        return json.is_boolean() ? std::optional(json.get<bool>()) : std::nullopt;
    } else {
        const bool isInRange =
            json.is_number_unsigned()
                ? std::in_range<Number>(json.get<std::uint64_t>())
                : json.is_number_integer() && std::in_range<Number>(json.get<std::int64_t>());
        return isInRange ? std::optional(json.get<Number>()) : std::nullopt;
    }
}

template <class Number>
constexpr const char* expectedNumber()
{
    if (std::is_same_v<Number, bool>) {
        return "true or false";
    }
    return std::is_floating_point_v<Number> ? "a number of the class, with a fraction or an exponent"
                                            : "an integer of the class";
}

template <class Number>
Json jsonOfNumber(Number number)
{
    if constexpr (std::is_same_v<Number, bool> || std::is_integral_v<Number>) {
        return number;
    } else {
        return std::isfinite(number) ? Json(static_cast<double>(number)) : Json(notFiniteText(number));
    }
}

}  // namespace

Json numbersToJson(const nvArray* value, std::size_t part)
{
    const bool isLogical = value->valueClass == ValueClass::Logical;
    const auto* data = static_cast<const std::byte*>(isLogical ? static_cast<const void*>(logicals(value))
                                                               : numericData(value));
    const std::size_t step = isComplex(value) ? 2 : 1;
    const std::size_t count = elementCount(value);
    Json array = Json::array();
    auto& elements = array.get_ref<Json::array_t&>();
    elements.reserve(count);
    withNumericType(value->valueClass, [&](auto type) {
        for (std::size_t i = 0; i < count; ++i) {
            elements.push_back(
                jsonOfNumber(readNumber<typename decltype(type)::type>(data, i * step + part)));
        }
    });
    return array;
}

void setNumbers(nvArray* value, std::size_t part, const Json& array)
{
    const bool isLogical = value->valueClass == ValueClass::Logical;
    auto* data = isLogical ? nullptr : static_cast<std::byte*>(writableNumericData(value));
    const std::size_t step = isComplex(value) ? 2 : 1;
    withNumericType(value->valueClass, [&](auto type) {
        using Number = typename decltype(type)::type;
        std::size_t index = 0;
        for (const Json& item : array) {
            const std::optional<Number> number = numberFrom<Number>(item);
            if (!number) {
                refuseJson(item, expectedNumber<Number>());
            }
            if constexpr (std::is_same_v<Number, bool>) {
                setElement(value, index, *number ? 1.0 : 0.0);
            } else {
                std::memcpy(data + (index * step + part) * sizeof(Number), &*number, sizeof(Number));
            }
            ++index;
        }
    });
}

}  // namespace reference_host
