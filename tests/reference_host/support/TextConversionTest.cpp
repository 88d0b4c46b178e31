#include "reference_host/support/TextConversion.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using reference_host::utf16FromUtf8;
using reference_host::utf8FromUtf16;

TEST(Utf8Text, ReplacesAnOverlongSequenceByteByByte)
{
    EXPECT_EQ(utf16FromUtf8("\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41"),
              u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA");
}

TEST(Utf8Text, ReplacesAnEncodedSurrogateByteByByte)
{
    EXPECT_EQ(utf16FromUtf8("\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41"),
              u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA");
}

TEST(Utf8Text, ReplacesCodesPastTheLastByteByByte)
{
    EXPECT_EQ(utf16FromUtf8("\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42"),
              u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB");
}

TEST(Utf8Text, ReplacesATruncatedSequenceOnce)
{
    EXPECT_EQ(utf16FromUtf8("\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41"), u"\uFFFD\uFFFD\uFFFD\uFFFDA");
    EXPECT_EQ(utf16FromUtf8("\xF0\x9F\x8C"), u"\uFFFD");
}

TEST(Utf8Text, KeepsTheFirstAndLastCodeOfEachLength)
{
    const std::u16string wide = u"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";
    EXPECT_EQ(utf16FromUtf8(utf8FromUtf16(wide)), wide);
    EXPECT_EQ(utf8FromUtf16(wide),
              "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
              "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(Utf8Text, KeepsZeroUnits)
{
    EXPECT_EQ(utf16FromUtf8(std::string("a\0b", 3)), std::u16string(u"a\0b", 3));
}

}  // namespace
