#include "host/OwnedArray.hpp"
#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>

namespace {

TEST(ArrayNull, HasAnEmptyText)
{
    EXPECT_EQ(nvGetUString(nullptr), u"");
    EXPECT_EQ(nvArrayToStdString(nullptr), "");
}

TEST(ArrayNull, IsEmptyAndHasNoElements)
{
    EXPECT_TRUE(nvIsEmpty(nullptr));
    EXPECT_EQ(nvGetNumberOfElements(nullptr), 0u);
}

TEST(ArrayNull, IsOfNoClass)
{
    EXPECT_FALSE(nvIsA(nullptr, "double"));
    EXPECT_FALSE(nvIsLogical(nullptr));
    EXPECT_FALSE(nvIsStruct(nullptr));
    EXPECT_FALSE(nvIsLogicalScalarTrue(nullptr));
}

TEST(ArrayNull, HasNoFieldsAndNoCells)
{
    EXPECT_EQ(nvGetField(nullptr, 0, "UUID"), nullptr);
    EXPECT_EQ(nvGetNumberOfFields(nullptr), 0u);
    EXPECT_TRUE(nvGetFieldNames(nullptr).empty());
    EXPECT_EQ(nvGetCell(nullptr, 0), nullptr);
}

TEST(ArrayNull, CopiesAsNull)
{
    EXPECT_EQ(nvCreateDeepCopy(nullptr), nullptr);
    EXPECT_EQ(nvCreateSharedDataCopy(nullptr), nullptr);
}

TEST(ArrayNull, IsIgnoredWhenDestroyed)
{
    EXPECT_NO_THROW(nvDestroyArray(nullptr));
}

TEST(ArrayNull, HasNoNumbers)
{
    expectHostError("nvGetScalar", [] { nvGetScalar(nullptr); });
    expectHostError("nvGetScalarInt", [] { nvGetScalarInt(nullptr); });
    expectHostError("nvGetElement", [] { nvGetElement(nullptr, 0); });
    expectHostError("nvGetLogicals", [] { nvGetLogicals(nullptr); });
    expectHostError("nvGetDataPointer", [] { nvGetDataPointer(nullptr); });
}

TEST(ArrayNull, IsGivenNoScope)
{
    expectHostError("nvSetArrayScope", [] { nvSetArrayScope(nullptr, nvScope::Temporary); });
    expectHostError("zmsvSetLocalScope", [] { zmsvSetLocalScope(nullptr); });
    expectHostError("zmsvSetPersistentScope", [] { zmsvSetPersistentScope(nullptr); });
}

TEST(ArrayNull, TakesAndGivesNothing)
{
    const OwnedArray value = makeDouble(1);
    expectHostError("nvSetField", [&] { nvSetField(nullptr, 0, "UUID", value.get()); });
    expectHostError("nvReplaceField", [&] { nvReplaceField(nullptr, 0, "UUID", value.get()); });
    expectHostError("nvSetCell", [&] { nvSetCell(nullptr, 0, value.get()); });
}

}  // namespace
