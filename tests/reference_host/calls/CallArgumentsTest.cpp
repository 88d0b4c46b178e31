#include "reference_host/calls/CallArguments.hpp"

#include "host/Calls.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

namespace {

using namespace reference_host;
using CallArgumentsTest = HostTest;

TEST_F(CallArgumentsTest, ShowNumbersFlagsAndCodes)
{
    EXPECT_EQ(describeArgument(-3), "-3");
    EXPECT_EQ(describeArgument(std::uint64_t{18446744073709551615u}), "18446744073709551615");
    EXPECT_EQ(describeArgument(0.1), "0.1");
    EXPECT_EQ(describeArgument(true), "true");
    EXPECT_EQ(describeArgument(nvClassID::UInt32), "13");
}

TEST_F(CallArgumentsTest, QuoteText)
{
    EXPECT_EQ(describeArgument("UUID"), "\"UUID\"");
    EXPECT_EQ(describeArgument(std::string("UUID")), "\"UUID\"");
    EXPECT_EQ(describeArgument(std::u16string(u"Größe")), "\"Größe\"");
    EXPECT_EQ(describeArgument(static_cast<const char*>(nullptr)), "null");
}

TEST_F(CallArgumentsTest, NameValuesByTheirNumber)
{
    const OwnedValue value = makeDouble(2);
    const std::string name = "#" + std::to_string(value->serial) + " double 2";
    EXPECT_EQ(describeArgument(value.get()), name);
    const std::array<const nvArray*, 2> values{value.get(), nullptr};
    EXPECT_EQ(describeArgument(ValueList{values.data(), 2}), "[" + name + ", null]");
    EXPECT_EQ(describeArgument(ValueList{nullptr, 2}), "[]");
    EXPECT_EQ(describeArgument(ValueList{values.data(), -1}), "[]");
}

TEST_F(CallArgumentsTest, ShowLists)
{
    const std::array<std::size_t, 2> sizes{1, 3};
    const std::array<const char*, 2> names{"A", nullptr};
    EXPECT_EQ(describeArgument(SizeList{sizes.data(), sizes.size()}), "[1, 3]");
    EXPECT_EQ(describeArgument(SizeList{nullptr, 2}), "[]");
    EXPECT_EQ(describeArgument(NameList{names.data(), names.size()}), "[\"A\", null]");
    EXPECT_EQ(describeArgument(std::vector<std::string>{"A", "B"}), "[\"A\", \"B\"]");
}

TEST_F(CallArgumentsTest, ShowMessageIdsAndDiagnostics)
{
    const zmsvMessageId id("catalog", "Key", {std::uint64_t{3}, std::string("x")});
    EXPECT_EQ(describeArgument(id), "catalog:Key 3 x");
    zmsvDiagnostic* diagnostic = zmsvCreateDiagnostic(id, "the text");
    EXPECT_NE(describeArgument(diagnostic).find("(catalog:Key, \"the text\")"), std::string::npos);
    zmsvDiscardDiagnostic(diagnostic);
    EXPECT_NE(describeArgument(diagnostic).find("has ended"), std::string::npos);
}

}  // namespace
