#include "host/OwnedArray.hpp"
#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>

#include <array>

namespace {

OwnedArray makeCells(std::size_t count)
{
    const std::array<std::size_t, 2> sizes{1, count};
    return OwnedArray(nvCreateCellArray(sizes.size(), sizes.data()));
}

TEST(CellArray, StartsWithAllCellsUnset)
{
    const OwnedArray value = makeCells(2);
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 2u);
    EXPECT_TRUE(nvIsA(value.get(), "cell"));
    EXPECT_EQ(nvGetCell(value.get(), 0), nullptr);
    EXPECT_EQ(nvGetCell(value.get(), 1), nullptr);
}

TEST(CellArray, HoldsTheVeryValue)
{
    const OwnedArray value = makeCells(2);
    nvArray* element = nvCreateDoubleScalar(4);
    nvSetCell(value.get(), 1, element);
    EXPECT_EQ(nvGetCell(value.get(), 1), element);
}

TEST(CellArray, EndsWhatACellHeldBefore)
{
    const OwnedArray value = makeCells(1);
    setCell(value.get(), 0, makeDouble(1));
    setCell(value.get(), 0, makeDouble(2));
    EXPECT_EQ(nvGetScalar(nvGetCell(value.get(), 0)), 2.0);
}

TEST(CellArray, RefusesACellPastTheEnd)
{
    const OwnedArray value = makeCells(1);
    const OwnedArray element = makeDouble(7);
    expectHostError("nvGetCell", [&] { nvGetCell(value.get(), 1); });
    expectHostError("nvSetCell", [&] { nvSetCell(value.get(), 1, element.get()); });
    EXPECT_EQ(nvGetScalar(element.get()), 7.0);
}

TEST(CellArray, RefusesNullAsAnElement)
{
    const OwnedArray value = makeCells(1);
    expectHostError("nvSetCell", [&] { nvSetCell(value.get(), 0, nullptr); });
}

TEST(CellArray, MayBeEmpty)
{
    const OwnedArray value = makeCells(0);
    EXPECT_TRUE(nvIsEmpty(value.get()));
    EXPECT_TRUE(nvIsA(value.get(), "cell"));
}

TEST(CellArray, MayHoldContainers)
{
    const OwnedArray outer = makeCells(1);
    OwnedArray inner = makeCells(1);
    setCell(inner.get(), 0, makeString(std::string("deep")));
    setCell(outer.get(), 0, std::move(inner));
    EXPECT_EQ(nvArrayToStdString(nvGetCell(nvGetCell(outer.get(), 0), 0)), "deep");
}

TEST(CellArray, IsTheOnlyOneWithCells)
{
    const OwnedArray number = makeDouble(1);
    const OwnedArray element = makeDouble(1);
    EXPECT_EQ(nvGetCell(number.get(), 0), nullptr);
    expectHostError("nvSetCell", [&] { nvSetCell(number.get(), 0, element.get()); });
}

}  // namespace
