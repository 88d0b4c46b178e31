#include "reference_host/values/Dimensions.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <vector>

namespace {

using reference_host::Dimensions;
using Sizes = std::vector<std::size_t>;

Dimensions fromList(const Sizes& sizes)
{
    return Dimensions(sizes);
}

TEST(Dimensions, OfAMatrixAreRowsAndColumns)
{
    const Dimensions dimensions(2, 3);
    EXPECT_EQ(dimensions.count(), 2u);
    EXPECT_EQ(dimensions.elementCount(), 6u);
    EXPECT_EQ(dimensions.text(), "2x3");
}

TEST(Dimensions, OfOneSizeAreAColumn)
{
    EXPECT_EQ(fromList({4}).list(), (Sizes{4, 1}));
}

TEST(Dimensions, OfNoSizeAreOneByOne)
{
    EXPECT_EQ(fromList({}).list(), (Sizes{1, 1}));
}

TEST(Dimensions, KeepThoseBeyondTheSecond)
{
    const Dimensions dimensions = fromList({2, 3, 4});
    EXPECT_EQ(dimensions.list(), (Sizes{2, 3, 4}));
    EXPECT_EQ(dimensions.elementCount(), 24u);
    EXPECT_EQ(dimensions.text(), "2x3x4");
}

TEST(Dimensions, DropTrailingOnesBeyondTheSecond)
{
    EXPECT_EQ(fromList({2, 3, 1, 1}).list(), (Sizes{2, 3}));
    EXPECT_EQ(fromList({2, 1, 1}).list(), (Sizes{2, 1}));
    EXPECT_EQ(fromList({2, 3, 1, 5}).list(), (Sizes{2, 3, 1, 5}));
}

TEST(Dimensions, WithAZeroHoldNothingHoweverLargeTheRest)
{
    constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(fromList({huge, huge, 0}).elementCount(), 0u);
}

TEST(Dimensions, BeyondAllMemoryAreRefused)
{
    constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();
    EXPECT_THROW(Dimensions(huge, 2), std::bad_alloc);
    EXPECT_THROW(fromList({2, 2, huge}), std::bad_alloc);
}

TEST(Dimensions, AreCopiedWhole)
{
    const Dimensions dimensions = fromList({2, 3, 4});
    const Dimensions copy(dimensions);
    EXPECT_EQ(copy.list(), dimensions.list());
    EXPECT_EQ(copy.elementCount(), 24u);
}

}  // namespace
