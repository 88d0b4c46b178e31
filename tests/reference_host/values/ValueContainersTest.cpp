#include "reference_host/values/ValueContainers.hpp"

#include "host/Containers.hpp"
#include "reference_host/classes/ValueEquality.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/values/Misuse.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace {

using namespace reference_host;
using ValueContainersTest = HostTest;

OwnedValue makeRecords(std::size_t count)
{
    return makeStruct(Dimensions(1, count), {"UUID", "Number"});
}

TEST_F(ValueContainersTest, AValueInTwoContainersIsAMisuse)
{
    expectMisuses(2);
    const OwnedValue first = makeCells(Dimensions(1, 1));
    const OwnedValue second = makeRecords(1);
    nvArray* value = nvCreateDoubleScalar(1);
    nvSetCell(first.get(), 0, value);
    const std::string text = misusedWith("ValueIsHeld", [&] { nvSetField(second.get(), 0, "UUID", value); });
    EXPECT_NE(text.find("nvSetField"), std::string::npos) << text;
    misusedWith("ValueIsHeld", [&] { nvSetCell(first.get(), 0, value); });
    EXPECT_EQ(cell(first.get(), 0), value);
}

TEST_F(ValueContainersTest, SettingASetFieldIsAMisuseThatNamesIt)
{
    expectMisuses(1);
    const OwnedValue records = makeRecords(1);
    setField(records.get(), 0, "Number", makeDouble(1));
    const OwnedValue again = makeDouble(2);
    const std::string text =
        misusedWith("FieldIsSet", [&] { nvSetField(records.get(), 0, "Number", again.get()); });
    EXPECT_NE(text.find("Number"), std::string::npos) << text;
    EXPECT_EQ(scalar(field(records.get(), 0, "Number")), 1.0);
    EXPECT_EQ(again->ownership, Ownership::Owned);
}

TEST_F(ValueContainersTest, AContainerCannotHoldItself)
{
    expectMisuses(2);
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    const OwnedValue records = makeRecords(1);
    misusedWith("ContainsItself", [&] { nvSetCell(cells.get(), 0, cells.get()); });
    misusedWith("ContainsItself", [&] { nvReplaceField(records.get(), 0, "UUID", records.get()); });
}

TEST_F(ValueContainersTest, AContainerInAContainerIsNotWritten)
{
    expectMisuses(2);
    const OwnedValue outer = makeCells(Dimensions(1, 1));
    nvArray* inner = makeCells(Dimensions(1, 1)).release();
    setCell(outer.get(), 0, OwnedValue(inner));
    const OwnedValue element = makeDouble(1);
    misusedWith("ValueIsHeld", [&] { nvSetCell(inner, 0, element.get()); });
    // So two containers cannot hold each other either.
    misusedWith("ValueIsHeld", [&] { nvSetCell(inner, 0, outer.get()); });
}

TEST_F(ValueContainersTest, ADeadValueIsNotStored)
{
    expectMisuses(1);
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    nvArray* value = nvCreateDoubleScalar(1);
    nvDestroyArray(value);
    misusedWith("ValueIsDead", [&] { nvSetCell(cells.get(), 0, value); });
}

TEST_F(ValueContainersTest, AReplacedFieldEnds)
{
    const OwnedValue records = makeRecords(1);
    nvArray* former = makeDouble(1).release();
    setField(records.get(), 0, "Number", OwnedValue(former));
    replaceField(records.get(), 0, "Number", makeDouble(2));
    EXPECT_EQ(former->ownership, Ownership::Dead);
}

TEST_F(ValueContainersTest, AReplacedFieldLivesOnInASharedCopy)
{
    const OwnedValue records = makeRecords(1);
    setField(records.get(), 0, "Number", makeDouble(1));
    const OwnedValue copy = copyShared(records.get());
    replaceField(records.get(), 0, "Number", makeDouble(2));
    EXPECT_EQ(scalar(field(copy.get(), 0, "Number")), 1.0);
}

TEST_F(ValueContainersTest, FieldsOfEachElementAreApart)
{
    const OwnedValue records = makeRecords(3);
    for (std::size_t i = 0; i < 3; ++i) {
        setField(records.get(), i, "Number", makeDouble(static_cast<double>(i)));
    }
    EXPECT_EQ(scalar(field(records.get(), 2, "Number")), 2.0);
    EXPECT_EQ(field(records.get(), 2, "UUID"), nullptr);
}

TEST_F(ValueContainersTest, AFieldIsReadAndSetByItsNumberToo)
{
    const OwnedValue records = makeRecords(2);
    setNumberedField(records.get(), 1, 1, makeDouble(7));
    EXPECT_EQ(scalar(field(records.get(), 1, "Number")), 7);
    EXPECT_EQ(numberedField(records.get(), 1, 1), field(records.get(), 1, "Number"));
    EXPECT_EQ(numberedField(records.get(), 0, 1), nullptr);
}

TEST_F(ValueContainersTest, ANumberPastTheLastFieldIsAHostError)
{
    const OwnedValue records = makeRecords(1);
    EXPECT_THROW(static_cast<void>(numberedField(records.get(), 0, 2)), zmsvException);
    EXPECT_THROW(setNumberedField(records.get(), 0, 2, makeDouble(1)), zmsvException);
    EXPECT_THROW(setNumberedField(records.get(), 1, 0, makeDouble(1)), zmsvException);
}

TEST_F(ValueContainersTest, SettingASetFieldByItsNumberIsAMisuseThatNamesIt)
{
    expectMisuses(1);
    const OwnedValue records = makeRecords(1);
    setNumberedField(records.get(), 0, 1, makeDouble(1));
    const std::string text =
        misusedWith("FieldIsSet", [&] { setNumberedField(records.get(), 0, 1, makeDouble(2)); });
    EXPECT_NE(text.find("Number"), std::string::npos) << text;
    EXPECT_EQ(scalar(numberedField(records.get(), 0, 1)), 1);
}

TEST_F(ValueContainersTest, WhatAContainerRefusesStaysOpenWithItsOwner)
{
    const OwnedValue records = makeRecords(1);
    const OwnedValue value = makeDouble(1);
    refusedWith("NoSuchField", [&] { nvSetField(records.get(), 0, "Nmber", value.get()); });
    refusedWith("IndexPastTheEnd", [&] { nvSetField(records.get(), 1, "Number", value.get()); });
    refusedWith("NoSuchField", [&] { nvSetField(records.get(), 0, nullptr, value.get()); });
    refusedWith("NullArgument", [&] { nvSetField(records.get(), 0, "Number", nullptr); });
    refusedWith("WrongClass", [&] { nvSetCell(records.get(), 0, value.get()); });
    EXPECT_EQ(value->ownership, Ownership::Owned);
}

/// A cell array in which the deepest value stands `depth` containers deep.
OwnedValue nestedCells(std::size_t depth)
{
    OwnedValue value = makeCells(Dimensions(1, 2));
    for (std::size_t i = 0; i < depth; ++i) {
        OwnedValue outer = makeCells(Dimensions(1, 2));
        setCell(outer.get(), 0, std::move(value));
        value = std::move(outer);
    }
    return value;
}

TEST_F(ValueContainersTest, AValueStandsAThousandContainersDeep)
{
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    OwnedValue deepest = nestedCells(999);
    setCell(cells.get(), 0, std::move(deepest));
    const OwnedValue copy = copyDeep(cells.get());
    EXPECT_TRUE(areEqual(copy.get(), cells.get()));
}

TEST_F(ValueContainersTest, WhatWouldStandDeeperIsNotStoredInACell)
{
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    const OwnedValue tooDeep = nestedCells(1000);
    const std::string text = refusedWith("NestedTooDeep", [&] { nvSetCell(cells.get(), 0, tooDeep.get()); });
    EXPECT_NE(text.find("1000"), std::string::npos) << text;
    EXPECT_EQ(cell(cells.get(), 0), nullptr);
    EXPECT_EQ(tooDeep->ownership, Ownership::Owned);
}

TEST_F(ValueContainersTest, WhatWouldStandDeeperIsNotStoredInAField)
{
    const OwnedValue records = makeRecords(1);
    setField(records.get(), 0, "UUID", nestedCells(999));
    const OwnedValue tooDeep = nestedCells(1000);
    refusedWith("NestedTooDeep", [&] { nvSetField(records.get(), 0, "Number", tooDeep.get()); });
    refusedWith("NestedTooDeep", [&] { nvReplaceField(records.get(), 0, "UUID", tooDeep.get()); });
    refusedWith("NestedTooDeep",
                [&] { setCell(makeCells(Dimensions(1, 1)).get(), 0, copyShared(tooDeep.get())); });
}

TEST_F(ValueContainersTest, ACopyOfContainersIsAsDeepAsTheyAre)
{
    const OwnedValue deepest = nestedCells(1000);
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    const OwnedValue deep = copyDeep(deepest.get());
    refusedWith("NestedTooDeep", [&] { nvSetCell(cells.get(), 0, deep.get()); });
    const OwnedValue written = copyShared(deepest.get());
    setCell(written.get(), 1, makeDouble(1));
    refusedWith("NestedTooDeep", [&] { nvSetCell(cells.get(), 0, written.get()); });
}

TEST_F(ValueContainersTest, NumbersBesideEachOtherAreNoNesting)
{
    const OwnedValue cells = makeCells(Dimensions(1, 2));
    for (int i = 0; i < 2000; ++i) {
        setCell(cells.get(), 0, makeDouble(i));
        setCell(cells.get(), 1, makeCells(Dimensions(1, 1)));
    }
    const OwnedValue outer = makeCells(Dimensions(1, 1));
    setCell(outer.get(), 0, copyShared(cells.get()));
    EXPECT_NE(cell(outer.get(), 0), nullptr);
}

TEST_F(ValueContainersTest, TheOlderObjectClassHasFieldsToo)
{
    const OwnedValue object = makeStructObject("Old.Widget", Dimensions(1, 1), {"Color"});
    setField(object.get(), 0, "Color", makeText(std::string_view("red")));
    EXPECT_TRUE(nvIsStruct(object.get()));
    EXPECT_FALSE(nvIsA(object.get(), "struct"));
    EXPECT_TRUE(nvIsA(object.get(), "Old.Widget"));
    EXPECT_EQ(nvArrayToStdString(nvGetField(object.get(), 0, "Color")), "red");
    EXPECT_EQ(className(copyDeep(object.get()).get()), "Old.Widget");
}

}  // namespace
