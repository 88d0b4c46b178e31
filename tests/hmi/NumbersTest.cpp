#include "hmi/Numbers.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <boost/lexical_cast.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace zm_hmi {
namespace {

using Limits = std::numeric_limits<double>;

std::string significant17(double value)
{
    return std::string(NumberText::significant17(value).view());
}

std::string fixed6(double value)
{
    return std::string(NumberText::fixed6(value).view());
}

TEST(NumberText, SignificantDigitsOfWholeNumbersHaveNoPoint)
{
    EXPECT_EQ(significant17(12.0), "12");
    EXPECT_EQ(significant17(0.0), "0");
    EXPECT_EQ(significant17(-5.0), "-5");
}

TEST(NumberText, SignificantDigitsAreSeventeen)
{
    EXPECT_EQ(significant17(12.5), "12.5");
    EXPECT_EQ(significant17(0.1), "0.10000000000000001");
    EXPECT_EQ(significant17(1.0 / 3.0), "0.33333333333333331");
}

TEST(NumberText, SignificantDigitsTurnToAnExponentAsPrintfDoes)
{
    EXPECT_EQ(significant17(1e16), "10000000000000000");
    EXPECT_EQ(significant17(1e17), "1e+17");
    EXPECT_EQ(significant17(0.0001), "0.0001");
    EXPECT_EQ(significant17(0.00001), "1.0000000000000001e-05");
}

TEST(NumberText, SignificantDigitsAreRoundedToEven)
{
    EXPECT_EQ(significant17(562949953421312.125), "562949953421312.12") << "halfway, down to even";
    EXPECT_EQ(significant17(562949953421312.375), "562949953421312.38") << "halfway, up to even";
    EXPECT_EQ(significant17(9.9999999999999999), "10");
    EXPECT_EQ(significant17(9007199254740991.5), "9007199254740992");
    EXPECT_EQ(significant17(1.0), "1");
    EXPECT_EQ(significant17(100000000.00000001), "100000000.00000001");
}

// Most handles are in this range, which has a conversion of its own.
RC_GTEST_PROP(NumberTextProperties, SignificantDigitsOfHandlesAreThoseOfLexicalCast, (std::uint64_t bits))
{
    const int exponent = static_cast<int>(bits % 58);
    const double random = std::ldexp(1.0 + static_cast<double>(bits >> 11) / 9007199254740992.0, exponent);
    const double grid = static_cast<double>(bits >> 24) / 4096.0;
    const double decimal = static_cast<double>(bits >> 40) / 1000.0;
    for (const double value : {random, grid, decimal, std::nextafter(grid, 0.0), std::floor(random)}) {
        RC_ASSERT(significant17(value) == boost::lexical_cast<std::string>(value));
    }
}

TEST(NumberText, ZeroKeepsItsSign)
{
    EXPECT_EQ(significant17(-0.0), "-0");
    EXPECT_EQ(fixed6(-0.0), "-0.000000");
}

TEST(NumberText, NotANumberKeepsItsSign)
{
    const double positive = std::bit_cast<double>(std::uint64_t{0x7ff8000000000000});
    const double negative = std::bit_cast<double>(std::uint64_t{0xfff8000000000000});
    EXPECT_EQ(significant17(positive), "nan");
    EXPECT_EQ(significant17(negative), "-nan");
}

TEST(NumberText, InfinitiesAreWords)
{
    EXPECT_EQ(significant17(Limits::infinity()), "inf");
    EXPECT_EQ(significant17(-Limits::infinity()), "-inf");
}

TEST(NumberText, FixedHasSixDigitsAfterThePoint)
{
    EXPECT_EQ(fixed6(12.5), "12.500000");
    EXPECT_EQ(fixed6(12.5000001), "12.500000");
    EXPECT_EQ(fixed6(1e-7), "0.000000");
}

TEST(NumberText, FixedHoldsTheLargestDouble)
{
    EXPECT_EQ(fixed6(Limits::max()).size(), 316U);
    EXPECT_EQ(fixed6(Limits::lowest()).size(), 317U);
    EXPECT_EQ(fixed6(Limits::lowest()), std::to_string(Limits::lowest()));
}

TEST(NumberText, DecimalWritesEveryInteger)
{
    EXPECT_EQ(NumberText::decimal(0).view(), "0");
    EXPECT_EQ(NumberText::decimal(1).view(), "1");
    EXPECT_EQ(NumberText::decimal(-1).view(), "-1");
    EXPECT_EQ(NumberText::decimal(std::numeric_limits<int>::max()).view(), "2147483647");
    EXPECT_EQ(NumberText::decimal(std::numeric_limits<int>::min()).view(), "-2147483648");
}

// ---- against the library functions whose texts these are ------------------------------------------

class NumberTextOfSpecialDoubles : public testing::TestWithParam<double> {};

TEST_P(NumberTextOfSpecialDoubles, SignificantDigitsAreThoseOfLexicalCast)
{
    EXPECT_EQ(significant17(GetParam()), boost::lexical_cast<std::string>(GetParam()));
}

TEST_P(NumberTextOfSpecialDoubles, FixedIsThatOfToString)
{
    EXPECT_EQ(fixed6(GetParam()), std::to_string(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Doubles, NumberTextOfSpecialDoubles,
    testing::Values(0.0, -0.0, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
                    -Limits::quiet_NaN(), Limits::denorm_min(), -Limits::denorm_min(), Limits::min(),
                    Limits::max(), Limits::lowest(), Limits::epsilon(), 0.1, 12.5, 0.0000005, 0.5000005,
                    std::bit_cast<double>(std::uint64_t{0x000fffffffffffff}),    // the largest denormal
                    std::bit_cast<double>(std::uint64_t{0x7ff8000000000123}),    // NaN with a payload
                    std::bit_cast<double>(std::uint64_t{0xfff8000000000123})));  // the same, negative

/// Any 64 bits: unlike the generator of doubles, this visits denormals, NaN and every exponent.
double anyDouble()
{
    return std::bit_cast<double>(*rc::gen::resize(1000, rc::gen::arbitrary<std::uint64_t>()));
}

RC_GTEST_PROP(NumberTextProperties, SignificantDigitsAreThoseOfLexicalCast, ())
{
    for (int i = 0; i < 100; ++i) {
        const double value = anyDouble();
        RC_ASSERT(significant17(value) == boost::lexical_cast<std::string>(value));
    }
}

RC_GTEST_PROP(NumberTextProperties, FixedIsThatOfToString, ())
{
    for (int i = 0; i < 100; ++i) {
        const double value = anyDouble();
        RC_ASSERT(fixed6(value) == std::to_string(value));
    }
}

RC_GTEST_PROP(NumberTextProperties, DecimalIsThatOfToString, (int value))
{
    RC_ASSERT(NumberText::decimal(value).view() == std::to_string(value));
}

// ---- doubles to integers --------------------------------------------------------------------------

TEST(TruncateToInt, CutsTowardZero)
{
    EXPECT_EQ(truncateToInt(2.9), 2);
    EXPECT_EQ(truncateToInt(-2.9), -2);
    EXPECT_EQ(truncateToInt(0.999999), 0);
    EXPECT_EQ(truncateToInt(-0.0), 0);
}

TEST(TruncateToInt, NotANumberIsZero)
{
    EXPECT_EQ(truncateToInt(Limits::quiet_NaN()), 0);
    EXPECT_EQ(truncateToInt(-Limits::quiet_NaN()), 0);
}

TEST(TruncateToInt, SaturatesBeyondTheRange)
{
    EXPECT_EQ(truncateToInt(2147483647.0), std::numeric_limits<int>::max());
    EXPECT_EQ(truncateToInt(2147483648.0), std::numeric_limits<int>::max());
    EXPECT_EQ(truncateToInt(-2147483648.0), std::numeric_limits<int>::min());
    EXPECT_EQ(truncateToInt(-2147483649.0), std::numeric_limits<int>::min());
    EXPECT_EQ(truncateToInt(1e300), std::numeric_limits<int>::max());
    EXPECT_EQ(truncateToInt(-Limits::infinity()), std::numeric_limits<int>::min());
}

TEST(TruncateToInt, KeepsTheLastFractionInRange)
{
    EXPECT_EQ(truncateToInt(2147483646.75), 2147483646);
    EXPECT_EQ(truncateToInt(-2147483647.75), -2147483647);
}

}  // namespace
}  // namespace zm_hmi
