#include "reference_host/values/Value.hpp"

#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using namespace reference_host;
using ValueDescriptionTest = HostTest;

TEST_F(ValueDescriptionTest, ShowsScalars)
{
    EXPECT_EQ(describe(makeDouble(2).get()), "double 2");
    EXPECT_EQ(describe(makeDouble(12.5).get()), "double 12.5");
    EXPECT_EQ(describe(makeNumber(7, nvClassID::UInt32).get()), "uint32 7");
    EXPECT_EQ(describe(makeLogical(true).get()), "logical true");
}

TEST_F(ValueDescriptionTest, ShowsTheWholeOfALargeInteger)
{
    const OwnedValue value = makeNumeric(Dimensions(1, 1), nvClassID::UInt64);
    *static_cast<std::uint64_t*>(writableNumericData(value.get())) =
        std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(describe(value.get()), "uint64 18446744073709551615");
}

TEST_F(ValueDescriptionTest, ShowsText)
{
    EXPECT_EQ(describe(makeText(std::string_view("Größe")).get()), "\"Größe\"");
    EXPECT_EQ(describe(makeText(std::string_view()).get()), "\"\"");
    EXPECT_EQ(describe(makeCharacters(Dimensions(2, 2), u"abcd").get()), "2x2 char");
}

TEST_F(ValueDescriptionTest, ShowsTheSizeOfEverythingElse)
{
    EXPECT_EQ(describe(makeEmptyValue().get()), "0x0 double");
    EXPECT_EQ(describe(makeStruct(Dimensions(1, 3), {"UUID", "BlockPath_"}).get()),
              "1x3 struct {UUID, BlockPath_}");
    EXPECT_EQ(describe(makeCells(Dimensions(1, 2)).get()), "1x2 cell");
    EXPECT_EQ(describe(makeObjects("Some.Class", Dimensions(0, 1), {}).get()), "0x1 Some.Class");
    EXPECT_EQ(describe(makeStructObject("Old.Widget", Dimensions(1, 1), {"A"}).get()), "1x1 Old.Widget {A}");
    EXPECT_EQ(describe(makeNumeric(Dimensions(1, 1), nvClassID::Single, nvComplexity::Complex).get()),
              "1x1 complex single");
}

TEST_F(ValueDescriptionTest, ShowsWhatIsNotThere)
{
    nvArray* ended = nvCreateDoubleScalar(1);
    const std::string number = "#" + std::to_string(ended->serial);
    nvDestroyArray(ended);
    EXPECT_EQ(describe(nullptr), "null");
    EXPECT_EQ(describe(ended), "a destroyed value");
    EXPECT_EQ(describeWithSerial(ended), number + " a destroyed value, made by nvCreateDoubleScalar");
}

}  // namespace
