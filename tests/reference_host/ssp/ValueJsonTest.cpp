#include "reference_host/ssp/ValueJson.hpp"

#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/ssp/FileRefusal.hpp"
#include "tests/reference_host/ssp/SameValue.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <locale>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace reference_host;

/// The text of a value, which the value that it gives has to be identical to.
std::string kept(const OwnedValue& value)
{
    const std::string json = valueToJson(value.get());
    EXPECT_EQ(difference(value.get(), valueFromJson(json).get()), "") << json;
    return json;
}

std::string refusal(const char* key, const std::string& json)
{
    return fileRefusal(key, [&] { valueFromJson(json); });
}

Dimensions sizes(std::initializer_list<std::size_t> list)
{
    return Dimensions(std::vector<std::size_t>(list));
}

/// A numeric value of these elements in memory; complex ones are pairs.
template <class Number>
OwnedValue numbers(nvClassID classID, Dimensions dimensions, const std::vector<Number>& elements,
                   nvComplexity complexity = nvComplexity::Real)
{
    OwnedValue value = makeNumeric(std::move(dimensions), classID, complexity);
    std::memcpy(writableNumericData(value.get()), elements.data(), elements.size() * sizeof(Number));
    return value;
}

OwnedValue doubleOfBits(std::uint64_t bits)
{
    return numbers<std::uint64_t>(nvClassID::Double, {1, 1}, {bits});
}

template <class Integer>
OwnedValue limitsOf(nvClassID classID)
{
    using Limits = std::numeric_limits<Integer>;
    return numbers<Integer>(classID, {1, 2}, {Limits::min(), Limits::max()});
}

using ValueJsonTest = HostTest;

// ---- what has a form of its own -------------------------------------------------------------------------

TEST_F(ValueJsonTest, NoValueIsNull)
{
    EXPECT_EQ(valueToJson(nullptr), "null");
    EXPECT_EQ(valueFromJson("null"), nullptr);
}

TEST_F(ValueJsonTest, AWholeDoubleShowsThatItIsOne)
{
    EXPECT_EQ(kept(makeDouble(1)), "1.0");
}

TEST_F(ValueJsonTest, ANegativeZeroKeepsItsSign)
{
    EXPECT_EQ(kept(makeDouble(-0.0)), "-0.0");
}

TEST_F(ValueJsonTest, ADoubleIsTheShortestNumberThatReadsBackTheSame)
{
    EXPECT_EQ(kept(makeDouble(0.1)), "0.1");
    EXPECT_EQ(kept(makeDouble(1e300)), "1e+300");
}

TEST_F(ValueJsonTest, TheEndsOfTheRangeOfDoublesAreKept)
{
    kept(makeDouble(std::numeric_limits<double>::max()));
    kept(makeDouble(std::numeric_limits<double>::min()));
    kept(makeDouble(std::numeric_limits<double>::denorm_min()));
    kept(makeDouble(std::nextafter(1.0, 2.0)));
}

TEST_F(ValueJsonTest, ALogicalIsTrueOrFalse)
{
    EXPECT_EQ(kept(makeLogical(true)), "true");
    EXPECT_EQ(kept(makeLogical(false)), "false");
}

TEST_F(ValueJsonTest, ARowOfCharactersIsAString)
{
    EXPECT_EQ(kept(makeText(u"Kühler \"1\"\\\n😀")), R"("Kühler \"1\"\\\n😀")");
}

TEST_F(ValueJsonTest, EmptyTextIsAnEmptyString)
{
    EXPECT_EQ(kept(makeText(u"")), R"("")");
}

TEST_F(ValueJsonTest, TextMayHoldZeros)
{
    EXPECT_EQ(kept(makeText(std::u16string(u"a\0b", 3))), R"("a\u0000b")");
}

TEST_F(ValueJsonTest, TextMayNameANumber)
{
    EXPECT_EQ(kept(makeText(u"NaN")), R"("NaN")");
}

// ---- numbers --------------------------------------------------------------------------------------------

TEST_F(ValueJsonTest, ANaNNamesItsClass)
{
    EXPECT_EQ(kept(makeDouble(std::numeric_limits<double>::quiet_NaN())),
              R"({"class":"double","data":["NaN"]})");
}

TEST_F(ValueJsonTest, InfinitiesKeepTheirSign)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(kept(numbers<double>(nvClassID::Double, {1, 2}, {infinity, -infinity})),
              R"({"class":"double","size":[1,2],"data":["Inf","-Inf"]})");
}

TEST_F(ValueJsonTest, OtherNaNsKeepTheirBits)
{
    EXPECT_EQ(kept(doubleOfBits(0xFFF8000000000000U)), R"({"class":"double","data":["0xfff8000000000000"]})");
    EXPECT_EQ(kept(doubleOfBits(0x7FF80000000000A5U)), R"({"class":"double","data":["0x7ff80000000000a5"]})");
}

TEST_F(ValueJsonTest, ASignallingNaNStaysOne)
{
    EXPECT_EQ(kept(doubleOfBits(0x7FF0000000000001U)), R"({"class":"double","data":["0x7ff0000000000001"]})");
    EXPECT_EQ(kept(numbers<std::uint32_t>(nvClassID::Single, {1, 1}, {0x7F800001U})),
              R"({"class":"single","data":["0x7f800001"]})");
}

TEST_F(ValueJsonTest, AMatrixOfDoublesStandsColumnByColumn)
{
    EXPECT_EQ(kept(numbers<double>(nvClassID::Double, {2, 2}, {1, 2.5, -0.0, 4})),
              R"({"class":"double","size":[2,2],"data":[1.0,2.5,-0.0,4.0]})");
}

TEST_F(ValueJsonTest, SinglesAreTheDoublesThatTheyEqual)
{
    EXPECT_EQ(kept(numbers<float>(nvClassID::Single, {1, 3}, {0.1F, -0.0F, 3})),
              R"({"class":"single","size":[1,3],"data":[0.10000000149011612,-0.0,3.0]})");
}

TEST_F(ValueJsonTest, TheEndsOfTheRangeOfSinglesAreKept)
{
    using Limits = std::numeric_limits<float>;
    kept(numbers<float>(nvClassID::Single, {1, 4},
                        {Limits::max(), Limits::lowest(), Limits::min(), Limits::denorm_min()}));
}

TEST_F(ValueJsonTest, SinglesThatAreNotFiniteAreNamed)
{
    using Limits = std::numeric_limits<float>;
    EXPECT_EQ(kept(numbers<float>(nvClassID::Single, {1, 2}, {Limits::quiet_NaN(), -Limits::infinity()})),
              R"({"class":"single","size":[1,2],"data":["NaN","-Inf"]})");
}

TEST_F(ValueJsonTest, IntegersAreKeptToTheEndsOfTheirRanges)
{
    EXPECT_EQ(kept(limitsOf<std::int8_t>(nvClassID::Int8)),
              R"({"class":"int8","size":[1,2],"data":[-128,127]})");
    EXPECT_EQ(kept(limitsOf<std::uint8_t>(nvClassID::UInt8)),
              R"({"class":"uint8","size":[1,2],"data":[0,255]})");
    EXPECT_EQ(kept(limitsOf<std::int16_t>(nvClassID::Int16)),
              R"({"class":"int16","size":[1,2],"data":[-32768,32767]})");
    EXPECT_EQ(kept(limitsOf<std::uint16_t>(nvClassID::UInt16)),
              R"({"class":"uint16","size":[1,2],"data":[0,65535]})");
    EXPECT_EQ(kept(limitsOf<std::int32_t>(nvClassID::Int32)),
              R"({"class":"int32","size":[1,2],"data":[-2147483648,2147483647]})");
    EXPECT_EQ(kept(limitsOf<std::uint32_t>(nvClassID::UInt32)),
              R"({"class":"uint32","size":[1,2],"data":[0,4294967295]})");
}

TEST_F(ValueJsonTest, IntegersOf64BitsAreExact)
{
    EXPECT_EQ(kept(limitsOf<std::int64_t>(nvClassID::Int64)),
              R"({"class":"int64","size":[1,2],"data":[-9223372036854775808,9223372036854775807]})");
    EXPECT_EQ(kept(limitsOf<std::uint64_t>(nvClassID::UInt64)),
              R"({"class":"uint64","size":[1,2],"data":[0,18446744073709551615]})");
    EXPECT_EQ(kept(numbers<std::int64_t>(nvClassID::Int64, {1, 1}, {9007199254740993})),
              R"({"class":"int64","data":[9007199254740993]})");
}

TEST_F(ValueJsonTest, ANumberOfAnotherClassNamesIt)
{
    EXPECT_EQ(kept(makeNumber(7, nvClassID::UInt32)), R"({"class":"uint32","data":[7]})");
}

TEST_F(ValueJsonTest, AComplexScalarHasBothParts)
{
    EXPECT_EQ(kept(numbers<double>(nvClassID::Double, {1, 1}, {1, -0.0}, nvComplexity::Complex)),
              R"({"class":"double","data":[1.0],"imaginary":[-0.0]})");
}

TEST_F(ValueJsonTest, ComplexIntegersKeepTheirPairsApart)
{
    EXPECT_EQ(kept(numbers<std::int16_t>(nvClassID::Int16, {1, 2}, {1, 2, 3, 4}, nvComplexity::Complex)),
              R"({"class":"int16","size":[1,2],"data":[1,3],"imaginary":[2,4]})");
}

TEST_F(ValueJsonTest, AnEmptyComplexValueStaysComplex)
{
    EXPECT_EQ(kept(makeNumeric({0, 3}, nvClassID::Double, nvComplexity::Complex)),
              R"({"class":"double","size":[0,3],"data":[],"imaginary":[]})");
}

TEST_F(ValueJsonTest, LogicalsStandAsAnArray)
{
    const OwnedValue value = makeLogicals({1, 3});
    setElement(value.get(), 1, 1);
    EXPECT_EQ(kept(value), R"({"class":"logical","size":[1,3],"data":[false,true,false]})");
}

// ---- sizes ----------------------------------------------------------------------------------------------

TEST_F(ValueJsonTest, EmptyShapesAreKept)
{
    EXPECT_EQ(kept(makeEmptyValue()), R"({"class":"double","size":[0,0],"data":[]})");
    EXPECT_EQ(kept(makeNumeric({1, 0}, nvClassID::Int8)), R"({"class":"int8","size":[1,0],"data":[]})");
    EXPECT_EQ(kept(makeLogicals({0, 1})), R"({"class":"logical","size":[0,1],"data":[]})");
    EXPECT_EQ(kept(makeCharacters({1, 0}, u"")), R"({"class":"char","size":[1,0],"text":""})");
    EXPECT_EQ(kept(makeCells({0, 3})), R"({"class":"cell","size":[0,3],"values":[]})");
}

TEST_F(ValueJsonTest, MoreThanTwoSizesAreKept)
{
    EXPECT_EQ(kept(numbers<std::int8_t>(nvClassID::Int8, sizes({1, 2, 2}), {1, 2, 3, 4})),
              R"({"class":"int8","size":[1,2,2],"data":[1,2,3,4]})");
    EXPECT_EQ(kept(makeNumeric(sizes({2, 1, 0, 4}), nvClassID::Double)),
              R"({"class":"double","size":[2,1,0,4],"data":[]})");
}

TEST_F(ValueJsonTest, EmptyCharactersOfMoreSizesAreNotEmptyText)
{
    EXPECT_EQ(kept(makeCharacters(sizes({0, 0, 2}), u"")), R"({"class":"char","size":[0,0,2],"text":""})");
}

TEST_F(ValueJsonTest, AHugeSizeBesideAZeroIsKept)
{
    EXPECT_EQ(kept(makeNumeric({0, std::numeric_limits<std::size_t>::max()}, nvClassID::Double)),
              R"({"class":"double","size":[0,18446744073709551615],"data":[]})");
}

TEST_F(ValueJsonTest, OneByOneMayBeWrittenOut)
{
    EXPECT_EQ(difference(valueFromJson(R"({"class":"double","size":[1,1,1],"data":[2.0]})").get(),
                         makeDouble(2).get()),
              "");
}

// ---- characters -----------------------------------------------------------------------------------------

TEST_F(ValueJsonTest, ACharacterMatrixHasItsSizes)
{
    EXPECT_EQ(kept(makeCharacters({2, 2}, u"abcd")), R"({"class":"char","size":[2,2],"text":"abcd"})");
}

TEST_F(ValueJsonTest, AColumnOfCharactersIsNoString)
{
    EXPECT_EQ(kept(makeCharacters({2, 1}, u"ab")), R"({"class":"char","size":[2,1],"text":"ab"})");
}

TEST_F(ValueJsonTest, HalfAPairOfSurrogatesIsKept)
{
    EXPECT_EQ(kept(makeText(u"a\xD800")), R"({"class":"char","size":[1,2],"text":{"units":[97,55296]}})");
    EXPECT_EQ(kept(makeText(u"\xDC00")), R"({"class":"char","text":{"units":[56320]}})");
}

TEST_F(ValueJsonTest, SurrogatesInTheWrongOrderAreKept)
{
    EXPECT_EQ(kept(makeText(u"\xDE00\xD83D")),
              R"({"class":"char","size":[1,2],"text":{"units":[56832,55357]}})");
}

TEST_F(ValueJsonTest, APairOfSurrogatesCountsAsTwoElements)
{
    EXPECT_EQ(kept(makeCharacters({2, 1}, u"😀")), R"({"class":"char","size":[2,1],"text":"😀"})");
}

// ---- containers -----------------------------------------------------------------------------------------

TEST_F(ValueJsonTest, CellsHoldValuesOrNothing)
{
    const OwnedValue cells = makeCells({1, 3});
    setCell(cells.get(), 0, makeText(u"a"));
    setCell(cells.get(), 2, makeCells({0, 0}));
    EXPECT_EQ(
        kept(cells),
        R"({"class":"cell","size":[1,3],"values":["a",null,{"class":"cell","size":[0,0],"values":[]}]})");
}

TEST_F(ValueJsonTest, ACellOfOneHasNoSize)
{
    EXPECT_EQ(kept(makeCells({1, 1})), R"({"class":"cell","values":[null]})");
}

TEST_F(ValueJsonTest, AStructArrayStandsFieldByField)
{
    const OwnedValue records = makeStruct({1, 3}, {"a", "b"});
    setField(records.get(), 0, "a", makeDouble(1));
    setField(records.get(), 2, "a", makeDouble(3));
    setField(records.get(), 1, "b", makeText(u"x"));
    setField(records.get(), 2, "b", makeLogical(true));
    EXPECT_EQ(kept(records), R"({"class":"struct","size":[1,3],"fields":["a","b"],)"
                             R"("values":[[1.0,null,3.0],[null,"x",true]]})");
}

TEST_F(ValueJsonTest, FieldsKeepTheirOrder)
{
    EXPECT_EQ(kept(makeStruct({1, 1}, {"z", "a"})),
              R"({"class":"struct","fields":["z","a"],"values":[[null],[null]]})");
}

TEST_F(ValueJsonTest, AnEmptyStructArrayKeepsItsFields)
{
    EXPECT_EQ(kept(makeStruct({0, 0}, {"a", "b"})),
              R"({"class":"struct","size":[0,0],"fields":["a","b"],"values":[[],[]]})");
}

TEST_F(ValueJsonTest, AStructWithoutFieldsKeepsItsSize)
{
    EXPECT_EQ(kept(makeStruct({2, 3}, {})), R"({"class":"struct","size":[2,3],"fields":[],"values":[]})");
}

TEST_F(ValueJsonTest, AStructWithoutFieldsMayBeHuge)
{
    EXPECT_EQ(kept(makeStruct({1'000'000'000'000, 1'000'000}, {})),
              R"({"class":"struct","size":[1000000000000,1000000],"fields":[],"values":[]})");
}

TEST_F(ValueJsonTest, AStructMatrixStandsColumnByColumn)
{
    const OwnedValue records = makeStruct({2, 2}, {"a"});
    for (std::size_t i = 0; i < 4; ++i) {
        setField(records.get(), i, "a", makeDouble(static_cast<double>(i)));
    }
    EXPECT_EQ(kept(records),
              R"({"class":"struct","size":[2,2],"fields":["a"],"values":[[0.0,1.0,2.0,3.0]]})");
}

TEST_F(ValueJsonTest, StructsHoldStructs)
{
    OwnedValue inner = makeStruct({1, 1}, {"b"});
    setField(inner.get(), 0, "b", makeEmptyValue());
    const OwnedValue outer = makeStruct({1, 1}, {"a"});
    setField(outer.get(), 0, "a", std::move(inner));
    EXPECT_EQ(kept(outer), R"({"class":"struct","fields":["a"],"values":[[{"class":"struct","fields":["b"],)"
                           R"("values":[[{"class":"double","size":[0,0],"data":[]}]]}]]})");
}

TEST_F(ValueJsonTest, OlderObjectsKeepTheNameOfTheirClass)
{
    const OwnedValue object = makeStructObject("Old.Scope", {1, 1}, {"a"});
    setField(object.get(), 0, "a", makeDouble(1));
    EXPECT_EQ(kept(object), R"({"class":"object","name":"Old.Scope","fields":["a"],"values":[[1.0]]})");
}

TEST_F(ValueJsonTest, AnOlderClassMayBeNamedLikeABuiltInOne)
{
    EXPECT_EQ(kept(makeStructObject("double", {0, 1}, {})),
              R"({"class":"object","size":[0,1],"name":"double","fields":[],"values":[]})");
}

TEST_F(ValueJsonTest, NamesThatAreNoUtf8AreBytes)
{
    EXPECT_EQ(kept(makeStructObject("\xFF", {0, 1}, {"a\xC3", "ä"})),
              R"({"class":"object","size":[0,1],"name":{"bytes":[255]},)"
              R"("fields":[{"bytes":[97,195]},"ä"],"values":[[],[]]})");
}

TEST_F(ValueJsonTest, NamesMayHoldZeros)
{
    EXPECT_EQ(kept(makeStruct({1, 1}, {std::string("a\0b", 3), "a"})),
              R"({"class":"struct","fields":["a\u0000b","a"],"values":[[null],[null]]})");
}

TEST_F(ValueJsonTest, AsDeepAsTheHostHoldsIsKept)
{
    OwnedValue value = makeDouble(1);
    for (int depth = 0; depth < 1000; ++depth) {
        OwnedValue outer = makeStruct({1, 1}, {"a"});
        setField(outer.get(), 0, "a", std::move(value));
        value = std::move(outer);
    }
    kept(value);
}

TEST_F(ValueJsonTest, SharedElementsComeApartWhenTheyAreWritten)
{
    const OwnedValue cells = valueFromJson(R"({"class":"cell","size":[1,2],"values":[1.0,1.0]})");
    const OwnedValue copy = copyShared(cell(cells.get(), 0));
    setElement(copy.get(), 0, 2);
    EXPECT_EQ(scalar(cell(cells.get(), 1)), 1);
}

TEST_F(ValueJsonTest, ManyDifferentLeavesAreKept)
{
    const OwnedValue cells = makeCells({3, 20'000});
    for (std::size_t i = 0; i < 20'000; ++i) {
        setCell(cells.get(), 3 * i, makeDouble(static_cast<double>(i % 9973) / 4));
        setCell(cells.get(), 3 * i + 1, makeText("signal " + std::to_string(i % 9973)));
        setCell(cells.get(), 3 * i + 2, makeLogical(i % 3 == 0));
    }
    kept(cells);
}

// ---- what is refused when written -----------------------------------------------------------------------

TEST_F(ValueJsonTest, AnObjectOfTheClassSystemIsRefusedWithItsPlace)
{
    OwnedValue inner = makeStruct({1, 2}, {"a", "b"});
    setField(inner.get(), 1, "b", makeObjects("Some.Class", {0, 1}, {}));
    const OwnedValue outer = makeCells({1, 4});
    setCell(outer.get(), 3, std::move(inner));
    EXPECT_EQ(fileRefusal("ObjectInValue", [&] { valueToJson(outer.get()); }),
              "/values/3/values/1/1: An object of class \"Some.Class\" cannot be kept in a file.");
}

TEST_F(ValueJsonTest, NothingIsWrittenThatTheLimitsWouldKeepFromBeingRead)
{
    const OwnedValue cells = makeCells({1, 2});
    fileRefusal("JsonTooDeep", [&] { valueToJson(cells.get(), {.depth = 1}); });
    fileRefusal("JsonTooLarge", [&] { valueToJson(cells.get(), {.bytes = 20}); });
    fileRefusal("JsonTooManyItems", [&] { valueToJson(cells.get(), {.items = 7}); });
    const JsonLimits enough{.bytes = 51, .depth = 2, .items = 8};
    EXPECT_EQ(difference(valueFromJson(valueToJson(cells.get(), enough), enough).get(), cells.get()), "");
}

// ---- what is refused when read --------------------------------------------------------------------------

TEST_F(ValueJsonTest, TextThatIsNotJsonIsRefusedWithItsPlace)
{
    EXPECT_EQ(refusal("JsonNotWellFormed", R"({"class":"cell","size":[1,2],"values":[1.0,NaN]})"),
              "/values/1: Not JSON at byte 44: invalid literal.");
}

TEST_F(ValueJsonTest, AnIntegerIsNoDouble)
{
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":"cell","values":[1]})"),
              "/values/0: expected a value (a double has a fraction or an exponent), found the number 1.");
    refusal("JsonUnexpected", "-1");
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":"double","data":[1]})"),
              "/data/0: expected a number of the class, with a fraction or an exponent, found the number 1.");
}

TEST_F(ValueJsonTest, AnArrayIsNoValue)
{
    refusal("JsonUnexpected", "[]");
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":"struct","fields":["a"],"values":[[[]]]})"),
              "/values/0/0: expected a value (a double has a fraction or an exponent), found an array.");
}

TEST_F(ValueJsonTest, AnObjectHasToNameAClass)
{
    EXPECT_EQ(refusal("JsonMemberMissing", "{}"), "/: The member \"class\" is missing.");
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":"table","data":[]})"),
              "/class: expected the name of a class, found text.");
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":7})"), "/class: expected text, found the number 7.");
}

TEST_F(ValueJsonTest, AMemberThatTheClassHasNotIsRefused)
{
    EXPECT_EQ(refusal("JsonUnknownMember", R"({"class":"double","data":[1.0],"unit":"m"})"),
              "/unit: The member is unknown.");
    refusal("JsonUnknownMember", R"({"class":"logical","data":[true],"imaginary":[true]})");
    refusal("JsonUnknownMember", R"({"class":"struct","name":"a","fields":[],"values":[]})");
    refusal("JsonUnknownMember", R"({"class":"int8","data":[1],"values":[]})");
    refusal("JsonUnknownMember", R"({"class":"char","text":"a","data":[]})");
    refusal("JsonUnknownMember", R"({"class":"cell","values":[null],"fields":[]})");
}

TEST_F(ValueJsonTest, AMemberThatTheClassNeedsIsMissed)
{
    refusal("JsonMemberMissing", R"({"class":"double"})");
    refusal("JsonMemberMissing", R"({"class":"char"})");
    refusal("JsonMemberMissing", R"({"class":"cell"})");
    refusal("JsonMemberMissing", R"({"class":"struct","fields":[]})");
    refusal("JsonMemberMissing", R"({"class":"struct","values":[]})");
    refusal("JsonMemberMissing", R"({"class":"object","fields":[],"values":[]})");
}

TEST_F(ValueJsonTest, AMemberOfTheWrongKindIsRefused)
{
    refusal("JsonUnexpected", R"({"class":"double","data":{}})");
    refusal("JsonUnexpected", R"({"class":"double","data":[1.0],"imaginary":null})");
    refusal("JsonUnexpected", R"({"class":"char","text":["a"]})");
    refusal("JsonUnexpected", R"({"class":"cell","values":null})");
    refusal("JsonUnexpected", R"({"class":"cell","values":{}})");
    refusal("JsonUnexpected", R"({"class":"struct","fields":"a","values":[]})");
    refusal("JsonUnexpected", R"({"class":"struct","fields":[1],"values":[[]]})");
    refusal("JsonUnexpected", R"({"class":"object","name":null,"fields":[],"values":[]})");
}

TEST_F(ValueJsonTest, SizesAreTwoOrMoreIntegers)
{
    refusal("JsonUnexpected", R"({"class":"double","size":[],"data":[1.0]})");
    refusal("JsonUnexpected", R"({"class":"double","size":[1],"data":[1.0]})");
    refusal("JsonUnexpected", R"({"class":"double","size":7,"data":[1.0]})");
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":"double","size":[1,-1],"data":[]})"),
              "/size/1: expected an integer that is not negative, found the number -1.");
    refusal("JsonUnexpected", R"({"class":"double","size":[1,1.0],"data":[1.0]})");
    refusal("JsonUnexpected", R"({"class":"double","size":[1,18446744073709551616],"data":[]})");
}

TEST_F(ValueJsonTest, SizesThatOverflowAreRefused)
{
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":"double","size":[4294967296,4294967296],"data":[]})"),
              "/size: expected a size that memory can hold, found an array.");
}

TEST_F(ValueJsonTest, NoSizeIsBelievedWithoutItsElements)
{
    EXPECT_EQ(refusal("JsonWrongCount", R"({"class":"cell","size":[100000,100000],"values":[]})"),
              "/values: expected 10000000000 elements, found 0.");
    refusal("JsonWrongCount", R"({"class":"double","size":[100000,100000],"data":[1.0]})");
    refusal("JsonWrongCount", R"({"class":"logical","size":[1,2],"data":[true]})");
    refusal("JsonWrongCount", R"({"class":"char","size":[100000,100000],"text":"a"})");
    EXPECT_EQ(refusal("JsonWrongCount",
                      R"({"class":"struct","size":[100000,100000],"fields":["a"],"values":[[]]})"),
              "/values/0: expected 10000000000 elements, found 0.");
}

TEST_F(ValueJsonTest, MoreElementsThanTheSizeAreRefused)
{
    refusal("JsonWrongCount", R"({"class":"double","size":[0,3],"data":[1.0]})");
    refusal("JsonWrongCount", R"({"class":"cell","values":[null,null]})");
    refusal("JsonWrongCount", R"({"class":"char","text":"ab"})");
}

TEST_F(ValueJsonTest, BothPartsOfAComplexValueHaveAllElements)
{
    EXPECT_EQ(
        refusal("JsonWrongCount", R"({"class":"double","size":[1,2],"data":[1.0,2.0],"imaginary":[1.0]})"),
        "/imaginary: expected 2 elements, found 1.");
}

TEST_F(ValueJsonTest, EveryFieldHasValuesForEveryElement)
{
    EXPECT_EQ(refusal("JsonWrongCount", R"({"class":"struct","fields":["a","b"],"values":[[1.0]]})"),
              "/values: expected 2 elements, found 1.");
    EXPECT_EQ(refusal("JsonWrongCount", R"({"class":"struct","fields":["a","b"],"values":[[1.0],[]]})"),
              "/values/1: expected 1 elements, found 0.");
}

TEST_F(ValueJsonTest, AStructHasNoValuesOutsideItsFields)
{
    refusal("JsonUnexpected", R"({"class":"struct","fields":["a"],"values":[1.0]})");
    refusal("JsonWrongCount", R"({"class":"struct","fields":["a"],"values":[[1.0],2.0]})");
}

TEST_F(ValueJsonTest, CellsHaveNoFields)
{
    refusal("JsonUnexpected", R"({"class":"cell","values":[[1.0]]})");
    refusal("JsonWrongCount", R"({"class":"cell","values":[1.0,[]]})");
}

TEST_F(ValueJsonTest, AFieldNamedTwiceIsRefusedWithItsPlace)
{
    EXPECT_EQ(
        refusal("JsonUnexpected", R"({"class":"struct","size":[0,0],"fields":["a","a"],"values":[[],[]]})"),
        "/fields/1: expected a name that no field before it has, found text.");
}

TEST_F(ValueJsonTest, ManyFieldsTakeNoQuadraticTime)
{
    std::string names = "\"x\"";
    std::string values = "[1.0]";
    for (int i = 0; i < 100'000; ++i) {
        names += ",\"" + std::to_string(i) + '"';
        values += ",[1.0]";
    }
    const OwnedValue value =
        valueFromJson(R"({"class":"struct","fields":[)" + names + R"(],"values":[)" + values + "]}");
    EXPECT_EQ(fieldNames(value.get()).size(), 100'001U);
}

TEST_F(ValueJsonTest, ManyValuesTakeNoLongerFarInside)
{
    std::string text = R"({"class":"cell","size":[1,50000],"values":[{"class":"int8","data":[1]})";
    for (int i = 1; i < 50'000; ++i) {
        text += R"(,{"class":"int8","data":[1]})";
    }
    text += "]}";
    for (int depth = 0; depth < 990; ++depth) {
        text.insert(0, R"({"class":"cell","values":[)").append("]}");
    }
    EXPECT_TRUE(isCell(valueFromJson(text).get()));
}

TEST_F(ValueJsonTest, IntegersPastTheRangeOfTheirClassAreRefused)
{
    EXPECT_EQ(refusal("JsonUnexpected", R"({"class":"int8","size":[1,2],"data":[127,128]})"),
              "/data/1: expected an integer of the class, found the number 128.");
    refusal("JsonUnexpected", R"({"class":"int8","data":[-129]})");
    refusal("JsonUnexpected", R"({"class":"uint8","data":[-1]})");
    refusal("JsonUnexpected", R"({"class":"uint16","data":[65536]})");
    refusal("JsonUnexpected", R"({"class":"int64","data":[9223372036854775808]})");
    refusal("JsonUnexpected", R"({"class":"uint64","data":[18446744073709551616]})");
    refusal("JsonUnexpected", R"({"class":"uint64","data":[-1]})");
}

TEST_F(ValueJsonTest, NumbersOfAnotherKindAreRefused)
{
    refusal("JsonUnexpected", R"({"class":"int8","data":[1.0]})");
    refusal("JsonUnexpected", R"({"class":"int8","data":["NaN"]})");
    refusal("JsonUnexpected", R"({"class":"int8","data":[true]})");
    refusal("JsonUnexpected", R"({"class":"logical","data":[1]})");
    refusal("JsonUnexpected", R"({"class":"double","data":[null]})");
    refusal("JsonUnexpected", R"({"class":"double","data":[[1.0]]})");
}

TEST_F(ValueJsonTest, ADoubleThatNoSingleEqualsIsRefused)
{
    refusal("JsonUnexpected", R"({"class":"single","data":[0.1]})");
    refusal("JsonUnexpected", R"({"class":"single","data":[1e39]})");
    refusal("JsonUnexpected", R"({"class":"single","data":[1e-300]})");
}

TEST_F(ValueJsonTest, OnlyTheNamesOfWhatIsNotFiniteAreTaken)
{
    for (const char* text :
         {"nan", "NaN ", "inf", "+Inf", "Infinity", "", "0x", "1.0", "0x7ff8000000000000",
          "0x7FF8000000000001", "0x7ff800000000001", "0x07ff8000000000001", "0x3ff0000000000000",
          "0x7ff0000000000000", "0x7ff800000000000g", "0x7fc00001"}) {
        refusal("JsonUnexpected", std::string(R"({"class":"double","data":[")") + text + R"("]})");
    }
}

TEST_F(ValueJsonTest, TheMembersOfAnObjectMayStandInAnyOrder)
{
    const OwnedValue value =
        valueFromJson(R"({"values":[[1.0,2.0]],"fields":["a"],"size":[1,2],"class":"struct"})");
    EXPECT_EQ(valueToJson(value.get()),
              R"({"class":"struct","size":[1,2],"fields":["a"],"values":[[1.0,2.0]]})");
}

TEST_F(ValueJsonTest, WhiteSpaceSaysNothing)
{
    EXPECT_EQ(difference(valueFromJson(" { \"class\" : \"int8\" ,\n\"data\":[ 1 ] } ").get(),
                         makeNumber(1, nvClassID::Int8).get()),
              "");
}

TEST_F(ValueJsonTest, AValueDeeperThanTheHostHoldsIsRefused)
{
    std::string text = "1.0";
    for (int depth = 0; depth < 1001; ++depth) {
        text = R"({"class":"cell","values":[)" + text + "]}";
    }
    EXPECT_THROW(valueFromJson(text), zmsvException);
}

TEST_F(ValueJsonTest, DeepJunkInAMemberIsRefused)
{
    refusal("JsonUnexpected",
            R"({"class":"double","data":)" + std::string(3000, '[') + std::string(3000, ']') + "}");
}

// ---- other places ---------------------------------------------------------------------------------------

/// Under a German locale, in C and C++, where numbers are written 12,5 and 1.234.567.
class ValueJsonInGermanLocale : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        m_former = std::locale();
        try {
            std::locale::global(std::locale("de_DE.UTF-8"));
        } catch (const std::runtime_error&) {
            GTEST_SKIP() << "the locale de_DE.UTF-8 is not installed (Debian: locales-all)";
        }
        ASSERT_EQ(std::to_string(12.5), "12,500000") << "the locale has no effect: the test would be void";
    }
    void TearDown() override
    {
        std::locale::global(m_former);
        HostTest::TearDown();
    }

private:
    std::locale m_former;
};

TEST_F(ValueJsonInGermanLocale, NumbersAreWrittenAndReadAsEverywhere)
{
    EXPECT_EQ(kept(numbers<double>(nvClassID::Double, {1, 2}, {12.5, 1234567.25})),
              R"({"class":"double","size":[1,2],"data":[12.5,1234567.25]})");
    EXPECT_EQ(kept(makeNumber(1234567, nvClassID::Int32)), R"({"class":"int32","data":[1234567]})");
}

}  // namespace
