#include "reference_host/ssp/JsonWriter.hpp"

#include "tests/reference_host/ssp/FileRefusal.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using namespace reference_host;

std::string written(void (*write)(JsonWriter&), const JsonLimits& limits = {})
{
    JsonWriter writer(limits);
    write(writer);
    return writer.take();
}

void writeSmallDocument(JsonWriter& json)
{
    json.beginObject();
    json.member("a");
    json.beginArray();
    json.null();
    json.boolean(true);
    json.beginObject();
    json.endObject();
    json.endArray();
    json.member("b");
    json.string("[");
    json.endObject();
}

TEST(JsonWriterTest, CommasStandBetweenValuesOnly)
{
    EXPECT_EQ(written(writeSmallDocument), R"({"a":[null,true,{}],"b":"["})");
}

TEST(JsonWriterTest, AStringThatEndsLikeAnArrayDoesNotCostAComma)
{
    EXPECT_EQ(written([](JsonWriter& json) {
                  json.beginArray();
                  json.string("[");
                  json.string(":");
                  json.endArray();
              }),
              R"(["[",":"])");
}

TEST(JsonWriterTest, IntegersAreExact)
{
    EXPECT_EQ(written([](JsonWriter& json) { json.integer(std::numeric_limits<std::int64_t>::min()); }),
              "-9223372036854775808");
    EXPECT_EQ(
        written([](JsonWriter& json) { json.unsignedInteger(std::numeric_limits<std::uint64_t>::max()); }),
        "18446744073709551615");
}

TEST(JsonWriterTest, RealNumbersShowThatTheyAre)
{
    EXPECT_EQ(written([](JsonWriter& json) { json.real(1); }), "1.0");
    EXPECT_EQ(written([](JsonWriter& json) { json.real(-0.0); }), "-0.0");
    EXPECT_EQ(written([](JsonWriter& json) { json.real(0.1); }), "0.1");
    EXPECT_EQ(written([](JsonWriter& json) { json.real(1e300); }), "1e+300");
}

TEST(JsonWriterTest, WhatAStringCannotHoldIsEscaped)
{
    EXPECT_EQ(written([](JsonWriter& json) {
                  json.string({"a\"\\\n\x01\x1F\0\x7Fü", 10});
              }),
              "\"a\\\"\\\\\\n\\u0001\\u001f\\u0000\x7Fü\"");
}

TEST(JsonWriterTest, TextWithHalfAPairOfSurrogatesIsItsUnits)
{
    EXPECT_EQ(written([](JsonWriter& json) { json.text(u"\xD83D\xDE00"); }), "\"😀\"");
    EXPECT_EQ(written([](JsonWriter& json) { json.text(u"\xDE00\xD83D"); }), R"({"units":[56832,55357]})");
}

TEST(JsonWriterTest, TextThatIsNoUtf8IsItsBytes)
{
    EXPECT_EQ(written([](JsonWriter& json) { json.byteText("ü"); }), "\"ü\"");
    EXPECT_EQ(written([](JsonWriter& json) { json.byteText("a\xFF"); }), R"({"bytes":[97,255]})");
}

TEST(JsonWriterTest, WellFormedTextHasSurrogatesInPairsOnly)
{
    EXPECT_TRUE(isWellFormed(u""));
    EXPECT_TRUE(isWellFormed(u"a\xD83D\xDE00z"));
    EXPECT_FALSE(isWellFormed(u"\xD83D"));
    EXPECT_FALSE(isWellFormed(u"\xDE00"));
    EXPECT_FALSE(isWellFormed(u"\xD83D\xD83D\xDE00"));
    EXPECT_FALSE(isWellFormed(u"\xD83D\xDE00\xDE00"));
}

TEST(JsonWriterTest, ThePlaceIsThatOfTheValueUnderWay)
{
    JsonWriter json;
    json.beginObject();
    json.member("values");
    json.beginArray();
    json.null();
    json.beginArray();
    json.null();
    EXPECT_EQ(json.place().text(), "/values/1/0");
}

TEST(JsonWriterTest, WhatTheReaderWouldRefuseIsRefused)
{
    const JsonLimits all{.bytes = 28, .depth = 2, .items = 6};
    EXPECT_EQ(written(writeSmallDocument, {.bytes = 28, .depth = 3, .items = 6}).size(), 28U);
    fileRefusal("JsonTooDeep", [&] { written(writeSmallDocument, all); });
    fileRefusal("JsonTooLarge", [&] { written(writeSmallDocument, {.bytes = 27}); });
    fileRefusal("JsonTooManyItems", [&] { written(writeSmallDocument, {.items = 5}); });
}

}  // namespace
