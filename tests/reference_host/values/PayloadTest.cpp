#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace reference_host;
using PayloadTest = HostTest;

OwnedValue makeRecord(double number)
{
    OwnedValue record = makeStruct(Dimensions(1, 1), {"Number"});
    setField(record.get(), 0, "Number", makeDouble(number));
    return record;
}

TEST_F(PayloadTest, IsSharedBetweenSharedCopies)
{
    const OwnedValue value = makeText(std::string_view("a text that is shared"));
    const OwnedValue copy = copyShared(value.get());
    EXPECT_EQ(value->payload, copy->payload);
}

TEST_F(PayloadTest, IsNotSharedWithADeepCopy)
{
    const OwnedValue record = makeRecord(1);
    const OwnedValue copy = copyDeep(record.get());
    EXPECT_NE(record->payload, copy->payload);
    EXPECT_NE(field(record.get(), 0, "Number")->payload, field(copy.get(), 0, "Number")->payload);
}

TEST_F(PayloadTest, IsSplitWhenEitherSideIsWritten)
{
    const OwnedValue value = makeNumeric(Dimensions(1, 3), nvClassID::Double);
    const OwnedValue copy = copyShared(value.get());
    setElement(value.get(), 1, 5);
    EXPECT_NE(value->payload, copy->payload);
    EXPECT_EQ(element(value.get(), 1), 5.0);
    EXPECT_EQ(element(copy.get(), 1), 0.0);
}

TEST_F(PayloadTest, StaysWhereItIsWhenNobodySharesIt)
{
    const OwnedValue value = makeNumeric(Dimensions(1, 3), nvClassID::Double);
    const void* before = writableNumericData(value.get());
    setElement(value.get(), 0, 5);
    EXPECT_EQ(writableNumericData(value.get()), before);
}

TEST_F(PayloadTest, IsSharedAgainBelowAStructThatWasSplit)
{
    const OwnedValue record = makeStruct(Dimensions(1, 1), {"First", "Second"});
    setField(record.get(), 0, "First", makeText(std::string_view("shared on")));
    const OwnedValue copy = copyShared(record.get());
    setField(copy.get(), 0, "Second", makeDouble(2));
    EXPECT_EQ(field(record.get(), 0, "Second"), nullptr);
    EXPECT_EQ(field(record.get(), 0, "First")->payload, field(copy.get(), 0, "First")->payload);
}

TEST_F(PayloadTest, KeepsABorrowedFieldAliveWhileACopyHasIt)
{
    OwnedValue record = makeRecord(4);
    const OwnedValue copy = copyShared(record.get());
    const nvArray* borrowed = field(record.get(), 0, "Number");
    record.reset();
    EXPECT_EQ(scalar(borrowed), 4.0);
}

TEST_F(PayloadTest, OfEachSizeStartsZeroFilledAndIsCopiedWhole)
{
    for (const std::size_t count : {1u, 2u, 3u, 100u}) {
        const OwnedValue value = makeNumeric(Dimensions(1, count), nvClassID::Double);
        EXPECT_EQ(element(value.get(), count - 1), 0.0);
        setElement(value.get(), count - 1, 7);
        EXPECT_EQ(element(copyDeep(value.get()).get(), count - 1), 7.0);
    }
}

TEST_F(PayloadTest, OfComplexNumbersIsCopiedWithTheImaginaryPart)
{
    const OwnedValue value = makeNumeric(Dimensions(1, 2), nvClassID::Double, nvComplexity::Complex);
    static_cast<double*>(writableNumericData(value.get()))[3] = 1.5;
    const OwnedValue copy = copyDeep(value.get());
    EXPECT_TRUE(isComplex(copy.get()));
    EXPECT_EQ(static_cast<const double*>(numericData(copy.get()))[3], 1.5);
}

}  // namespace
