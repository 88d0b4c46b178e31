#include "host/OwnedArray.hpp"
#include "host/Text.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

// What host/ promises of any number and any text, tried with random ones. The promises that need no random
// values are checked by zm-host-contract.

namespace {

std::int64_t integerOf(double number)
{
    return nvGetScalarInt(makeDouble(number).get());
}

RC_GTEST_PROP(Number, KeepsEveryBitOfADouble, (std::uint64_t bits))
{
    const auto number = std::bit_cast<double>(bits);
    RC_ASSERT(std::bit_cast<std::uint64_t>(nvGetScalar(makeDouble(number).get())) == bits);
}

RC_GTEST_PROP(Number, InTheIntegerRangeIsTheWholePart, (std::int64_t whole, std::uint8_t part))
{
    const double number = static_cast<double>(whole >> 16) + (whole < 0 ? -1 : 1) * (part / 256.0);
    RC_ASSERT(integerOf(number) == static_cast<std::int64_t>(std::trunc(number)));
}

rc::Gen<std::u16string> anyUnits()
{
    const auto anyUnit = rc::gen::cast<char16_t>(rc::gen::inRange(0, 0x10000));
    const auto surrogate = rc::gen::cast<char16_t>(rc::gen::inRange(0xD800, 0xE000));
    return rc::gen::container<std::u16string>(rc::gen::oneOf(anyUnit, surrogate));
}

RC_GTEST_PROP(TextValue, KeepsEveryUtf16Unit, ())
{
    const std::u16string text = *anyUnits();
    RC_ASSERT(nvGetUString(makeString(text).get()) == text);
}

rc::Gen<char32_t> anyCharacter()
{
    return rc::gen::cast<char32_t>(rc::gen::oneOf(
        rc::gen::inRange(1, 0x80), rc::gen::inRange(0x80, 0x800), rc::gen::inRange(0x800, 0xD800),
        rc::gen::inRange(0xE000, 0x10000), rc::gen::inRange(0x10000, 0x110000)));
}

std::u16string wellFormed(const std::vector<char32_t>& characters)
{
    std::u16string text;
    for (const char32_t character : characters) {
        if (character < 0x10000) {
            text += static_cast<char16_t>(character);
        } else {
            text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return text;
}

RC_GTEST_PROP(TextConversion, OfWellFormedTextLosesNothing, ())
{
    const std::u16string text = wellFormed(*rc::gen::container<std::vector<char32_t>>(anyCharacter()));
    RC_ASSERT(toUtf16(toUtf8(text).c_str()) == text);
}

RC_GTEST_PROP(TextConversion, OfAnyBytesGivesTextThatConvertsBackToItself, ())
{
    const auto bytes = *rc::gen::container<std::string>(rc::gen::cast<char>(rc::gen::inRange(1, 256)));
    const std::u16string text = toUtf16(bytes.c_str());
    RC_ASSERT(toUtf16(toUtf8(text).c_str()) == text);
}

}  // namespace
