#include "reference_host/values/ValueReading.hpp"

#include "reference_host/values/ValueMaking.hpp"
#include "tests/reference_host/values/Misuse.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace reference_host;
using ValueReadingTest = HostTest;

TEST_F(ValueReadingTest, ElementsOfEachClassAreReadAndWritten)
{
    for (int code = static_cast<int>(nvClassID::Double); code <= static_cast<int>(nvClassID::UInt64);
         ++code) {
        const OwnedValue value = makeNumeric(Dimensions(2, 2), static_cast<nvClassID>(code));
        setElement(value.get(), 3, 100);
        EXPECT_EQ(element(value.get(), 3), 100.0) << className(value.get());
        EXPECT_EQ(integerElement(value.get(), 3), 100) << className(value.get());
        EXPECT_EQ(element(value.get(), 2), 0.0) << className(value.get());
    }
}

TEST_F(ValueReadingTest, LogicalsBecomeTrueForAnythingButZero)
{
    const OwnedValue value = makeLogicals(Dimensions(1, 3));
    setElement(value.get(), 1, 0.5);
    setElement(value.get(), 2, -2);
    EXPECT_FALSE(logicals(value.get())[0]);
    EXPECT_TRUE(logicals(value.get())[1]);
    EXPECT_TRUE(logicals(value.get())[2]);
}

TEST_F(ValueReadingTest, OnlyOneLogicalIsATrueScalar)
{
    const OwnedValue two = makeLogicals(Dimensions(1, 2));
    setElement(two.get(), 0, 1);
    setElement(two.get(), 1, 1);
    EXPECT_FALSE(isTrueScalar(two.get()));
    EXPECT_FALSE(isTrueScalar(makeLogicals(Dimensions(0, 0)).get()));
    EXPECT_TRUE(isTrueScalar(makeLogical(true).get()));
}

TEST_F(ValueReadingTest, TheRealPartsOfComplexNumbersAreRead)
{
    const OwnedValue value = makeNumeric(Dimensions(1, 2), nvClassID::Double, nvComplexity::Complex);
    setElement(value.get(), 1, 2.5);
    EXPECT_EQ(element(value.get(), 1), 2.5);
    EXPECT_EQ(static_cast<const double*>(numericData(value.get()))[2], 2.5);
    EXPECT_TRUE(isComplex(value.get()));
    EXPECT_FALSE(isComplex(makeDouble(1).get()));
}

TEST_F(ValueReadingTest, NullHasNoClass)
{
    EXPECT_EQ(className(nullptr), "");
    EXPECT_FALSE(isNumeric(nullptr));
    EXPECT_FALSE(isOfClass(makeDouble(1).get(), nullptr));
}

TEST_F(ValueReadingTest, ClassesThatDoNotFitAreRefusedByName)
{
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    EXPECT_NE(refusedWith("WrongClass", [&] { scalar(cells.get()); }).find("1x1 cell"), std::string::npos);
    refusedWith("WrongClass", [&] { text(cells.get()); });
    refusedWith("WrongClass", [&] { objects(cells.get()); });
    refusedWith("WrongClass", [&] { logicals(cells.get()); });
    refusedWith("WrongClass", [&] { numericData(makeLogical(true).get()); });
    refusedWith("WrongClass", [&] { element(makeText(std::string_view("a")).get(), 0); });
}

TEST_F(ValueReadingTest, AnEmptyCellArrayHasTheWrongClassRatherThanNoElement)
{
    refusedWith("WrongClass", [] { scalar(makeCells(Dimensions(0, 0)).get()); });
    refusedWith("EmptyValue", [] { scalar(makeText(std::string_view()).get()); });
}

}  // namespace
