#include "host/OwnedArray.hpp"
#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

OwnedArray makeMatrix(std::size_t rows, std::size_t columns, nvClassID classID)
{
    return OwnedArray(nvCreateNumericMatrix(rows, columns, classID, nvComplexity::Real));
}

std::int64_t integerOf(double number)
{
    return nvGetScalarInt(makeDouble(number).get());
}

TEST(Number, AsDoubleScalarIsOneElement)
{
    const OwnedArray value = makeDouble(12.5);
    EXPECT_EQ(nvGetScalar(value.get()), 12.5);
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 1u);
    EXPECT_TRUE(nvIsA(value.get(), "double"));
    EXPECT_FALSE(nvIsEmpty(value.get()));
}

TEST(Number, IsTruncatedTowardZeroAsInteger)
{
    EXPECT_EQ(integerOf(2.9), 2);
    EXPECT_EQ(integerOf(-2.9), -2);
}

TEST(Number, ThatIsNoneIsZeroAsInteger)
{
    EXPECT_EQ(integerOf(std::nan("")), 0);
}

TEST(Number, SaturatesAtTheEndsOfTheIntegerRange)
{
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(integerOf(9223372036854775808.0), largest);
    EXPECT_EQ(integerOf(9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(integerOf(-9223372036854775808.0), smallest);
    EXPECT_EQ(integerOf(1e300), largest);
    EXPECT_EQ(integerOf(infinity), largest);
    EXPECT_EQ(integerOf(-infinity), smallest);
}

TEST(Number, OfEachClassStartsAsZero)
{
    for (int code = static_cast<int>(nvClassID::Double); code <= static_cast<int>(nvClassID::UInt64);
         ++code) {
        const OwnedArray value(nvCreateNumericScalar(static_cast<nvClassID>(code), nvComplexity::Real));
        EXPECT_EQ(nvGetNumberOfElements(value.get()), 1u);
        EXPECT_EQ(nvGetScalar(value.get()), 0.0);
    }
}

TEST(Number, IsStoredThroughItsDataPointer)
{
    const OwnedArray value(nvCreateNumericScalar(nvClassID::UInt32, nvComplexity::Real));
    *static_cast<std::uint32_t*>(nvGetDataPointer(value.get())) = 4294967295u;
    EXPECT_EQ(nvGetScalar(value.get()), 4294967295.0);
    EXPECT_EQ(nvGetScalarInt(value.get()), 4294967295);
    EXPECT_TRUE(nvIsA(value.get(), "uint32"));
}

TEST(Number, OfSixtyFourBitsIsReadExactly)
{
    const OwnedArray value(nvCreateNumericScalar(nvClassID::Int64, nvComplexity::Real));
    *static_cast<std::int64_t*>(nvGetDataPointer(value.get())) = 9007199254740993;
    EXPECT_EQ(nvGetScalarInt(value.get()), 9007199254740993);
}

TEST(Number, PastTheSignedRangeSaturates)
{
    const OwnedArray value(nvCreateNumericScalar(nvClassID::UInt64, nvComplexity::Real));
    *static_cast<std::uint64_t*>(nvGetDataPointer(value.get())) = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(nvGetScalarInt(value.get()), std::numeric_limits<std::int64_t>::max());
}

TEST(Number, InAMatrixIsFoundColumnByColumn)
{
    const OwnedArray value = makeMatrix(2, 3, nvClassID::Double);
    auto* data = static_cast<double*>(nvGetDataPointer(value.get()));
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(data[i], 0.0);
        data[i] = i;
    }
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 6u);
    EXPECT_EQ(nvGetElement(value.get(), 4), 4.0);
}

TEST(Number, PastTheEndIsRefused)
{
    const OwnedArray value = makeMatrix(2, 3, nvClassID::Double);
    expectHostError("nvGetElement", [&] { nvGetElement(value.get(), 6); });
}

TEST(Number, OfAnEmptyMatrixIsRefused)
{
    const OwnedArray value = makeEmpty();
    EXPECT_TRUE(nvIsEmpty(value.get()));
    EXPECT_TRUE(nvIsA(value.get(), "double"));
    expectHostError("nvGetScalar", [&] { nvGetScalar(value.get()); });
    expectHostError("nvGetScalarInt", [&] { nvGetScalarInt(value.get()); });
    expectHostError("nvGetElement", [&] { nvGetElement(value.get(), 0); });
}

TEST(Number, IsInNoStructAndNoCellArray)
{
    const OwnedArray cells(nvCreateCellArray(0, nullptr));
    expectHostError("nvGetScalar", [&] { nvGetScalar(cells.get()); });
    expectHostError("nvGetDataPointer", [&] { nvGetDataPointer(cells.get()); });
}

TEST(Number, TakesAnyListOfDimensions)
{
    const std::array<std::size_t, 3> sizes{2, 3, 4};
    const OwnedArray value(
        nvCreateNumericMatrix(sizes.size(), sizes.data(), nvClassID::Single, nvComplexity::Real));
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 24u);
    EXPECT_EQ(nvGetElement(value.get(), 23), 0.0);
}

TEST(Number, HasNoElementsWhereADimensionIsZero)
{
    const std::array<std::size_t, 3> sizes{2, 0, 4};
    const OwnedArray value(
        nvCreateNumericMatrix(sizes.size(), sizes.data(), nvClassID::Double, nvComplexity::Real));
    EXPECT_TRUE(nvIsEmpty(value.get()));
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 0u);
}

TEST(Number, MatrixBeyondAllMemoryIsRefusedAsShortMemory)
{
    constexpr std::size_t huge = std::numeric_limits<std::size_t>::max() / 2;
    EXPECT_THROW(makeMatrix(huge, huge, nvClassID::Double), zmsvOutOfMemoryException);
    EXPECT_THROW(makeMatrix(huge, 1, nvClassID::Double), zmsvOutOfMemoryException);
}

TEST(Logical, ScalarIsTrueOrFalse)
{
    EXPECT_TRUE(nvIsLogicalScalarTrue(makeLogical(true).get()));
    EXPECT_FALSE(nvIsLogicalScalarTrue(makeLogical(false).get()));
    EXPECT_EQ(nvGetScalar(makeLogical(true).get()), 1.0);
    EXPECT_TRUE(*nvGetLogicals(makeLogical(true).get()));
    EXPECT_FALSE(*nvGetLogicals(makeLogical(false).get()));
}

TEST(Logical, IsAClassOfItsOwn)
{
    EXPECT_TRUE(nvIsLogical(makeLogical(false).get()));
    EXPECT_TRUE(nvIsA(makeLogical(false).get(), "logical"));
    EXPECT_FALSE(nvIsLogical(makeDouble(1).get()));
    EXPECT_FALSE(nvIsLogicalScalarTrue(makeDouble(1).get()));
}

TEST(Logical, IsNotReadFromANumber)
{
    const OwnedArray number = makeDouble(1);
    expectHostError("nvGetLogicals", [&] { nvGetLogicals(number.get()); });
}

RC_GTEST_PROP(Number, KeepsEveryBitOfADouble, (std::uint64_t bits))
{
    const auto number = std::bit_cast<double>(bits);
    RC_ASSERT(std::bit_cast<std::uint64_t>(nvGetScalar(makeDouble(number).get())) == bits);
}

RC_GTEST_PROP(Number, InTheIntegerRangeIsTheWholePart, (std::int64_t whole, std::uint8_t part))
{
    const double number = static_cast<double>(whole >> 16) + (whole < 0 ? -1 : 1) * (part / 256.0);
    RC_ASSERT(integerOf(number) == static_cast<std::int64_t>(std::trunc(number)));
}

}  // namespace
