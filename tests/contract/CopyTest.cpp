#include "host/OwnedArray.hpp"

#include <gtest/gtest.h>

#include <array>

namespace {

using MakeCopy = nvArray* (*)(const nvArray*);

/// Both kinds of copy behave alike to whoever looks only at values.
class Copy : public ::testing::TestWithParam<MakeCopy> {
protected:
    static OwnedArray copyOf(const OwnedArray& value) { return OwnedArray(GetParam()(value.get())); }

    static OwnedArray makeRecord(double number)
    {
        const std::array<std::size_t, 2> sizes{1, 1};
        const std::array<const char*, 2> names{"Number", "Cells"};
        OwnedArray record(nvCreateStructArray(sizes.size(), sizes.data(), names.size(), names.data()));
        setField(record.get(), 0, "Number", makeDouble(number));
        OwnedArray cells(nvCreateCellArray(sizes.size(), sizes.data()));
        setCell(cells.get(), 0, makeString(std::string("in a cell")));
        setField(record.get(), 0, "Cells", std::move(cells));
        return record;
    }

    static double numberOf(const OwnedArray& record)
    {
        return nvGetScalar(nvGetField(record.get(), 0, "Number"));
    }
};

TEST_P(Copy, HasTheSameContents)
{
    const OwnedArray copy = copyOf(makeRecord(3));
    EXPECT_EQ(numberOf(copy), 3.0);
    EXPECT_EQ(nvArrayToStdString(nvGetCell(nvGetField(copy.get(), 0, "Cells"), 0)), "in a cell");
}

TEST_P(Copy, DoesNotFollowWritesToTheOriginal)
{
    const OwnedArray record = makeRecord(3);
    const OwnedArray copy = copyOf(record);
    replaceField(record.get(), 0, "Number", makeDouble(4));
    EXPECT_EQ(numberOf(copy), 3.0);
    EXPECT_EQ(numberOf(record), 4.0);
}

TEST_P(Copy, IsWrittenWithoutTheOriginal)
{
    const OwnedArray record = makeRecord(3);
    const OwnedArray copy = copyOf(record);
    replaceField(copy.get(), 0, "Number", makeDouble(4));
    EXPECT_EQ(numberOf(record), 3.0);
    EXPECT_EQ(numberOf(copy), 4.0);
}

TEST_P(Copy, IsWrittenThroughItsDataPointerAlone)
{
    const OwnedArray number(nvCreateNumericMatrix(2, 3, nvClassID::Double, nvComplexity::Real));
    const OwnedArray copy = copyOf(number);
    static_cast<double*>(nvGetDataPointer(copy.get()))[5] = 1.5;
    EXPECT_EQ(nvGetElement(number.get(), 5), 0.0);
    EXPECT_EQ(nvGetElement(copy.get(), 5), 1.5);
}

TEST_P(Copy, OutlivesTheOriginal)
{
    OwnedArray record = makeRecord(3);
    const OwnedArray copy = copyOf(record);
    record.reset();
    EXPECT_EQ(numberOf(copy), 3.0);
}

TEST_P(Copy, OfAFieldIsOwned)
{
    OwnedArray record = makeRecord(3);
    OwnedArray copy(GetParam()(nvGetField(record.get(), 0, "Number")));
    record.reset();
    EXPECT_EQ(nvGetScalar(copy.get()), 3.0);
    replaceField(makeRecord(5).get(), 0, "Number", std::move(copy));
}

TEST_P(Copy, KeepsClassAndEmptiness)
{
    const OwnedArray logical = copyOf(makeLogical(true));
    EXPECT_TRUE(nvIsLogicalScalarTrue(logical.get()));
    const OwnedArray empty = copyOf(makeEmpty());
    EXPECT_TRUE(nvIsEmpty(empty.get()));
    EXPECT_TRUE(nvIsA(empty.get(), "double"));
}

TEST_P(Copy, KeepsUnsetFieldsUnset)
{
    const std::array<std::size_t, 2> sizes{1, 1};
    const char* name = "Number";
    const OwnedArray record(nvCreateStructArray(sizes.size(), sizes.data(), 1, &name));
    EXPECT_EQ(nvGetField(copyOf(record).get(), 0, name), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Deep, Copy, ::testing::Values(&nvCreateDeepCopy));
INSTANTIATE_TEST_SUITE_P(Shared, Copy, ::testing::Values(&nvCreateSharedDataCopy));

}  // namespace
