#include "hmi_foundation/ModelPath.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

namespace zm_hmi_foundation {
namespace {

// ---- paths --------------------------------------------------------------------------------------

TEST(RemoveModelFromPath, TakesTheModelNameOff)
{
    EXPECT_EQ(RemoveModelFromPath(u"m/A/B", u"m"), u"A/B");
}

TEST(RemoveModelFromPath, LeavesThePrefixAlone)
{
    EXPECT_EQ(RemoveModelFromPath(u"m/", u"m"), u"m/");
}

TEST(RemoveModelFromPath, LeavesTheModelNameAlone)
{
    EXPECT_EQ(RemoveModelFromPath(u"m", u"m"), u"m");
}

TEST(RemoveModelFromPath, NeedsOneCharacterBehindThePrefix)
{
    EXPECT_EQ(RemoveModelFromPath(u"m/A", u"m"), u"A");
}

TEST(RemoveModelFromPath, MatchesTheWholePrefixWithItsSeparator)
{
    EXPECT_EQ(RemoveModelFromPath(u"mm/A", u"m"), u"mm/A");
    EXPECT_EQ(RemoveModelFromPath(u"mb/Block", u"m"), u"mb/Block");
}

TEST(RemoveModelFromPath, ComparesWithCase)
{
    EXPECT_EQ(RemoveModelFromPath(u"M/A", u"m"), u"M/A");
}

TEST(RemoveModelFromPath, TakesOneSlashOffWithoutAModelName)
{
    EXPECT_EQ(RemoveModelFromPath(u"/A", u""), u"A");
    EXPECT_EQ(RemoveModelFromPath(u"//A", u""), u"/A");
    EXPECT_EQ(RemoveModelFromPath(u"/", u""), u"/");
}

TEST(RemoveModelFromPath, TakesOnlyOnePrefixOff)
{
    EXPECT_EQ(RemoveModelFromPath(u"model/model/Block", u"model"), u"model/Block");
}

TEST(RemoveModelFromPath, LeavesAnEmptyPathEmpty)
{
    EXPECT_EQ(RemoveModelFromPath(u"", u"m"), u"");
    EXPECT_EQ(RemoveModelFromPath(u"", u""), u"");
}

TEST(RemoveModelFromPath, ComparesCodeUnitsWithoutNormalising)
{
    EXPECT_EQ(RemoveModelFromPath(u"e\u0301/A", u"\u00e9"), u"e\u0301/A");
    EXPECT_EQ(RemoveModelFromPath(u"\U0001F33F/A", u"\U0001F33F"), u"A");
}

TEST(AddModelToPath, LeavesAnEmptyPathEmpty)
{
    EXPECT_EQ(AddModelToPath(u"", u"m"), u"");
    EXPECT_EQ(AddModelToPath(u"", u""), u"");
}

TEST(AddModelToPath, LeavesThePathWithoutAModelName)
{
    EXPECT_EQ(AddModelToPath(u"A/B", u""), u"A/B");
}

TEST(AddModelToPath, PutsTheModelNameInFront)
{
    EXPECT_EQ(AddModelToPath(u"A/B", u"m"), u"m/A/B");
}

TEST(AddModelToPath, AddsTheModelNameTwice)
{
    EXPECT_EQ(AddModelToPath(u"m/A/B", u"m"), u"m/m/A/B");
}

// ---- ZIDs ---------------------------------------------------------------------------------------

TEST(RemoveModelFromZID, TakesTheModelNameOff)
{
    EXPECT_EQ(RemoveModelFromZID("m:12", u"m"), "12");
}

TEST(RemoveModelFromZID, MatchesTheWholePrefixWithItsSeparator)
{
    EXPECT_EQ(RemoveModelFromZID("m:12", u"mm"), "m:12");
    EXPECT_EQ(RemoveModelFromZID("mm:12", u"m"), "mm:12");
}

TEST(RemoveModelFromZID, LeavesThePrefixAlone)
{
    EXPECT_EQ(RemoveModelFromZID("m:", u"m"), "m:");
    EXPECT_EQ(RemoveModelFromZID("m", u"m"), "m");
}

TEST(RemoveModelFromZID, TakesOneColonOffWithoutAModelName)
{
    EXPECT_EQ(RemoveModelFromZID(":12", u""), "12");
    EXPECT_EQ(RemoveModelFromZID(":", u""), ":");
    EXPECT_EQ(RemoveModelFromZID("12", u""), "12");
}

TEST(RemoveModelFromZID, TakesOnlyOnePrefixOff)
{
    EXPECT_EQ(RemoveModelFromZID("m:m:12", u"m"), "m:12");
}

TEST(RemoveModelFromZID, ConvertsTheModelNameToUtf8)
{
    EXPECT_EQ(RemoveModelFromZID("Gew\xc3\xa4"
                                 "chs:12",
                                 u"Gew\u00e4chs"),
              "12");
    EXPECT_EQ(RemoveModelFromZID("\xf0\x9f\x8c\xbf:7", u"\U0001F33F"), "7");
    // The same name in Latin-1 is another name.
    EXPECT_EQ(RemoveModelFromZID("Gew\xe4"
                                 "chs:12",
                                 u"Gew\u00e4chs"),
              "Gew\xe4"
              "chs:12");
}

TEST(AddModelToZID, PutsTheModelNameInFront)
{
    EXPECT_EQ(AddModelToZID("12", u"m"), "m:12");
    EXPECT_EQ(AddModelToZID("m:12", u"m"), "m:m:12");
}

TEST(AddModelToZID, LeavesAnEmptyZidEmpty)
{
    EXPECT_EQ(AddModelToZID("", u"m"), "");
    EXPECT_EQ(AddModelToZID("", u""), "");
}

TEST(AddModelToZID, LeavesTheZidWithoutAModelName)
{
    EXPECT_EQ(AddModelToZID("12", u""), "12");
}

TEST(AddModelToZID, ConvertsTheModelNameToUtf8)
{
    EXPECT_EQ(AddModelToZID("12", u"Gew\u00e4chs"),
              "Gew\xc3\xa4"
              "chs:12");
}

// ---- any texts ----------------------------------------------------------------------------------

// Texts of few letters, so that names, prefixes and separators meet often. All ASCII, so that narrow and
// wide text correspond unit by unit.
rc::Gen<std::string> shortText()
{
    return rc::gen::scale(0.1, rc::gen::container<std::string>(rc::gen::elementOf(std::string("mM/:A"))));
}

std::u16string wide(const std::string& text)
{
    return {text.begin(), text.end()};
}

// Unit by unit, as one would by hand.
std::string removedByHand(const std::string& text, const std::string& modelName, char separator)
{
    std::string prefix = modelName;
    prefix.push_back(separator);
    if (!(text.size() > prefix.size())) {
        return text;
    }
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (text[i] != prefix[i]) {
            return text;
        }
    }
    std::string rest;
    for (std::size_t i = prefix.size(); i < text.size(); ++i) {
        rest.push_back(text[i]);
    }
    return rest;
}

std::string addedByHand(const std::string& text, const std::string& modelName, char separator)
{
    if (text.empty()) {
        return "";
    }
    return modelName.empty() ? text : modelName + std::string(1, separator) + text;
}

RC_GTEST_PROP(ModelPathProperties, RemovingFollowsTheRuleForAnyText, ())
{
    const std::string text = *shortText();
    const std::string model = *shortText();
    RC_ASSERT(RemoveModelFromPath(wide(text), wide(model)) == wide(removedByHand(text, model, '/')));
    RC_ASSERT(RemoveModelFromZID(text, wide(model)) == removedByHand(text, model, ':'));
}

RC_GTEST_PROP(ModelPathProperties, RemovingFollowsTheRuleForTextsThatBeginWithTheModel, ())
{
    const std::string model = *shortText();
    const std::string rest = *shortText();
    const std::string path = model + "/" + rest;
    const std::string zid = model + ":" + rest;
    RC_ASSERT(RemoveModelFromPath(wide(path), wide(model)) == wide(removedByHand(path, model, '/')));
    RC_ASSERT(RemoveModelFromZID(zid, wide(model)) == removedByHand(zid, model, ':'));
}

RC_GTEST_PROP(ModelPathProperties, AddingFollowsTheRuleForAnyText, ())
{
    const std::string text = *shortText();
    const std::string model = *shortText();
    RC_ASSERT(AddModelToPath(wide(text), wide(model)) == wide(addedByHand(text, model, '/')));
    RC_ASSERT(AddModelToZID(text, wide(model)) == addedByHand(text, model, ':'));
}

RC_GTEST_PROP(ModelPathProperties, RemovingTakesBackWhatAddingDid, ())
{
    const std::string text = *rc::gen::nonEmpty(shortText());
    const std::string model = *rc::gen::nonEmpty(shortText());
    RC_ASSERT(RemoveModelFromPath(AddModelToPath(wide(text), wide(model)), wide(model)) == wide(text));
    RC_ASSERT(RemoveModelFromZID(AddModelToZID(text, wide(model)), wide(model)) == text);
}

}  // namespace
}  // namespace zm_hmi_foundation
