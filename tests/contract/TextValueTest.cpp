#include "host/OwnedArray.hpp"
#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace {

TEST(TextValue, IsARowOfUtf16Units)
{
    const OwnedArray value(nvCreateString("Größe 🌡"));
    EXPECT_EQ(nvGetUString(value.get()), u"Größe 🌡");
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 8u);
    EXPECT_TRUE(nvIsA(value.get(), "char"));
}

TEST(TextValue, OfLengthKeepsZeroUnits)
{
    const std::string text("a\0b", 3);
    const OwnedArray value(nvCreateString(text.data(), text.size()));
    EXPECT_EQ(nvGetUString(value.get()), std::u16string(u"a\0b", 3));
    EXPECT_EQ(nvArrayToStdString(value.get()), text);
}

TEST(TextValue, EndsAtZeroWhereNoLengthIsGiven)
{
    const OwnedArray value(nvCreateString("ab\0c"));
    EXPECT_EQ(nvGetNumberOfElements(value.get()), 2u);
}

TEST(TextValue, IsEmptyForAnEmptyText)
{
    const OwnedArray narrow(nvCreateString(""));
    const OwnedArray wide(nvCreateUString(nullptr, 0));
    const OwnedArray counted(nvCreateString(nullptr, 0));
    for (const nvArray* value : {narrow.get(), wide.get(), counted.get()}) {
        EXPECT_TRUE(nvIsEmpty(value));
        EXPECT_TRUE(nvIsA(value, "char"));
        EXPECT_EQ(nvGetUString(value), u"");
    }
}

TEST(TextValue, IsRefusedForANullPointerWithALength)
{
    expectHostError("nvCreateString", [] { nvCreateString(nullptr, 3); });
    expectHostError("nvCreateString", [] { nvCreateString(nullptr); });
    expectHostError("nvCreateUString", [] { nvCreateUString(nullptr, 3); });
}

TEST(TextValue, KeepsAnUnpairedSurrogate)
{
    const std::u16string text{u'a', char16_t{0xD800}, u'b', char16_t{0xDC00}};
    const OwnedArray value = makeString(text);
    EXPECT_EQ(nvGetUString(value.get()), text);
    EXPECT_EQ(nvArrayToStdString(value.get()),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
}

TEST(TextValue, OfAnyEmptyValueIsEmpty)
{
    EXPECT_EQ(nvGetUString(makeEmpty().get()), u"");
}

TEST(TextValue, OfANumberIsRefused)
{
    const OwnedArray number = makeDouble(1);
    expectHostError("nvGetUString", [&] { nvGetUString(number.get()); });
    expectHostError("nvArrayToStdString", [&] { nvArrayToStdString(number.get()); });
}

TEST(TextValue, HasTheNumberOfItsFirstUnitAsScalar)
{
    EXPECT_EQ(nvGetScalar(makeString(std::string("A")).get()), 65.0);
    EXPECT_EQ(nvGetScalarInt(makeString(std::string("A")).get()), 65);
}

rc::Gen<std::u16string> anyUnits()
{
    const auto anyUnit = rc::gen::cast<char16_t>(rc::gen::inRange(0, 0x10000));
    const auto surrogate = rc::gen::cast<char16_t>(rc::gen::inRange(0xD800, 0xE000));
    return rc::gen::container<std::u16string>(rc::gen::oneOf(anyUnit, surrogate));
}

RC_GTEST_PROP(TextValue, KeepsEveryUtf16Unit, ())
{
    const std::u16string text = *anyUnits();
    RC_ASSERT(nvGetUString(makeString(text).get()) == text);
}

}  // namespace
