#include "reference_host/ssp/JsonDocument.hpp"

#include "tests/reference_host/ssp/FileRefusal.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace reference_host;

std::string refusal(const std::string& key, std::string_view text, const JsonLimits& limits = {})
{
    return fileRefusal(key, [&] { parseJson(text, limits); });
}

/// What is said when the document is read by `work`.
template <class Work>
std::string readingRefusal(const char* key, std::string_view text, const Work& work)
{
    const Json document = parseJson(text);
    return fileRefusal(key, [&] { readingJson(document, "/", [&] { work(document); }); });
}

TEST(JsonDocumentTest, MembersKeepTheirOrder)
{
    EXPECT_EQ(parseJson(R"( {"b": [1, -2, 2.0, "x", true, null], "a": {}} )").dump(),
              R"({"b":[1,-2,2.0,"x",true,null],"a":{}})");
}

TEST(JsonDocumentTest, AnIntegerWithoutASignIsUnsigned)
{
    EXPECT_EQ(parseJson("18446744073709551615").get<std::uint64_t>(), 18446744073709551615U);
}

TEST(JsonDocumentTest, EscapesBecomeCharacters)
{
    EXPECT_EQ(parseJson(R"("\u00e4\ud83d\ude00\u0000\n")").get<std::string>(), std::string("ä😀\0\n", 8));
}

TEST(JsonDocumentTest, AByteOrderMarkIsPassedOver)
{
    EXPECT_TRUE(parseJson("\xEF\xBB\xBF true").get<bool>());
}

TEST(JsonDocumentTest, ElementsOfAnArrayAreHandedOverAndNotKept)
{
    std::vector<std::string> taken;
    const Json rest = parseJson(R"([1,[2,3],{"a":[4]},[]])", {.items = 3},
                                [&taken](std::size_t index, const Json& element) {
                                    taken.push_back(std::to_string(index) + element.dump());
                                });
    EXPECT_EQ(taken, (std::vector<std::string>{"01", "1[2,3]", R"(2{"a":[4]})", "3[]"}));
    EXPECT_EQ(rest, Json::array());
}

TEST(JsonDocumentTest, OnlyAnArrayIsHandedOver)
{
    const Json kept = parseJson(R"({"a":[1]})", {}, [](std::size_t, const Json&) { FAIL(); });
    EXPECT_EQ(kept.dump(), R"({"a":[1]})");
}

TEST(JsonDocumentTest, ErrorsInHandedOverElementsHaveTheirPlace)
{
    const auto take = [](std::size_t, const Json&) {};
    EXPECT_EQ(
        fileRefusal("JsonMemberTwice", [&] { parseJson(R"([{},{},{"a":[0,{"b":1,"b":2}]}])", {}, take); }),
        "/2/a/1/b: The member occurs twice.");
}

TEST(JsonDocumentTest, TextThatEndsEarlyIsRefusedWithPlaceAndByte)
{
    EXPECT_EQ(refusal("JsonNotWellFormed", R"({"a":[1,)"),
              "/a/1: Not JSON at byte 9: unexpected end of input; expected '[', '{', or a literal.");
}

TEST(JsonDocumentTest, TextThatIsNotStrictlyJsonIsRefused)
{
    for (const char* text : {"",
                             " \n",
                             "1 2",
                             "{}}",
                             "NaN",
                             "Infinity",
                             "-Infinity",
                             "nan",
                             "0x10",
                             "01",
                             "+1",
                             ".5",
                             "1.",
                             "1e",
                             "/* a */ 1",
                             "1 // a",
                             "[1,]",
                             R"({"a":1,})",
                             "\"\xFF\"",
                             "\"\xC0\xAF\"",
                             "\"\xED\xA0\x80\"",
                             "\"\xF4\x90\x80\x80\"",
                             "\"\xC3",
                             R"("\ud800")",
                             R"("\udc00")",
                             R"("\ud800\ud800")",
                             R"("\ud800x")",
                             "\"a\nb\""}) {
        refusal("JsonNotWellFormed", text);
    }
}

TEST(JsonDocumentTest, AZeroByteIsNoEnd)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(refusal("JsonNotWellFormed", "1\0"sv), "/: Not JSON at byte 2: a zero byte.");
    refusal("JsonNotWellFormed", "[1]\0garbage"sv);
}

TEST(JsonDocumentTest, WhatIsSaidOfBadTextHoldsNoneOfIt)
{
    const std::string text = refusal("JsonNotWellFormed", "[\"" + std::string(1000, 'x') + "\xFF\"]");
    EXPECT_EQ(text, "/0: Not JSON at byte 1003: invalid string: ill-formed UTF-8 byte.");
}

TEST(JsonDocumentTest, ANumberPastTheRangeOfDoublesIsRefused)
{
    EXPECT_EQ(refusal("JsonNotWellFormed", "[1e999]"), "/0: Not JSON at byte 6: the number is too large.");
}

TEST(JsonDocumentTest, AMemberThatOccursTwiceIsRefusedWithItsPlace)
{
    EXPECT_EQ(refusal("JsonMemberTwice", R"({"b":[0,{"a":1,"c":{"a":2},"a":3}]})"),
              "/b/1/a: The member occurs twice.");
    refusal("JsonMemberTwice", R"({"a":1,"\u0061":2})");
}

TEST(JsonDocumentTest, AsManyBytesAsTheLimitAreTaken)
{
    EXPECT_EQ(parseJson("[10]", {.bytes = 4}).size(), 1U);
    EXPECT_EQ(refusal("JsonTooLarge", "[100]", {.bytes = 4}), "The text is larger than 4 bytes.");
}

TEST(JsonDocumentTest, AsDeepAsTheLimitIsTaken)
{
    EXPECT_EQ(parseJson(R"([{"a":[]}])", {.depth = 3}).size(), 1U);
    EXPECT_EQ(refusal("JsonTooDeep", R"([{"a":[[]]}])", {.depth = 3}),
              "Arrays and objects are nested more than 3 deep.");
    refusal("JsonTooDeep", std::string(10'000'000, '['));
}

TEST(JsonDocumentTest, AsManyItemsAsTheLimitAreTaken)
{
    EXPECT_EQ(parseJson("[1,[],{}]", {.items = 4}).size(), 3U);
    EXPECT_EQ(refusal("JsonTooManyItems", "[1,[],{},0]", {.items = 4}), "/3: More than 4 items.");
}

TEST(JsonDocumentTest, AsManyMembersAsTheLimitAreTaken)
{
    EXPECT_EQ(parseJson(R"({"a":1,"b":2})", {.members = 2}).size(), 2U);
    EXPECT_EQ(refusal("JsonTooManyItems", R"({"a":1,"b":2,"c":3})", {.members = 2}),
              "/c: More than 2 items.");
}

TEST(JsonDocumentTest, LongNamesAreCutShortInPlaces)
{
    const std::string text = refusal("JsonNotWellFormed", "{\"" + std::string(5000, 'n') + "\":x}");
    EXPECT_LT(text.size(), 400U);
}

TEST(JsonDocumentTest, PlacesAreJsonPointers)
{
    EXPECT_EQ(readingRefusal("JsonUnexpected", R"({"a/b":{"~":[0,{"":7}]}})",
                             [](const Json& document) { stringIn(document["a/b"]["~"][1][""]); }),
              "/a~1b/~0/1/: expected text, found the number 7.");
}

TEST(JsonDocumentTest, ItemsOfAnotherKindAreRefusedWithWhatIsThere)
{
    const auto said = [](const char* item) {
        return readingRefusal("JsonUnexpected", item, [](const Json& found) { stringIn(found); });
    };
    EXPECT_EQ(said("null"), "/: expected text, found nothing.");
    EXPECT_EQ(said("true"), "/: expected text, found true or false.");
    EXPECT_EQ(said("-2.5"), "/: expected text, found the number -2.5.");
    EXPECT_EQ(said("[]"), "/: expected text, found an array.");
    EXPECT_EQ(said("{}"), "/: expected text, found an object.");
}

TEST(JsonDocumentTest, MembersThatAreMissingOrUnknownAreNamed)
{
    EXPECT_EQ(
        readingRefusal("JsonMemberMissing", R"([{"a":1}])", [](const Json& all) { member(all[0], "b"); }),
        "/0: The member \"b\" is missing.");
    EXPECT_EQ(readingRefusal("JsonUnknownMember", R"([{"a":1}])",
                             [](const Json& all) { requireOnly(all[0], {"b"}); }),
              "/0/a: The member is unknown.");
}

TEST(JsonDocumentTest, TextThatIsNoStringIsKeptByItsUnits)
{
    EXPECT_EQ(textToJson(u"a\xD800").dump(), R"({"units":[97,55296]})");
    EXPECT_EQ(textIn(textToJson(u"a\xD800")), u"a\xD800");
    EXPECT_EQ(textToJson(u"\uFFFD").dump(), "\"\uFFFD\"");
    EXPECT_EQ(byteTextIn(byteTextToJson("\xFF")), "\xFF");
    EXPECT_EQ(
        readingRefusal("JsonUnexpected", R"({"units":[65536]})", [](const Json& text) { textIn(text); }),
        "/units/0: expected a UTF-16 code unit, found the number 65536.");
}

TEST(JsonDocumentTest, NothingIsWrittenThatTheLimitsWouldKeepFromBeingRead)
{
    const Json document = parseJson(R"({"a":[1,2]})");
    EXPECT_EQ(writeJson(document), R"({"a":[1,2]})");
    fileRefusal("JsonTooLarge", [&] { writeJson(document, JsonLimits{.bytes = 10}); });
    fileRefusal("JsonTooDeep", [&] { writeJson(document, JsonLimits{.depth = 1}); });
    fileRefusal("JsonTooManyItems", [&] { writeJson(document, JsonLimits{.items = 3}); });
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
    EXPECT_EQ(parseJson("1234.5").get<double>(), 1234.5);
}

TEST_P(JsonNumbersInLocale, AreWrittenAsEverywhere)
{
    EXPECT_EQ(writeJson(Json(1234.5)), "1234.5");
}

TEST_P(JsonNumbersInLocale, LeaveTheLocaleAsItWas)
{
    const std::string before = std::localeconv()->decimal_point;
    parseJson("1.5");
    EXPECT_EQ(std::localeconv()->decimal_point, before);
}

INSTANTIATE_TEST_SUITE_P(German, JsonNumbersInLocale, ::testing::Values("de_DE.UTF-8"));
// Its decimal point is a character of two bytes.
INSTANTIATE_TEST_SUITE_P(Pashto, JsonNumbersInLocale, ::testing::Values("ps_AF"));

}  // namespace
