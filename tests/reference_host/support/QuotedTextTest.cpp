#include "reference_host/support/QuotedText.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using reference_host::numberText;
using reference_host::quotedText;

TEST(QuotedText, StandsInQuotes)
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

TEST(QuotedText, IsCutOffWhenItIsLong)
{
    EXPECT_EQ(quotedText(std::string(200, 'a')), "\"" + std::string(200, 'a') + "\"");
    EXPECT_EQ(quotedText(std::string(201, 'a')), "\"" + std::string(200, 'a') + "...\"");
}

TEST(QuotedText, IsNotCutWithinACharacter)
{
    EXPECT_EQ(quotedText(std::string(199, 'a') + "ö" + "z"), "\"" + std::string(199, 'a') + "...\"");
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
