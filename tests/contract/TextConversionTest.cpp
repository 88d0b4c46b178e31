#include "host/Text.hpp"

#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace {

const std::string replacement = "\xEF\xBF\xBD";

TEST(TextConversion, GoesBothWaysForEveryLengthOfCode)
{
    const std::u16string wide = u"A\u00E9\u20AC\U0001F321";
    EXPECT_EQ(toUtf8(wide), "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\xA1");
    EXPECT_EQ(toUtf16(toUtf8(wide).c_str()), wide);
}

TEST(TextConversion, KeepsZeroUnitsOfWideText)
{
    EXPECT_EQ(toUtf8(std::u16string(u"a\0b", 3)), std::string("a\0b", 3));
}

TEST(TextConversion, ReplacesEachUnpairedSurrogate)
{
    const char16_t high = 0xD83C;
    const char16_t low = 0xDF21;
    EXPECT_EQ(toUtf8({high}), replacement);
    EXPECT_EQ(toUtf8({low, high}), replacement + replacement);
    EXPECT_EQ(toUtf8({u'a', high, u'b'}), "a" + replacement + "b");
    EXPECT_EQ(toUtf8({high, high, low}), replacement + "\xF0\x9F\x8C\xA1");
}

TEST(TextConversion, ReplacesIllFormedNarrowTextAndKeepsTheRest)
{
    EXPECT_EQ(toUtf16("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(toUtf16("a\xC3"), u"a\uFFFD");
    EXPECT_EQ(toUtf16("\x80z"), u"\uFFFDz");
}

TEST(TextConversion, OfNullIsRefused)
{
    expectHostError("toUtf16", [] { toUtf16(nullptr); });
}

TEST(TextConversion, WithTheUtf8ConverterIsThePlainOne)
{
    const auto converter = makeTextConverter("UTF-8");
    ASSERT_NE(converter, nullptr);
    const std::u16string text = u"\u00C4\U0001F321\xD800";
    EXPECT_EQ(toUtf8(text, *converter), toUtf8(text));
}

TEST(TextConversion, OfAnUnknownEncodingIsRefused)
{
    expectHostError("makeTextConverter", [] { makeTextConverter("no such encoding"); });
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
