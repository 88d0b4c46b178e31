#include "simulation/SourceOrder.hpp"

#include <gtest/gtest.h>

namespace simulation {
namespace {

using Order = std::vector<std::size_t>;

TEST(SourceOrderTest, SourceComesAfterThoseThatItReadsFrom)
{
    EXPECT_EQ(orderOfSources({{1}, {2}, {}}), (Order{2, 1, 0}));
}

TEST(SourceOrderTest, OrderIsTheGivenOneOtherwise)
{
    EXPECT_EQ(orderOfSources({{}, {}, {}}), (Order{0, 1, 2}));
}

TEST(SourceOrderTest, CircleIsCutOpen)
{
    EXPECT_EQ(orderOfSources({{1}, {0}, {0}}), (Order{1, 0, 2}));
    EXPECT_EQ(orderOfSources({{0}}), (Order{0}));
}

}  // namespace
}  // namespace simulation
