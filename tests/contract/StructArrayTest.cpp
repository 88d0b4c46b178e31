#include "host/OwnedArray.hpp"
#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>

#include <array>

namespace {

constexpr std::array<const char*, 3> names{"UUID", "BlockPath_", "Decimation_"};

OwnedArray makeRow(std::size_t count)
{
    const std::array<std::size_t, 2> sizes{1, count};
    return OwnedArray(nvCreateStructArray(sizes.size(), sizes.data(), names.size(), names.data()));
}

TEST(StructArray, HasItsFieldsInTheirOrder)
{
    const OwnedArray value = makeRow(2);
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 2u);
    EXPECT_EQ(nvGetNumberOfFields(value.get()), 3u);
    EXPECT_EQ(nvGetFieldNames(value.get()), (std::vector<std::string>{"UUID", "BlockPath_", "Decimation_"}));
    EXPECT_TRUE(nvIsStruct(value.get()));
    EXPECT_TRUE(nvIsA(value.get(), "struct"));
}

TEST(StructArray, StartsWithAllFieldsUnset)
{
    const OwnedArray value = makeRow(1);
    for (const char* name : names) {
        EXPECT_EQ(nvGetField(value.get(), 0, name), nullptr);
    }
}

TEST(StructArray, HasNullForAFieldThatItLacks)
{
    EXPECT_EQ(nvGetField(makeRow(1).get(), 0, "uuid"), nullptr);
}

TEST(StructArray, HoldsWhatAFieldWasGiven)
{
    const OwnedArray value = makeRow(2);
    setField(value.get(), 1, "UUID", makeString(std::string("abc")));
    EXPECT_EQ(nvArrayToStdString(nvGetField(value.get(), 1, "UUID")), "abc");
    EXPECT_EQ(nvGetField(value.get(), 0, "UUID"), nullptr);
}

TEST(StructArray, TakesTheVeryValueWithoutACopy)
{
    const OwnedArray value = makeRow(1);
    nvArray* field = nvCreateDoubleScalar(3);
    nvSetField(value.get(), 0, "UUID", field);
    EXPECT_EQ(nvGetField(value.get(), 0, "UUID"), field);
}

TEST(StructArray, ReplacesASetField)
{
    const OwnedArray value = makeRow(1);
    setField(value.get(), 0, "Decimation_", makeDouble(1));
    replaceField(value.get(), 0, "Decimation_", makeDouble(2));
    EXPECT_EQ(nvGetScalar(nvGetField(value.get(), 0, "Decimation_")), 2.0);
}

TEST(StructArray, ReplacesAnUnsetFieldToo)
{
    const OwnedArray value = makeRow(1);
    replaceField(value.get(), 0, "Decimation_", makeDouble(2));
    EXPECT_EQ(nvGetScalar(nvGetField(value.get(), 0, "Decimation_")), 2.0);
}

TEST(StructArray, LeavesAValueWithItsOwnerWhenItRefusesIt)
{
    const OwnedArray value = makeRow(1);
    const OwnedArray field = makeDouble(1);
    expectHostError("nvSetField", [&] { nvSetField(value.get(), 0, "NoSuchField", field.get()); });
    expectHostError("nvSetField", [&] { nvSetField(value.get(), 1, "UUID", field.get()); });
    expectHostError("nvReplaceField", [&] { nvReplaceField(value.get(), 0, "NoSuchField", field.get()); });
    EXPECT_EQ(nvGetScalar(field.get()), 1.0);
}

TEST(StructArray, RefusesAnElementPastTheEnd)
{
    const OwnedArray value = makeRow(2);
    expectHostError("nvGetField", [&] { nvGetField(value.get(), 2, "UUID"); });
}

TEST(StructArray, RefusesNullAsAField)
{
    const OwnedArray value = makeRow(1);
    expectHostError("nvSetField", [&] { nvSetField(value.get(), 0, "UUID", nullptr); });
}

TEST(StructArray, OfOneDimensionIsAColumn)
{
    const std::size_t size = 3;
    const OwnedArray value(nvCreateStructArray(1, &size, names.size(), names.data()));
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 3u);
    setField(value.get(), 2, "UUID", makeDouble(1));
    EXPECT_NE(nvGetField(value.get(), 2, "UUID"), nullptr);
}

TEST(StructArray, MayBeEmptyAndKeepsItsFieldNames)
{
    const OwnedArray value = makeRow(0);
    EXPECT_TRUE(nvIsEmpty(value.get()));
    EXPECT_EQ(nvGetNumberOfFields(value.get()), 3u);
}

TEST(StructArray, MayHaveNoFields)
{
    const std::array<std::size_t, 2> sizes{1, 1};
    const OwnedArray value(nvCreateStructArray(sizes.size(), sizes.data(), 0, nullptr));
    EXPECT_EQ(nvGetNumberOfFields(value.get()), 0u);
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 1u);
}

TEST(StructArray, IsTheOnlyOneWithFields)
{
    const OwnedArray number = makeDouble(1);
    EXPECT_EQ(nvGetField(number.get(), 0, "UUID"), nullptr);
    EXPECT_EQ(nvGetNumberOfFields(number.get()), 0u);
    EXPECT_TRUE(nvGetFieldNames(number.get()).empty());
    EXPECT_FALSE(nvIsStruct(number.get()));
    const OwnedArray field = makeDouble(1);
    expectHostError("nvSetField", [&] { nvSetField(number.get(), 0, "UUID", field.get()); });
}

}  // namespace
