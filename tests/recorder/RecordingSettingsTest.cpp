#include "recorder/RecordingSettings.hpp"

#include "tests/recorder/RecorderTest.hpp"

namespace recorder {
namespace {

TEST(RecordingSettings, EmptyTextsLeaveEverything)
{
    const streamout::RecordingLimits limits = parseLimits("It", "", "");
    EXPECT_EQ(limits.decimation, 1U);
    EXPECT_FALSE(limits.maxPoints.has_value());
}

TEST(RecordingSettings, WholeNumbersAreRead)
{
    const streamout::RecordingLimits limits = parseLimits("It", "10", "1000");
    EXPECT_EQ(limits.decimation, 10U);
    EXPECT_EQ(limits.maxPoints, 1000U);
}

TEST(RecordingSettings, InfiniteMaximumPointsAreNoLimit)
{
    EXPECT_FALSE(parseLimits("It", "", "inf").maxPoints.has_value());
}

class UnreadableCount : public testing::TestWithParam<const char*> {};

TEST_P(UnreadableCount, IsNoDecimation)
{
    EXPECT_EQ(errorText("InvalidDecimation", [] { parseLimits("It", GetParam(), ""); }),
              "It: the decimation \"" + std::string(GetParam()) + "\" is not a whole number from 1.");
}

TEST_P(UnreadableCount, IsNoMaximumOfPoints)
{
    EXPECT_EQ(errorText("InvalidMaxPoints", [] { parseLimits("It", "", GetParam()); }),
              "It: the maximum points \"" + std::string(GetParam()) +
                  "\" are neither a whole number from 1 nor \"inf\".");
}

INSTANTIATE_TEST_SUITE_P(Texts, UnreadableCount,
                         testing::Values("0", "-1", "+1", "1.0", "1e3", " 2", "2 ", "two", "Inf",
                                         "18446744073709551616"));

TEST(RecordingSettings, InfiniteDecimationIsRefused)
{
    errorText("InvalidDecimation", [] { parseLimits("It", "inf", ""); });
}

}  // namespace
}  // namespace recorder
