#include "reference_host/ssp/JsonReader.hpp"

#include "reference_host/ssp/JsonPlace.hpp"
#include "tests/reference_host/ssp/FileRefusal.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace reference_host;

/// Notes what it hears, a line each.
class Notes : public JsonHandler {
public:
    void scalar(const JsonPlace& place, JsonScalar scalar) override
    {
        lines.push_back(place.text() + " scalar " + std::to_string(scalar.index()));
        scalars.push_back(std::move(scalar));
    }
    void beginArray(const JsonPlace& place) override { lines.push_back(place.text() + " array"); }
    void beginObject(const JsonPlace& place) override { lines.push_back(place.text() + " object"); }
    void member(const JsonPlace& place, std::string name) override
    {
        lines.push_back(place.text() + " member " + name);
    }
    void end(const JsonPlace& place) override { lines.push_back(place.text() + " end"); }

    std::vector<std::string> lines;
    std::vector<JsonScalar> scalars;
};

Notes& notesOf(std::string_view text, Notes&& notes = {}, const JsonLimits& limits = {})
{
    readJson(text, limits, notes);
    return notes;
}

JsonScalar scalarOf(std::string_view text)
{
    Notes notes;
    readJson(text, {}, notes);
    return notes.scalars.at(0);
}

std::string refusal(const std::string& key, std::string_view text, const JsonLimits& limits = {})
{
    Notes notes;
    return fileRefusal(key, [&] { readJson(text, limits, notes); });
}

TEST(JsonReaderTest, TellsADocumentInItsOrderWithThePlaces)
{
    const std::vector<std::string> expected{"/ object",    "/a member a", "/a array", "/a/0 scalar 1",
                                            "/a/1 object", "/a/1 end",    "/a end",   "/b member b",
                                            "/b scalar 5", "/ end"};
    EXPECT_EQ(notesOf(R"({"a":[true,{}],"b":"x"})").lines, expected);
}

TEST(JsonReaderTest, AnElementAfterAnArrayHasItsOwnIndex)
{
    EXPECT_EQ(notesOf("[[1,2],3]").lines.at(5), "/1 scalar 3");
}

TEST(JsonReaderTest, AnIntegerWithoutASignIsUnsigned)
{
    EXPECT_EQ(scalarOf("18446744073709551615"), JsonScalar(std::uint64_t{18446744073709551615U}));
}

TEST(JsonReaderTest, AnIntegerWithASignIsSigned)
{
    EXPECT_EQ(scalarOf("-9223372036854775808"), JsonScalar(std::numeric_limits<std::int64_t>::min()));
}

TEST(JsonReaderTest, ANumberWithAnExponentIsADouble)
{
    EXPECT_EQ(scalarOf("1e2"), JsonScalar(100.0));
}

TEST(JsonReaderTest, EscapesBecomeCharacters)
{
    EXPECT_EQ(scalarOf(R"("\u00e4\ud83d\ude00\u0000\n")"), JsonScalar(std::string("ä😀\0\n", 8)));
}

TEST(JsonReaderTest, AByteOrderMarkIsPassedOver)
{
    EXPECT_EQ(scalarOf("\xEF\xBB\xBF true"), JsonScalar(true));
}

TEST(JsonReaderTest, TextThatEndsEarlyIsRefusedWithPlaceAndByte)
{
    EXPECT_EQ(refusal("JsonNotWellFormed", R"({"a":[1,)"),
              "/a/0: Not JSON at byte 9: unexpected end of input; expected '[', '{', or a literal.");
}

TEST(JsonReaderTest, NoTextIsRefused)
{
    refusal("JsonNotWellFormed", "");
    refusal("JsonNotWellFormed", " \n");
}

TEST(JsonReaderTest, TextAfterTheEndIsRefused)
{
    refusal("JsonNotWellFormed", "1 2");
    refusal("JsonNotWellFormed", "{}}");
}

TEST(JsonReaderTest, AZeroByteIsNoEnd)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(refusal("JsonNotWellFormed", "1\0"sv), "/: Not JSON at byte 2: a zero byte.");
    refusal("JsonNotWellFormed", "[1]\0garbage"sv);
}

TEST(JsonReaderTest, LiteralsThatAreNoNumbersAreRefused)
{
    for (const char* text : {"NaN", "Infinity", "-Infinity", "nan", "0x10", "01", "+1", ".5", "1.", "1e"}) {
        refusal("JsonNotWellFormed", text);
    }
}

TEST(JsonReaderTest, CommentsAreRefused)
{
    refusal("JsonNotWellFormed", "/* a */ 1");
    refusal("JsonNotWellFormed", "1 // a");
}

TEST(JsonReaderTest, ACommaBeforeTheEndIsRefused)
{
    refusal("JsonNotWellFormed", "[1,]");
    refusal("JsonNotWellFormed", R"({"a":1,})");
}

TEST(JsonReaderTest, BytesThatAreNoUtf8AreRefused)
{
    for (const char* text :
         {"\"\xFF\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\"", "\"\xC3"}) {
        refusal("JsonNotWellFormed", text);
    }
}

TEST(JsonReaderTest, HalfAPairOfSurrogatesIsRefused)
{
    for (const char* text : {R"("\ud800")", R"("\udc00")", R"("\ud800\ud800")", R"("\ud800x")"}) {
        refusal("JsonNotWellFormed", text);
    }
}

TEST(JsonReaderTest, AControlCharacterInAStringIsRefused)
{
    refusal("JsonNotWellFormed", "\"a\nb\"");
}

TEST(JsonReaderTest, WhatIsSaidOfBadTextHoldsNoneOfIt)
{
    const std::string text = refusal("JsonNotWellFormed", "[\"" + std::string(1000, 'x') + "\xFF\"]");
    EXPECT_EQ(text, "/: Not JSON at byte 1003: invalid string: ill-formed UTF-8 byte.");
}

TEST(JsonReaderTest, ANumberPastTheRangeOfDoublesIsRefused)
{
    EXPECT_EQ(refusal("JsonNotWellFormed", "[1e999]"), "/: Not JSON at byte 6: the number is too large.");
}

TEST(JsonReaderTest, AMemberThatOccursTwiceIsRefusedWithItsPlace)
{
    EXPECT_EQ(refusal("JsonMemberTwice", R"({"b":[0,{"a":1,"c":{"a":2},"a":3}]})"),
              "/b/1/a: The member occurs twice.");
}

TEST(JsonReaderTest, AMemberWrittenInTwoWaysOccursTwice)
{
    refusal("JsonMemberTwice", R"({"a":1,"\u0061":2})");
}

TEST(JsonReaderTest, ManyMembersTakeNoQuadraticTime)
{
    std::string text = "{";
    for (int i = 0; i < 200'000; ++i) {
        text += '"' + std::to_string(i) + "\":0,";
    }
    EXPECT_EQ(notesOf(text + "\"x\":0}").scalars.size(), 200'001U);
}

TEST(JsonReaderTest, AsManyBytesAsTheLimitAreTaken)
{
    EXPECT_EQ(notesOf("[10]", {}, {.bytes = 4}).scalars.size(), 1U);
    EXPECT_EQ(refusal("JsonTooLarge", "[100]", {.bytes = 4}), "The text is larger than 4 bytes.");
}

TEST(JsonReaderTest, AsDeepAsTheLimitIsTaken)
{
    EXPECT_EQ(notesOf(R"([{"a":[]}])", {}, {.depth = 3}).lines.size(), 7U);
    EXPECT_EQ(refusal("JsonTooDeep", R"([{"a":[[]]}])", {.depth = 3}),
              "Arrays and objects are nested more than 3 deep.");
}

TEST(JsonReaderTest, AsManyItemsAsTheLimitAreTaken)
{
    EXPECT_EQ(notesOf("[1,[],{}]", {}, {.items = 4}).lines.size(), 7U);
    EXPECT_EQ(refusal("JsonTooManyItems", "[1,[],{},0]", {.items = 4}), "/3: More than 4 items.");
}

TEST(JsonReaderTest, EndlessNestingIsRefusedAtTheLimit)
{
    refusal("JsonTooDeep", std::string(10'000'000, '['));
}

TEST(JsonReaderTest, LongNamesAreCutShortInPlaces)
{
    const std::string text = refusal("JsonNotWellFormed", "{\"" + std::string(5000, 'n') + "\":x}");
    EXPECT_LT(text.size(), 400U);
}

/// The parser sees a locale only through C's.
class JsonNumbersInLocale : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        if (std::setlocale(LC_ALL, GetParam()) == nullptr) {
            GTEST_SKIP() << "the locale " << GetParam() << " is not installed (Debian: locales-all)";
        }
        ASSERT_STRNE(std::localeconv()->decimal_point, ".") << "the locale has no effect";
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

TEST_P(JsonNumbersInLocale, AreReadAsEverywhere)
{
    EXPECT_EQ(scalarOf("1234.5"), JsonScalar(1234.5));
}

TEST_P(JsonNumbersInLocale, LeaveTheLocaleAsItWas)
{
    const std::string before = std::localeconv()->decimal_point;
    scalarOf("1.5");
    EXPECT_EQ(std::localeconv()->decimal_point, before);
}

INSTANTIATE_TEST_SUITE_P(German, JsonNumbersInLocale, ::testing::Values("de_DE.UTF-8"));
// Its decimal point is a character of two bytes.
INSTANTIATE_TEST_SUITE_P(Pashto, JsonNumbersInLocale, ::testing::Values("ps_AF"));

}  // namespace
