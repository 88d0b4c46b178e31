#include "reference_host/ssp/JsonDocument.hpp"

#include "reference_host/ssp/JsonPlace.hpp"
#include "tests/reference_host/ssp/FileRefusal.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace reference_host;

TEST(JsonDocumentTest, ADocumentIsWholeAndInItsOrder)
{
    const std::string text = R"({"b":[1,-2,3.5,null,true,"x"],"a":{"c":[],"d":{}}})";
    EXPECT_EQ(parseJson(text).dump(), text);
}

TEST(JsonDocumentTest, ADocumentMayBeAScalar)
{
    EXPECT_EQ(parseJson("7"), Json(7U));
}

TEST(JsonDocumentTest, RefusalsAreThoseOfTheReader)
{
    fileRefusal("JsonMemberTwice", [] { parseJson(R"({"a":1,"a":1})"); });
    fileRefusal("JsonTooDeep", [] { parseJson("[[]]", {.depth = 1}); });
}

TEST(JsonDocumentTest, ADeepDocumentTakesNoStack)
{
    const std::size_t depth = 1'000'000;
    const std::string text = std::string(depth, '[') + std::string(depth, ']');
    EXPECT_EQ(parseJson(text, {.depth = depth}).size(), 1U);
}

TEST(JsonDocumentTest, ManyMembersTakeNoQuadraticTime)
{
    std::string text = "{\"x\":0";
    for (int i = 0; i < 200'000; ++i) {
        text += ",\"" + std::to_string(i) + "\":0";
    }
    EXPECT_EQ(parseJson(text + '}').size(), 200'001U);
}

TEST(JsonDocumentTest, WellFormedTextIsAString)
{
    EXPECT_EQ(textToJson(u"ä😀"), Json("ä😀"));
}

TEST(JsonDocumentTest, OtherTextIsItsUnits)
{
    EXPECT_EQ(textToJson(u"a\xD800").dump(), R"({"units":[97,55296]})");
}

TEST(JsonDocumentTest, TextComesBackAsItWas)
{
    for (const std::u16string& text : {std::u16string(u""), std::u16string(u"a\0b", 3),
                                       std::u16string(u"\xDC00\xD800"), std::u16string(u"ä😀")}) {
        EXPECT_EQ(JsonView(textToJson(text)).text(), text);
    }
}

class JsonViewTest : public ::testing::Test {
protected:
    const Json m_document = parseJson(
        R"({"name":"ä","number":7,"ratio":0.5,"negative":-1,"flag":true,"list":[1,"a"],"none":null,)"
        R"("units":{"units":[55296]},"bad":{"units":[65536]},"raw":{"bytes":[255,65]},"odd":{"units":[],"x":0}})");
    const JsonView m_view{m_document};

    std::string refusal(const char* key, const std::function<void(const JsonView&)>& body)
    {
        return fileRefusal(key, [&] { body(m_view); });
    }
};

TEST_F(JsonViewTest, MembersAreRead)
{
    EXPECT_EQ(m_view.member("name").string(), "ä");
    EXPECT_EQ(m_view.member("name").text(), u"ä");
    EXPECT_EQ(m_view.member("number").unsignedInteger(), 7U);
    EXPECT_EQ(m_view.member("negative").number(), -1.0);
    EXPECT_EQ(m_view.member("ratio").number(), 0.5);
    EXPECT_TRUE(m_view.member("flag").boolean());
}

TEST_F(JsonViewTest, UnitsAndBytesAreText)
{
    EXPECT_EQ(m_view.member("units").text(), std::u16string(1, u'\xD800'));
    EXPECT_EQ(m_view.member("raw").byteText(), "\xFF\x41");
}

TEST_F(JsonViewTest, ElementsKnowTheirPlaces)
{
    EXPECT_EQ(m_view.member("list").count(), 2U);
    EXPECT_EQ(m_view.member("list").element(1).place(), "/list/1");
}

TEST_F(JsonViewTest, AnElementPastTheEndIsRefused)
{
    EXPECT_EQ(refusal("JsonWrongCount", [](const JsonView& view) { view.member("list").element(2); }),
              "/list: Elements: 2 instead of 3.");
}

TEST_F(JsonViewTest, AMemberThatMustBeThereIsMissed)
{
    EXPECT_EQ(refusal("JsonMemberMissing", [](const JsonView& view) { view.member("nothing"); }),
              "/: The member \"nothing\" is missing.");
}

TEST_F(JsonViewTest, AMemberThatMayBeThereIsFoundOrNot)
{
    EXPECT_TRUE(m_view.find("none"));
    EXPECT_FALSE(m_view.find("nothing"));
}

TEST_F(JsonViewTest, MembersOfAScalarAreRefused)
{
    EXPECT_EQ(refusal("JsonUnexpected", [](const JsonView& view) { view.member("number").find("a"); }),
              "/number: Expected: an object.");
}

TEST_F(JsonViewTest, UnknownMembersAreRefused)
{
    EXPECT_EQ(refusal("JsonUnknownMember", [](const JsonView& view) { view.requireOnly({"name"}); }),
              "/number: The member is unknown.");
    EXPECT_NO_THROW(m_view.member("units").requireOnly({"a", "units"}));
}

TEST_F(JsonViewTest, OtherKindsAreRefusedWithTheirPlace)
{
    EXPECT_EQ(
        refusal("JsonUnexpected", [](const JsonView& view) { view.member("list").element(0).string(); }),
        "/list/0: Expected: text.");
    refusal("JsonUnexpected", [](const JsonView& view) { view.member("negative").unsignedInteger(); });
    refusal("JsonUnexpected", [](const JsonView& view) { view.member("ratio").unsignedInteger(); });
    refusal("JsonUnexpected", [](const JsonView& view) { view.member("flag").number(); });
    refusal("JsonUnexpected", [](const JsonView& view) { view.member("number").boolean(); });
    refusal("JsonUnexpected", [](const JsonView& view) { view.member("name").count(); });
    refusal("JsonUnexpected", [](const JsonView& view) { view.member("none").text(); });
    refusal("JsonUnexpected", [](const JsonView& view) { view.member("list").byteText(); });
}

TEST_F(JsonViewTest, UnitsPastTheirRangeAreRefused)
{
    EXPECT_EQ(refusal("JsonUnexpected", [](const JsonView& view) { view.member("bad").text(); }),
              "/bad/units/0: Expected: a UTF-16 code unit.");
}

TEST_F(JsonViewTest, UnitsWithOtherMembersAreRefused)
{
    refusal("JsonUnknownMember", [](const JsonView& view) { view.member("odd").text(); });
}

TEST_F(JsonViewTest, AViewInsideSomethingLargerSpeaksOfItsPlaceThere)
{
    JsonPlace place({});
    place.item();
    place.enterArray();
    place.item();
    const JsonView inner(m_document, place);
    EXPECT_EQ(inner.place(), "/0");
    EXPECT_EQ(inner.member("list").element(1).place(), "/0/list/1");
}

}  // namespace
