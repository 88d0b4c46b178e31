#include "hmi/Numbers.hpp"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <typeinfo>

namespace zm_hmi {

int truncateToInt(double value) noexcept
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value <= static_cast<double>(std::numeric_limits<int>::min())) {
        return std::numeric_limits<int>::min();
    }
    if (value >= static_cast<double>(std::numeric_limits<int>::max())) {
        return std::numeric_limits<int>::max();
    }
    return static_cast<int>(value);
}

namespace {

template <class... Arguments>
std::size_t write(std::array<char, 320>& text, Arguments... arguments)
{
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), arguments...);
    if (error != std::errc()) {
        throw boost::bad_lexical_cast(typeid(double), typeid(std::string));
    }
    return static_cast<std::size_t>(end - text.data());
}

}  // namespace

namespace {

constexpr auto powersOf10 = [] {
    std::array<std::uint64_t, 18> powers{1};
    std::transform(powers.begin(), powers.end() - 1, powers.begin() + 1,
                   [](auto power) { return 10 * power; });
    return powers;
}();

// How many decimal digits an integer below 10^17 has.
std::size_t digitCount(std::uint64_t value) noexcept
{
    const auto estimate = static_cast<std::size_t>(std::bit_width(value) * 1233 >> 12);  // of log10
    return estimate + (value >= powersOf10[estimate] ? 1 : 0);
}

// Writes the eight decimal digits of a number below 10^8: splits it in halves, quarters and digits, all parts
// at the same time. With `std::to_chars` in its place `writeHandle` takes 2.5 times as long.
void writeEightDigits(char* text, std::uint64_t value) noexcept
{
    std::uint64_t parts = value / 10000 | (value % 10000) << 32;
    std::uint64_t high = (parts * 10486 >> 20) & 0x0000007f0000007fU;  // each part / 100
    parts = high | (parts - high * 100) << 16;
    high = (parts * 103 >> 10) & 0x000f000f000f000fU;  // each part / 10
    parts = high | (parts - high * 10) << 8;
    parts |= 0x3030303030303030U;  // '0'
    std::memcpy(text, &parts, sizeof parts);
}

/// The 17-digit text of a double from 1 to below 10^17, where block handles are. Such a value is m / 2^s with
/// 53-bit m and s <= 52, so that all digits are those of one exact 128-bit product, and rounding is exact,
/// too. Writes up to 18 characters, and returns how many. `std::to_chars` takes 2.7 times as long.
std::size_t writeHandle(char* text, double value) noexcept
{
    constexpr int mantissaBits = 52;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto shift = static_cast<unsigned>(1023 + mantissaBits - static_cast<int>(bits >> mantissaBits));
    const std::uint64_t mantissa = (bits & ((std::uint64_t{1} << mantissaBits) - 1)) | std::uint64_t{1}
                                                                                           << mantissaBits;
    const auto whole = static_cast<std::uint64_t>(value);
    if (static_cast<double>(whole) == value) {
        return static_cast<std::size_t>(std::to_chars(text, text + 17, whole).ptr - text);
    }

    __extension__ using Wide = unsigned __int128;
    std::size_t wholeDigits = digitCount(whole);
    const Wide scaled = Wide{mantissa} * powersOf10[17 - wholeDigits];
    auto digits = static_cast<std::uint64_t>(scaled >> shift);
    const auto rest = static_cast<std::uint64_t>(scaled) & ((std::uint64_t{1} << shift) - 1);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    digits += rest > half || (rest == half && digits % 2 != 0) ? 1 : 0;  // to even, as printf
    if (digits == powersOf10[17]) {
        digits /= 10;
        ++wholeDigits;
    }

    text[1] = static_cast<char>('0' + digits / powersOf10[16]);
    writeEightDigits(text + 2, digits / powersOf10[8] % powersOf10[8]);
    writeEightDigits(text + 10, digits % powersOf10[8]);
    std::memmove(text, text + 1, wholeDigits);
    text[wholeDigits] = '.';
    std::size_t length = 18;
    while (text[length - 1] == '0') {
        --length;
    }
    return text[length - 1] == '.' ? length - 1 : length;
}

}  // namespace

NumberText NumberText::significant17(double value)
{
    NumberText text;
    if (value >= 1.0 && value < 1e17) {
        text.m_length = writeHandle(text.m_text.data(), value);
        return text;
    }
    text.m_length = write(text.m_text, value, std::chars_format::general, 17);
    return text;
}

NumberText NumberText::fixed6(double value)
{
    NumberText text;
    text.m_length = write(text.m_text, value, std::chars_format::fixed, 6);
    return text;
}

NumberText NumberText::decimal(int value)
{
    NumberText text;
    text.m_length = write(text.m_text, value);
    return text;
}

}  // namespace zm_hmi
