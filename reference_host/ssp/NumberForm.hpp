#ifndef ZM_REFERENCE_HOST_SSP_NUMBER_FORM_HPP
#define ZM_REFERENCE_HOST_SSP_NUMBER_FORM_HPP

#include <bit>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

// How files write floating-point numbers that are not finite.

namespace reference_host {

/// The bits of a number in hexadecimal digits, "0x7fc00000".
template <std::floating_point Number>
std::string hexText(Number number)
{
    using Bits = std::conditional_t<sizeof(Number) == 8, std::uint64_t, std::uint32_t>;
    constexpr std::string_view digits = "0123456789abcdef";
    const auto bits = std::bit_cast<Bits>(number);
    std::string text = "0x";
    for (std::size_t shift = 8 * sizeof(Number); shift > 0; shift -= 4) {
        text += digits[(bits >> (shift - 4)) & 0xFU];
    }
    return text;
}

/// "Inf", "-Inf", "NaN" for the plain one, and the bits of any other NaN.
template <std::floating_point Number>
std::string notFiniteText(Number number)
{
    if (std::isinf(number)) {
        return number > 0 ? "Inf" : "-Inf";
    }
    const std::string bits = hexText(number);
    return bits == hexText(std::numeric_limits<Number>::quiet_NaN()) ? "NaN" : bits;
}

/// The number of a text that `notFiniteText` gives; none for any other text.
template <std::floating_point Number>
std::optional<Number> notFiniteNumber(const std::string& text)
{
    using Limits = std::numeric_limits<Number>;
    using Bits = std::conditional_t<sizeof(Number) == 8, std::uint64_t, std::uint32_t>;
    for (const Number number : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        if (text == notFiniteText(number)) {
            return number;
        }
    }
    Bits bits = 0;
    if (text.starts_with("0x")) {
        std::from_chars(text.data() + 2, text.data() + text.size(), bits, 16);
    }
    const auto number = std::bit_cast<Number>(bits);
    const bool isWritten = std::isnan(number) && text == notFiniteText(number);
    return isWritten ? std::optional(number) : std::nullopt;
}

}  // namespace reference_host

#endif
