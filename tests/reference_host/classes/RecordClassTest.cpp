#include "reference_host/classes/RecordClass.hpp"

#include "host/Containers.hpp"
#include "host/OwnedArray.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

std::string evenNumber(const nvArray* value)
{
    return isNumeric(value) && static_cast<int>(scalar(value)) % 2 == 0 ? "" : "must be even";
}

OwnedValue describeName(const nvArray* object)
{
    return makeText("named " + utf8Text(ObjectAccess::getProperty(object, "Name").get()));
}

class RecordClassTest : public ClassesTest {
protected:
    void SetUp() override
    {
        ClassSystem::contributeClass("A", [] {
            return makeRecordClass("Card", {textProperty("Name"), numberProperty("Weight", 2.5),
                                            flagProperty("Fragile", true), anyProperty("Even", evenNumber),
                                            computedProperty("Label", "unicodeString", describeName)});
        });
        ClassSystem::createNamespace("A");
    }

    static OwnedValue makeCard(const nvArray* fields = nullptr)
    {
        return ObjectAccess::construct(
            "A.Card", fields != nullptr ? ObjectAccess::Arguments{fields} : ObjectAccess::Arguments{});
    }
    static std::string read(const OwnedValue& card, const char* property)
    {
        return describe(ObjectAccess::getProperty(card.get(), property).get());
    }
    static OwnedValue makeFields(const std::vector<std::string>& names)
    {
        return makeStruct({std::size_t{1}, std::size_t{1}}, names);
    }
};

TEST_F(RecordClassTest, ObjectsThatHoldEachOtherEndWithTheValuesOfAll)
{
    ClassSystem::contributeClass("A", [] { return makeRecordClass("Link", {anyProperty("Next")}); });
    const std::int64_t before = Ledger::counter("class instances").undeclared();
    {
        const OwnedValue one = ObjectAccess::construct("A.Link");
        const OwnedValue other = ObjectAccess::construct("A.Link");
        const OwnedValue inCell = makeCells({1, 1});
        setCell(inCell.get(), 0, copyShared(one.get()));
        ObjectAccess::setProperty(one.get(), "Next", other.get());
        ObjectAccess::setProperty(other.get(), "Next", inCell.get());
    }
    EXPECT_EQ(Ledger::counter("class instances").undeclared(), before + 2);
    endRecordValues();
    EXPECT_EQ(Ledger::counter("class instances").undeclared(), before);
}

TEST_F(RecordClassTest, AnObjectWhoseValuesHaveEndedReadsAsEmptyAndTakesNone)
{
    const OwnedValue card = makeCard();
    endRecordValues();
    EXPECT_EQ(read(card, "Even"), "0x0 double");
    EXPECT_EQ(hostError([&] { ObjectAccess::setProperty(card.get(), "Name", makeText(u"x").get()); }, {}),
              "NullArgument");
}

TEST_F(RecordClassTest, ANewObjectHasTheDefaults)
{
    const OwnedValue card = makeCard();
    EXPECT_EQ(read(card, "Name"), describe(makeText(u"").get()));
    EXPECT_EQ(read(card, "Weight"), "double 2.5");
    EXPECT_EQ(read(card, "Fragile"), "logical true");
    EXPECT_EQ(read(card, "Even"), "0x0 double");
}

TEST_F(RecordClassTest, ObjectsKeepTheirOwnValues)
{
    const OwnedValue first = makeCard();
    const OwnedValue second = makeCard();
    ObjectAccess::setProperty(first.get(), "Weight", makeDouble(7.0).get());
    EXPECT_EQ(read(first, "Weight"), "double 7");
    EXPECT_EQ(read(second, "Weight"), "double 2.5");
}

TEST_F(RecordClassTest, AnAssignedValueIsCopied)
{
    const OwnedValue card = makeCard();
    const OwnedValue value = makeNumber(4.0, nvClassID::UInt32);
    ObjectAccess::setProperty(card.get(), "Even", value.get());
    setElement(value.get(), 0, 6.0);
    EXPECT_EQ(read(card, "Even"), "uint32 4");
}

TEST_F(RecordClassTest, AValueThatWasReadIsTheReadersOwn)
{
    const OwnedValue card = makeCard();
    const OwnedValue value = ObjectAccess::getProperty(card.get(), "Weight");
    setElement(value.get(), 0, 9.0);
    EXPECT_EQ(read(card, "Weight"), "double 2.5");
}

TEST_F(RecordClassTest, AWrongTypeIsAnErrorThatNamesTheProperty)
{
    const OwnedValue card = makeCard();
    EXPECT_EQ(hostError([&] { ObjectAccess::setProperty(card.get(), "Name", makeDouble(1.0).get()); },
                        {"A.Card.Name", "text", "double 1"}),
              "WrongValue");
}

TEST_F(RecordClassTest, ARefusedValueIsAnErrorThatSaysWhyAndChangesNothing)
{
    const OwnedValue card = makeCard();
    ObjectAccess::setProperty(card.get(), "Even", makeDouble(2.0).get());
    EXPECT_EQ(hostError([&] { ObjectAccess::setProperty(card.get(), "Even", makeDouble(3.0).get()); },
                        {"A.Card.Even must be even"}),
              "WrongValue");
    EXPECT_EQ(read(card, "Even"), "double 2");
}

TEST_F(RecordClassTest, AComputedPropertyIsWorkedOutOnEachReading)
{
    const OwnedValue card = makeCard();
    EXPECT_EQ(read(card, "Label"), "\"named \"");
    ObjectAccess::setProperty(card.get(), "Name", makeText(u"box").get());
    EXPECT_EQ(read(card, "Label"), "\"named box\"");
}

TEST_F(RecordClassTest, AComputedPropertyIsReadOnlyAndIgnoresAssignment)
{
    const OwnedValue card = makeCard();
    EXPECT_EQ(describeProperty("A.Card", "Label").value_or(PropertyDescription{}).access,
              nvcos::COSPropAccess::ScriptReadOnly);
    ObjectAccess::setProperty(card.get(), "Label", makeText(u"other").get());
    EXPECT_EQ(read(card, "Label"), "\"named \"");
}

TEST_F(RecordClassTest, IsConstructedFromAnyOfItsFields)
{
    const OwnedValue fields = makeFields({"Weight", "Name"});
    setField(fields.get(), 0, "Weight", makeDouble(1.0));
    setField(fields.get(), 0, "Name", makeText(u"box"));
    const OwnedValue card = makeCard(fields.get());
    EXPECT_EQ(read(card, "Weight"), "double 1");
    EXPECT_EQ(read(card, "Name"), "\"box\"");
    EXPECT_EQ(read(card, "Fragile"), "logical true");
}

TEST_F(RecordClassTest, AnUnsetFieldLeavesTheDefault)
{
    const OwnedValue card = makeCard(makeFields({"Weight"}).get());
    EXPECT_EQ(read(card, "Weight"), "double 2.5");
}

TEST_F(RecordClassTest, AnUnknownFieldIsAnErrorThatNamesIt)
{
    EXPECT_EQ(
        hostError([] { makeCard(makeFields({"Wieght"}).get()); }, {"A.Card", "argument 1", "\"Wieght\""}),
        "WrongArgument");
}

TEST_F(RecordClassTest, AComputedPropertyIsNoField)
{
    EXPECT_EQ(hostError([] { makeCard(makeFields({"Label"}).get()); }, {"\"Label\""}), "WrongArgument");
}

TEST_F(RecordClassTest, AFieldOfTheWrongTypeIsAnErrorThatNamesTheProperty)
{
    const OwnedValue fields = makeFields({"Weight"});
    setField(fields.get(), 0, "Weight", makeText(u"heavy"));
    EXPECT_EQ(hostError([&] { makeCard(fields.get()); }, {"A.Card.Weight", "\"heavy\""}), "WrongValue");
}

TEST_F(RecordClassTest, IsNotConstructedFromAnythingButOneStruct)
{
    EXPECT_EQ(hostError([] { makeCard(makeDouble(1.0).get()); }, {"A.Card", "argument 1", "double 1"}),
              "WrongArgument");
    const OwnedValue two = makeStruct({std::size_t{1}, std::size_t{2}}, {"Name"});
    EXPECT_EQ(hostError([&] { makeCard(two.get()); }, {"1x1 struct"}), "WrongArgument");
}

TEST_F(RecordClassTest, SurvivesInEveryCopyOfItsHandle)
{
    OwnedValue card = makeCard();
    const OwnedValue copy = copyDeep(card.get());
    ObjectAccess::setProperty(card.get(), "Weight", makeDouble(8.0).get());
    card.reset();
    EXPECT_EQ(read(copy, "Weight"), "double 8");
}

TEST_F(RecordClassTest, OnlyItsBoundaryOperationsAreJournaled)
{
    const OwnedValue card = makeCard();
    Journal::startRecording();
    const OwnedArray weight(nvGetProperty(card.get(), 0, "Weight"));
    Journal::stopRecording();
    ASSERT_EQ(Journal::entries().size(), 1U);
    EXPECT_EQ(Journal::entries().front().operation, "nvGetProperty");
}

TEST_F(RecordClassTest, ItsFirstUseIsNotJournaled)
{
    Journal::startRecording();
    makeCard();
    Journal::stopRecording();
    EXPECT_TRUE(Journal::entries().empty()) << Journal::entries().front().text();
}

}  // namespace

}  // namespace reference_host
