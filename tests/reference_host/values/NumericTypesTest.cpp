#include "reference_host/values/NumericTypes.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using reference_host::toInteger;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(ToInteger, TruncatesTowardZero)
{
    EXPECT_EQ(toInteger<std::int32_t>(1.999), 1);
    EXPECT_EQ(toInteger<std::int32_t>(-1.999), -1);
    EXPECT_EQ(toInteger<std::uint32_t>(-0.999), 0u);
}

TEST(ToInteger, MakesZeroOfNotANumber)
{
    EXPECT_EQ(toInteger<std::int32_t>(std::nan("")), 0);
    EXPECT_EQ(toInteger<std::uint64_t>(-std::nan("")), 0u);
}

TEST(ToInteger, SaturatesInEveryWidth)
{
    EXPECT_EQ(toInteger<std::int8_t>(128.0), 127);
    EXPECT_EQ(toInteger<std::int8_t>(-1e9), -128);
    EXPECT_EQ(toInteger<std::uint8_t>(-1.0), 0);
    EXPECT_EQ(toInteger<std::uint32_t>(4294967296.0), 4294967295u);
    EXPECT_EQ(toInteger<std::int64_t>(infinity), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(toInteger<std::uint64_t>(18446744073709551616.0), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(toInteger<std::uint64_t>(-infinity), 0u);
}

TEST(ToInteger, KeepsTheLastNumberBeforeTheEnd)
{
    EXPECT_EQ(toInteger<std::int32_t>(2147483647.9), 2147483647);
    EXPECT_EQ(toInteger<std::int32_t>(-2147483648.9), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(toInteger<std::int64_t>(9223372036854774784.0), 9223372036854774784);
}

RC_GTEST_PROP(ToInteger, GivesBackEveryIntegerThatADoubleHolds, (std::int32_t number))
{
    RC_ASSERT(toInteger<std::int32_t>(number) == number);
    RC_ASSERT(toInteger<std::int64_t>(number) == number);
}

}  // namespace
