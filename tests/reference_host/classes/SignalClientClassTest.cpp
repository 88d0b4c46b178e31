#include "reference_host/classes/BuiltInClasses.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <utility>

namespace reference_host {

namespace {

class SignalClientClassTest : public ClassesTest {
protected:
    void SetUp() override { ClassSystem::createContributedNamespaces(); }

    static constexpr const char* className = "Zelmar.HMI.SignalClient";

    static OwnedValue make() { return ObjectAccess::construct(className); }
    static std::string read(const OwnedValue& client, const std::string& property)
    {
        return describe(ObjectAccess::getProperty(client.get(), property).get());
    }
    static std::string assigned(const char* property, const OwnedValue& value)
    {
        const OwnedValue client = make();
        ObjectAccess::setProperty(client.get(), property, value.get());
        return read(client, property);
    }
    static std::string refusal(const char* property, const OwnedValue& value)
    {
        return hostError([&] { assigned(property, value); }, {className, property});
    }
    static OwnedValue makeCell(OwnedValue content)
    {
        OwnedValue cells = makeCells(Dimensions(1, 1));
        setCell(cells.get(), 0, std::move(content));
        return cells;
    }
};

TEST_F(SignalClientClassTest, HasItsPropertiesInTheOrderOfTheRecordAndTheSignalLast)
{
    std::vector<std::string> names;
    for (const PropertyDescription& property : describeClass(className).properties) {
        names.push_back(property.name);
    }
    const std::vector<std::string> expected{
        "UUID",          "ModelPath_",      "ModelPathZID_", "SourceModel_",      "SignalUUID_",
        "ObserverType_", "ObserverParams_", "UpdateRate_",   "DimensionChannel_", "ObserveImaginaryPart_",
        "BusLeafPath_",  "SignalInfo"};
    EXPECT_EQ(names, expected);
}

TEST_F(SignalClientClassTest, StartsWithTheDefaultsOfTheRecord)
{
    const OwnedValue client = make();
    for (const char* text : {"UUID", "SourceModel_", "SignalUUID_", "ObserverType_", "BusLeafPath_"}) {
        EXPECT_EQ(read(client, text), "\"\"") << text;
    }
    for (const char* value : {"ModelPath_", "ModelPathZID_", "ObserverParams_"}) {
        EXPECT_EQ(read(client, value), "0x0 double") << value;
    }
    EXPECT_EQ(read(client, "UpdateRate_"), "uint32 1");
    EXPECT_EQ(read(client, "DimensionChannel_"), "uint32 1");
    EXPECT_EQ(read(client, "ObserveImaginaryPart_"), "logical false");
}

TEST_F(SignalClientClassTest, TakesPathsAsCellsOfTexts)
{
    EXPECT_EQ(assigned("ModelPath_", makeCell(makeText("m/Pult"))), "1x1 cell");
    EXPECT_EQ(assigned("ModelPathZID_", makeCells(Dimensions(1, 0))), "1x0 cell");
    EXPECT_EQ(assigned("ModelPath_", makeEmptyValue()), "0x0 double");
}

TEST_F(SignalClientClassTest, RefusesPathsThatAreSomethingElse)
{
    for (const char* property : {"ModelPath_", "ModelPathZID_"}) {
        EXPECT_EQ(refusal(property, makeText("m/Pult")), "WrongValue");
        EXPECT_EQ(refusal(property, makeCell(makeDouble(1.0))), "WrongValue");
        EXPECT_EQ(refusal(property, makeCells(Dimensions(1, 1))), "WrongValue");
    }
}

TEST_F(SignalClientClassTest, TakesNumbersAsUInt32AndRefusesOthers)
{
    EXPECT_EQ(assigned("UpdateRate_", makeDouble(4294967295.0)), "uint32 4294967295");
    EXPECT_EQ(refusal("UpdateRate_", makeDouble(-1.0)), "WrongValue");
    EXPECT_EQ(refusal("DimensionChannel_", makeDouble(1.5)), "WrongValue");
}

TEST_F(SignalClientClassTest, TakesAnyParameters)
{
    EXPECT_EQ(assigned("ObserverParams_", makeStruct(Dimensions(1, 1), {"Min"})), "1x1 struct {Min}");
    EXPECT_EQ(assigned("ObserverParams_", makeText("any")), "\"any\"");
}

TEST_F(SignalClientClassTest, TheSignalIsEmptyWhileNobodyAnswers)
{
    EXPECT_FALSE(HostFunctions::isDefined(signalInfoFunction));
    EXPECT_EQ(read(make(), "SignalInfo"), "0x0 double");
}

TEST_F(SignalClientClassTest, TheSignalIsWhatTheHostFunctionGivesForThisClient)
{
    const ScopedHostFunction answer(signalInfoFunction, [](HostFunctionCall& call) {
        ASSERT_EQ(call.inputs().size(), 1U);
        call.setOutput(0, ObjectAccess::getProperty(call.input(0), "UUID"));
    });
    const OwnedValue client = make();
    ObjectAccess::setProperty(client.get(), "UUID", makeText("mine").get());
    EXPECT_EQ(read(client, "SignalInfo"), "\"mine\"");
    ObjectAccess::setProperty(client.get(), "UUID", makeText("now").get());
    EXPECT_EQ(read(client, "SignalInfo"), "\"now\"");
}

TEST_F(SignalClientClassTest, TheSignalIsEmptyWhereTheHostFunctionGivesNothing)
{
    const ScopedHostFunction answer(signalInfoFunction, [](HostFunctionCall&) {});
    EXPECT_EQ(read(make(), "SignalInfo"), "0x0 double");
}

TEST_F(SignalClientClassTest, TheSignalCannotBeAssigned)
{
    EXPECT_EQ(describeProperty(className, "SignalInfo")->access, nvcos::COSPropAccess::ScriptReadOnly);
    EXPECT_EQ(assigned("SignalInfo", makeText("x")), "0x0 double");
}

TEST_F(SignalClientClassTest, TheSignalIsNoFieldOfItsStruct)
{
    const OwnedValue fields = makeStruct(Dimensions(1, 1), {"SignalInfo"});
    EXPECT_EQ(hostError([&] { ObjectAccess::construct(className, {fields.get()}); }, {"SignalInfo"}),
              "WrongArgument");
}

}  // namespace

}  // namespace reference_host
