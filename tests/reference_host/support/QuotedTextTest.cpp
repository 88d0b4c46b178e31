#include "reference_host/support/QuotedText.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using reference_host::numberText;
using reference_host::printableText;
using reference_host::quotedText;

TEST(QuotedText, IsInQuotes)
{
    EXPECT_EQ(quotedText("Gain"), "\"Gain\"");
    EXPECT_EQ(quotedText(""), "\"\"");
    EXPECT_EQ(quotedText("Größe"), "\"Größe\"");
}

TEST(QuotedText, EscapesWhatWouldBreakALine)
{
    EXPECT_EQ(quotedText("a\nb\tc"), "\"a\\nb\\tc\"");
    EXPECT_EQ(quotedText(std::string("\0\x1f\x7f", 3)), "\"\\x00\\x1f\\x7f\"");
    EXPECT_EQ(quotedText("say \"x\\y\""), "\"say \\\"x\\\\y\\\"\"");
}

TEST(QuotedText, EscapesWhatControlsATerminal)
{
    EXPECT_EQ(quotedText("\x1b[31m\a"), "\"\\x1b[31m\\x07\"");
    EXPECT_EQ(quotedText("a\u0085\u009b2Jb"), "\"a\\u0085\\u009b2Jb\"");
    EXPECT_EQ(quotedText("x\u202Ey\u2066z\u061C\u200F"), "\"x\\u202ey\\u2066z\\u061c\\u200f\"");
    EXPECT_EQ(quotedText("a\u2028b\uFEFF"), "\"a\\u2028b\\ufeff\"");
}

TEST(QuotedText, ShowsTheBytesOfIllFormedText)
{
    EXPECT_EQ(quotedText("a\xff\xc3z"), "\"a\\xff\\xc3z\"");
    EXPECT_EQ(quotedText("\xed\xa0\x80"), "\"\\xed\\xa0\\x80\"");
}

TEST(QuotedText, HasAtMostEightyCharacters)
{
    EXPECT_EQ(quotedText(std::string(80, 'a')), "\"" + std::string(80, 'a') + "\"");
    EXPECT_EQ(quotedText(std::string(81, 'a')), "\"" + std::string(77, 'a') + "...\"");
    EXPECT_EQ(quotedText(std::string(1 << 20, '\x1b')).size(), 76 + 3 + 2);
}

TEST(QuotedText, CountsCharactersAndIsNotCutWithinOne)
{
    std::string eighty;
    for (int i = 0; i < 80; ++i) {
        eighty += "ö";
    }
    EXPECT_EQ(quotedText(eighty), "\"" + eighty + "\"");
    EXPECT_EQ(quotedText(eighty + "z"), "\"" + eighty.substr(0, 2 * 77) + "...\"");
}

TEST(PrintableText, KeepsQuotesAndTakesALengthOfItsOwn)
{
    EXPECT_EQ(printableText("say \"x\\y\"\n"), "say \"x\\y\"\\n");
    EXPECT_EQ(printableText("abcdef", 5), "ab...");
    EXPECT_EQ(printableText("abcde", 5), "abcde");
}

TEST(NumberText, IsTheShortestThatReadsBack)
{
    EXPECT_EQ(numberText(2), "2");
    EXPECT_EQ(numberText(0.1), "0.1");
    EXPECT_EQ(numberText(-12.5), "-12.5");
    EXPECT_EQ(numberText(1e300), "1e+300");
    EXPECT_EQ(numberText(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(numberText(std::nan("")), "nan");
}

}  // namespace
