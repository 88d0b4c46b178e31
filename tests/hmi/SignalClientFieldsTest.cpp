#include "hmi/SignalClient.hpp"

#include "host/OwnedArray.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/ClientsTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

using Names = std::vector<std::string>;

class SignalClientFields : public ClientsTest {};

const Names expectedFields = {
    "UUID",          "ModelPath_",      "ModelPathZID_", "SourceModel_",      "SignalUUID_",
    "ObserverType_", "ObserverParams_", "UpdateRate_",   "DimensionChannel_", "ObserveImaginaryPart_",
    "BusLeafPath_"};

rh::OwnedValue makeStructFor(std::size_t count)
{
    return rh::makeStruct(rh::Dimensions(1, count),
                          Names(SignalClient::getStructFields(),
                                SignalClient::getStructFields() + SignalClient::getNumStructFields()));
}

/// The struct form of a client for one model.
rh::OwnedValue structOf(const ClientValues& values, const std::u16string& modelName)
{
    rh::OwnedValue data = makeStructFor(1);
    makeClient(values)->createStructData(data.get(), 0, modelName);
    return data;
}

std::string described(const rh::OwnedValue& data, const char* name)
{
    return rh::describe(rh::field(data.get(), 0, name));
}

/// The texts of a cell array.
Names cellTexts(const nvArray* cells)
{
    Names texts;
    for (std::size_t i = 0; i < rh::elementCount(cells); ++i) {
        texts.push_back(rh::utf8Text(rh::cell(cells, i)));
    }
    return texts;
}

Names cellTexts(const rh::OwnedValue& data, const char* name)
{
    return cellTexts(rh::field(data.get(), 0, name));
}

ClientValues load(const rh::OwnedValue& data, std::size_t index = 0)
{
    return valuesOf(SignalClient(data.get(), index, u"plant"));
}

rh::OwnedValue persistedWith(const char* name, rh::OwnedValue value)
{
    rh::OwnedValue data = makePersistedClients({distinctClient()});
    rh::replaceField(data.get(), 0, name, std::move(value));
    return data;
}

// ---- the struct form ----------------------------------------------------------------------------

TEST_F(SignalClientFields, HasElevenFieldsInOrder)
{
    ASSERT_EQ(SignalClient::getNumStructFields(), 11U);
    EXPECT_EQ(Names(SignalClient::getStructFields(), SignalClient::getStructFields() + 11), expectedFields);
}

TEST_F(SignalClientFields, WritesEachFieldInItsHostType)
{
    const rh::OwnedValue data = structOf(distinctClient(), u"plant");
    EXPECT_EQ(described(data, "UUID"), "\"5b6f0c1e-0a51-4a55-8a13-6d2a3c1d9e01\"");
    EXPECT_EQ(described(data, "ModelPath_"), "1x2 cell");
    EXPECT_EQ(described(data, "ModelPathZID_"), "1x2 cell");
    EXPECT_EQ(described(data, "SourceModel_"), "\"plant\"");
    EXPECT_EQ(described(data, "SignalUUID_"), "\"0fa1e07c-3a5e-4f0b-9d50-3f3d0d5b2d11\"");
    EXPECT_EQ(described(data, "ObserverType_"), "\"gauge\"");
    EXPECT_EQ(described(data, "ObserverParams_"), "1x1 struct {ModelName, Scale}");
    EXPECT_EQ(described(data, "UpdateRate_"), "uint32 5");
    EXPECT_EQ(described(data, "DimensionChannel_"), "uint32 3");
    EXPECT_EQ(described(data, "ObserveImaginaryPart_"), "logical true");
    EXPECT_EQ(described(data, "BusLeafPath_"), "\"bus.speed\"");
}

TEST_F(SignalClientFields, AddsTheModelNameToTheFirstPartsOnly)
{
    const rh::OwnedValue data = structOf(distinctClient(), u"plant");
    EXPECT_EQ(cellTexts(data, "ModelPath_"), (Names{"plant/Pult/\u00dcbersicht", "inner/Anzeige"}));
    EXPECT_EQ(cellTexts(data, "ModelPathZID_"), (Names{"plant:31", "inner:7"}));
}

TEST_F(SignalClientFields, WritesPathsWithoutPartsAsOneByZeroCells)
{
    const rh::OwnedValue data = structOf({}, u"plant");
    EXPECT_EQ(described(data, "ModelPath_"), "1x0 cell");
    EXPECT_EQ(described(data, "ModelPathZID_"), "1x0 cell");
}

TEST_F(SignalClientFields, WritesTheModelThatIsAskedForWhereTheObserverHasNoPath)
{
    EXPECT_EQ(described(structOf({.sourceModel = u"own"}, u"m"), "SourceModel_"), "\"m\"");
}

TEST_F(SignalClientFields, WritesTheObserversOwnModelWhereItHasAPath)
{
    EXPECT_EQ(described(structOf({.modelPath = {u"Pult"}, .sourceModel = u"own"}, u"m"), "SourceModel_"),
              "\"own\"");
}

TEST_F(SignalClientFields, SavesAnEmptySourceModelWhereTheObserverHasNoPath)
{
    const rh::OwnedValue data = makeStructFor(1);
    makeClient({.sourceModel = u"own"})->getPersistenceData(data.get(), 0);
    EXPECT_EQ(described(data, "SourceModel_"), "\"\"");
}

TEST_F(SignalClientFields, SavesPathsWithoutAModelName)
{
    const rh::OwnedValue data = makeStructFor(1);
    makeClient(distinctClient())->getPersistenceData(data.get(), 0);
    EXPECT_EQ(cellTexts(data, "ModelPath_"), (Names{"Pult/\u00dcbersicht", "inner/Anzeige"}));
    EXPECT_EQ(cellTexts(data, "ModelPathZID_"), (Names{"31", "inner:7"}));
}

TEST_F(SignalClientFields, LeavesTheParametersUnsetWhereThereAreNone)
{
    EXPECT_EQ(rh::field(structOf({}, u"m").get(), 0, "ObserverParams_"), nullptr);
}

TEST_F(SignalClientFields, WritesACopyOfTheParameters)
{
    const SignalClientPtr client = makeClient(distinctClient());
    const rh::OwnedValue data = makeStructFor(1);
    client->createStructData(data.get(), 0, u"plant");
    client->renameModel(u"plant", u"works");
    EXPECT_EQ(rh::utf8Text(rh::field(rh::field(data.get(), 0, "ObserverParams_"), 0, "ModelName")), "plant");
}

TEST_F(SignalClientFields, WritesNumbersTruncatedTo32Bits)
{
    const rh::OwnedValue data = structOf(
        {.updateRate = (1ULL << 32U) + 7, .dimensionChannel = std::numeric_limits<std::uint64_t>::max()},
        u"");
    EXPECT_EQ(described(data, "UpdateRate_"), "uint32 7");
    EXPECT_EQ(described(data, "DimensionChannel_"), "uint32 4294967295");
}

TEST_F(SignalClientFields, FillsTheElementThatIsNamed)
{
    const rh::OwnedValue data = makeStructFor(2);
    makeClient(clientNamed("second"))->getPersistenceData(data.get(), 1);
    EXPECT_EQ(rh::field(data.get(), 0, "UUID"), nullptr);
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 1, "UUID")), "second");
}

TEST_F(SignalClientFields, WritingFreesAllWhenAnOperationFails)
{
    const SignalClientPtr client = makeClient(distinctClient());
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            const rh::OwnedValue data = makeStructFor(1);
            client->createStructData(data.get(), 0, u"plant");
        });
        EXPECT_GE(calls, 22U);  // each field is made and set
    }
}

// ---- from the struct form -----------------------------------------------------------------------

TEST_F(SignalClientFields, LoadsEveryMember)
{
    EXPECT_EQ(load(makePersistedClients({distinctClient()})), distinctClient());
}

TEST_F(SignalClientFields, LoadsTheElementThatIsNamed)
{
    EXPECT_EQ(load(makePersistedClients({{}, distinctClient()}), 1), distinctClient());
}

TEST_F(SignalClientFields, LoadsPathsAsTheyAreStored)
{
    const ClientValues stored = {.modelPath = {u"plant/Pult"}, .modelPathZID = {"plant:3"}};
    EXPECT_EQ(load(makePersistedClients({stored})), stored);
}

TEST_F(SignalClientFields, LoadsAClientOfTheOlderObjectClassAsAStruct)
{
    rh::OwnedValue data = rh::makeStructObject("OldClient", rh::Dimensions(1, 1), {"UUID"});
    rh::setField(data.get(), 0, "UUID", rh::makeText("old"));
    EXPECT_EQ(load(data).uuid, "old");
}

TEST_F(SignalClientFields, MissingRateAndChannelLoadAsZeroAndNotAsTheDefault)
{
    const ClientValues loaded = load(makePersistedWithout({"UpdateRate_", "DimensionChannel_"}));
    EXPECT_EQ(loaded.updateRate, 0U);
    EXPECT_EQ(loaded.dimensionChannel, 0U);
}

TEST_F(SignalClientFields, AMissingFlagLoadsAsFalseAndAMissingLeafAsEmpty)
{
    const ClientValues loaded = load(makePersistedWithout({"ObserveImaginaryPart_", "BusLeafPath_"}));
    EXPECT_FALSE(loaded.observeImaginaryPart);
    EXPECT_EQ(loaded.busLeafPath, "");
}

TEST_F(SignalClientFields, OtherMissingFieldsLoadAsEmptyTexts)
{
    const ClientValues loaded =
        load(makePersistedWithout({"UUID", "ModelPath_", "ModelPathZID_", "SourceModel_", "SignalUUID_",
                                   "ObserverType_", "ObserverParams_"}));
    ClientValues expected;
    expected.updateRate = distinctClient().updateRate;
    expected.dimensionChannel = distinctClient().dimensionChannel;
    expected.observeImaginaryPart = true;
    expected.busLeafPath = distinctClient().busLeafPath;
    EXPECT_EQ(loaded, expected);
}

TEST_F(SignalClientFields, MissingFieldsReplaceWhatARecordHeld)
{
    const SignalClientPtr client = makeClient(distinctClient());
    client->setFromPersistentData(rh::makeStruct(rh::Dimensions(1, 1), {}).get(), 0);
    ClientValues expected;
    expected.updateRate = 0;
    expected.dimensionChannel = 0;
    EXPECT_EQ(valuesOf(*client), expected);
}

TEST_F(SignalClientFields, UnsetCellsLoadAsEmptyTexts)
{
    const rh::OwnedValue data = persistedWith("ModelPath_", rh::makeCells(rh::Dimensions(1, 2)));
    EXPECT_EQ(load(data).modelPath, (std::vector<std::u16string>{u"", u""}));
}

TEST_F(SignalClientFields, ANumericFlagIsTrueUnlessItIsZero)
{
    const auto loadFlag = [](rh::OwnedValue value) {
        return load(persistedWith("ObserveImaginaryPart_", std::move(value))).observeImaginaryPart;
    };
    EXPECT_TRUE(loadFlag(rh::makeDouble(2.0)));
    EXPECT_TRUE(loadFlag(rh::makeDouble(-0.5)));
    EXPECT_TRUE(loadFlag(rh::makeNumber(1, nvClassID::UInt8)));
    EXPECT_FALSE(loadFlag(rh::makeDouble(0.0)));
    EXPECT_FALSE(loadFlag(rh::makeDouble(-0.0)));
}

TEST_F(SignalClientFields, ALogicalFlagIsItsFirstElement)
{
    const auto loadFlag = [](rh::OwnedValue value) {
        return load(persistedWith("ObserveImaginaryPart_", std::move(value))).observeImaginaryPart;
    };
    rh::OwnedValue trueFalse = rh::makeLogicals(rh::Dimensions(1, 2));
    rh::setElement(trueFalse.get(), 0, 1.0);
    EXPECT_TRUE(loadFlag(std::move(trueFalse)));
    EXPECT_FALSE(loadFlag(rh::makeLogical(false)));
    EXPECT_FALSE(loadFlag(rh::makeLogicals(rh::Dimensions(0, 0))));
}

TEST_F(SignalClientFields, NumbersAreReadAsSigned32BitsAndWidened)
{
    const auto loadRate = [](double value) {
        return load(persistedWith("UpdateRate_", rh::makeDouble(value))).updateRate;
    };
    EXPECT_EQ(loadRate(7.9), 7U);
    EXPECT_EQ(loadRate(-1.0), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(loadRate(4294967295.0), std::numeric_limits<std::uint64_t>::max());
}

TEST_F(SignalClientFields, ANegativeNumberComesBackFromASave)
{
    const SignalClient loaded(persistedWith("DimensionChannel_", rh::makeDouble(-3.0)).get(), 0, u"");
    const rh::OwnedValue data = makeStructFor(1);
    loaded.getPersistenceData(data.get(), 0);
    EXPECT_EQ(load(data).dimensionChannel, loaded.getDimensionChannel());
}

TEST_F(SignalClientFields, LoadedParametersAreADeepCopyInThePersistentScope)
{
    rh::OwnedValue data = makePersistedClients({distinctClient()});
    const SignalClient client(data.get(), 0, u"");
    data.reset();
    EXPECT_EQ(valuesOf(client).paramsModelName, u"plant");
    EXPECT_EQ(client.getObserverParams()->scope, rh::Scope::Persistent);
}

TEST_F(SignalClientFields, ATextOfAnotherClassIsAHostError)
{
    EXPECT_EQ(hostError([] { load(persistedWith("UUID", rh::makeDouble(1.0))); }), "WrongClass");
}

TEST_F(SignalClientFields, LoadingFreesAllWhenAnOperationFails)
{
    const rh::OwnedValue data = makePersistedClients({distinctClient()});
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        EXPECT_GT(rh::walkFaults(rh::Faults::anyOperation, kind, [&] { load(data); }), 11U);
    }
}

// ---- from an object of the host class -----------------------------------------------------------

ClientValues read(const ClientValues& values, const std::u16string& modelName)
{
    return valuesOf(SignalClient(makeClientObject(values).get(), 0, modelName));
}

TEST_F(SignalClientFields, ReadsEveryMemberOfAnObject)
{
    EXPECT_EQ(read(distinctClient(), u"another"), distinctClient());
}

TEST_F(SignalClientFields, TakesTheModelNameOffTheFirstPartsOfAnObject)
{
    const ClientValues values =
        read({.modelPath = {u"m/Dashboard", u"m/Inner"}, .modelPathZID = {"m:3", "m:4"}}, u"m");
    EXPECT_EQ(values.modelPath, (std::vector<std::u16string>{u"Dashboard", u"m/Inner"}));
    EXPECT_EQ(values.modelPathZID, (std::vector<std::string>{"3", "m:4"}));
}

TEST_F(SignalClientFields, ReadsTheDefaultsOfANewObject)
{
    const rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.SignalClient");
    EXPECT_EQ(valuesOf(SignalClient(object.get(), 0, u"m")), ClientValues());
}

TEST_F(SignalClientFields, ReadsEachPropertyOnceInOrderAndFreesIt)
{
    const rh::OwnedValue object = makeClientObject(distinctClient());
    SignalClient client;
    rh::Journal::startRecording();
    client.setFromNVCOS(object.get(), u"plant");
    rh::Journal::stopRecording();
    Names read;
    for (const rh::JournalEntry& entry : rh::Journal::entries()) {
        if (entry.operation == "nvGetPropertyShared" || entry.operation == "nvGetProperty") {
            read.push_back(entry.arguments.at(2));
        }
    }
    Names expected;
    for (const std::string& name : expectedFields) {
        expected.push_back("\"" + name + "\"");
    }
    EXPECT_EQ(read, expected);
    EXPECT_EQ(journaledArguments("nvGetProperty", 2), Names{"\"ObserverParams_\""});
    EXPECT_EQ(journaledArguments("zmsvSetLocalScope", 0).size(), 11U);
    EXPECT_EQ(journaledArguments("zmsvSetPersistentScope", 0).size(), 1U);
    EXPECT_EQ(journaledArguments("nvDestroyArray", 0).size(), 10U);  // all but the parameters
}

TEST_F(SignalClientFields, ParametersOfAnObjectBecomeTheRecordsOwn)
{
    rh::OwnedValue object = makeClientObject(distinctClient());
    const SignalClient client(object.get(), 0, u"");
    object.reset();
    EXPECT_EQ(valuesOf(client).paramsModelName, u"plant");
    EXPECT_EQ(client.getObserverParams()->scope, rh::Scope::Persistent);
}

TEST_F(SignalClientFields, AnObjectThatLacksThePropertiesIsAHostError)
{
    const rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.InterfaceMgr");
    EXPECT_EQ(hostError([&] { SignalClient(object.get(), 0, u""); }), "UnknownProperty");
}

TEST_F(SignalClientFields, AValueThatIsNoObjectIsAHostError)
{
    EXPECT_EQ(hostError([] { SignalClient(rh::makeDouble(1.0).get(), 0, u""); }), "NoObject");
    EXPECT_EQ(hostError([] { SignalClient(nullptr, 0, u""); }), "NullArgument");
}

TEST_F(SignalClientFields, ReadingAnObjectFreesAllWhenAnOperationFails)
{
    const rh::OwnedValue object = makeClientObject(distinctClient());
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        EXPECT_GT(
            rh::walkFaults(rh::Faults::anyOperation, kind, [&] { SignalClient(object.get(), 0, u"plant"); }),
            22U);
    }
}

/// Reads objects of a host class whose properties take any value.
class SignalClientFromOddObject : public ClientsTest {
protected:
    void SetUp() override
    {
        if (!rh::ClassSystem::hasClass("Tests.OddClient")) {
            rh::ClassSystem::createNamespace("Tests");
            rh::ClassSystem::contributeClass("Tests", makeOddClass);
        }
        rh::describeClass("Tests.OddClient");
        ClientsTest::SetUp();
    }

    static ClientValues readWith(const char* name, const rh::OwnedValue& value)
    {
        const rh::OwnedValue object = rh::ObjectAccess::construct("Tests.OddClient");
        rh::ObjectAccess::setProperty(object.get(), name, value.get());
        return valuesOf(SignalClient(object.get(), 0, u""));
    }

private:
    static std::unique_ptr<nvcos::COSClassInfo> makeOddClass()
    {
        std::vector<rh::RecordProperty> properties;
        for (const std::string& name : expectedFields) {
            properties.push_back(rh::anyProperty(name));
            if (name == "UpdateRate_" || name == "DimensionChannel_") {
                properties.back().makeDefault = [] { return rh::makeDouble(4.0); };
            } else if (name == "ObserveImaginaryPart_") {
                properties.back().makeDefault = [] { return rh::makeLogical(true); };
            }
        }
        return rh::makeRecordClass("OddClient", properties);
    }
};

TEST_F(SignalClientFromOddObject, AFlagIsTheFirstElementOfALogical)
{
    const rh::OwnedValue trueFalse = rh::makeLogicals(rh::Dimensions(1, 2));
    rh::setElement(trueFalse.get(), 0, 1.0);
    EXPECT_TRUE(readWith("ObserveImaginaryPart_", trueFalse).observeImaginaryPart);
    EXPECT_FALSE(readWith("ObserveImaginaryPart_", rh::makeLogical(false)).observeImaginaryPart);
    EXPECT_FALSE(
        readWith("ObserveImaginaryPart_", rh::makeLogicals(rh::Dimensions(0, 0))).observeImaginaryPart);
}

TEST_F(SignalClientFromOddObject, AFlagThatIsNoLogicalIsAHostErrorUnlikeInAStruct)
{
    EXPECT_EQ(hostError([] { readWith("ObserveImaginaryPart_", rh::makeDouble(1.0)); }), "WrongClass");
    EXPECT_TRUE(load(persistedWith("ObserveImaginaryPart_", rh::makeDouble(1.0))).observeImaginaryPart);
}

TEST_F(SignalClientFromOddObject, NumbersOfAnyClassAreReadAsSigned32BitsAndWidened)
{
    EXPECT_EQ(readWith("UpdateRate_", rh::makeDouble(2.9)).updateRate, 2U);
    EXPECT_EQ(readWith("DimensionChannel_", rh::makeDouble(-1.0)).dimensionChannel,
              std::numeric_limits<std::uint64_t>::max());
}

TEST_F(SignalClientFromOddObject, AnEmptyNumberIsAHostError)
{
    EXPECT_EQ(hostError([] { readWith("UpdateRate_", rh::makeEmptyValue()); }), "EmptyValue");
    EXPECT_EQ(hostError([] { readWith("DimensionChannel_", rh::makeEmptyValue()); }), "EmptyValue");
}

TEST_F(SignalClientFromOddObject, APropertyThatGivesNothingIsAHostErrorUnlikeAMissingField)
{
    const rh::OwnedValue object = makeClientObject(distinctClient());
    for (const std::size_t read : {7U, 8U, 9U}) {  // the two numbers and the flag
        rh::Faults::arm("nvGetPropertyShared", rh::FaultKind::Null, read);
        EXPECT_EQ(hostError([&] { SignalClient(object.get(), 0, u""); }), "NullArgument") << read;
        rh::Faults::disarm();
    }
}

// ---- to an object of the host class -------------------------------------------------------------

TEST_F(SignalClientFields, AnObjectReadsBackAsTheRecord)
{
    const OwnedArray object = makeClient(distinctClient())->getNVCOSObject(u"plant");
    EXPECT_TRUE(rh::isOfClass(object.get(), "Zelmar.HMI.SignalClient"));
    EXPECT_EQ(valuesOf(SignalClient(object.get(), 0, u"plant")), distinctClient());
    expectNoWarning();
}

TEST_F(SignalClientFields, AnObjectOfAnObserverWithoutAPathIsOfTheModelThatIsAskedFor)
{
    const OwnedArray object = makeClient({})->getNVCOSObject(u"m");
    EXPECT_EQ(rh::describe(rh::ObjectAccess::getProperty(object.get(), "SourceModel_").get()), "\"m\"");
}

TEST_F(SignalClientFields, TheHostGetsOneTemporaryStructOfAllFields)
{
    std::vector<rh::Scope> scopes;
    const rh::ScopedHostFunction constructor("Zelmar.HMI.SignalClient", [&](rh::HostFunctionCall& call) {
        ASSERT_EQ(call.inputs().size(), 1U);
        EXPECT_EQ(call.outputCount(), 1U);
        EXPECT_EQ(rh::dimensions(call.input(0)).text(), "1x1");
        EXPECT_EQ(rh::fieldNames(call.input(0)), expectedFields);
        scopes.push_back(call.input(0)->scope);
    });
    EXPECT_EQ(makeClient(distinctClient())->getNVCOSObject(u"plant"), nullptr);
    EXPECT_EQ(scopes, std::vector<rh::Scope>{rh::Scope::Temporary});
    expectNoWarning();
}

TEST_F(SignalClientFields, ARefusedObjectIsNullAfterOneWarning)
{
    const rh::ScopedHostFunction refused("Zelmar.HMI.SignalClient", fail);
    EXPECT_EQ(makeClient(distinctClient())->getNVCOSObject(u"plant"), nullptr);
    expectOneWarning("Refused");
}

TEST_F(SignalClientFields, WhateverTheHostMakesIsHandedOn)
{
    const rh::ScopedHostFunction odd("Zelmar.HMI.SignalClient",
                                     [](auto& call) { call.setOutput(0, rh::makeDouble(3.0)); });
    EXPECT_EQ(rh::describe(makeClient({})->getNVCOSObject(u"m").get()), "double 3");
    expectNoWarning();
}

TEST_F(SignalClientFields, MakingAnObjectFreesAllWhenAnOperationFails)
{
    const SignalClientPtr client = makeClient(distinctClient());
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            const OwnedArray object = client->getNVCOSObject(u"plant");
        });
        EXPECT_GT(calls, 24U);
    }
    rh::Warnings::clear();
}

TEST_F(SignalClientFields, ADiagnosticOfTheCallItselfIsShownAndNotThrown)
{
    const SignalClientPtr client = makeClient(distinctClient());
    rh::Faults::arm("zmsvFEVAL_NoThrow", rh::FaultKind::Diagnostic, 1);
    EXPECT_EQ(client->getNVCOSObject(u"plant"), nullptr);
    expectOneWarning("InjectedFault");
}

// ---- there and back -----------------------------------------------------------------------------

std::u16string anyWideText()
{
    return *rc::gen::container<std::u16string>(rc::gen::elementOf(std::u16string(u"m/:.x \u00e4\u704c")));
}

ClientValues anyClient()
{
    // Text that is cut inside a character is not UTF-8 any more, so narrow texts are ASCII here.
    const auto ascii = [] {
        return *rc::gen::container<std::string>(rc::gen::elementOf(std::string("m/:.x")));
    };
    ClientValues values;
    values.uuid = ascii();
    for (std::size_t parts = *rc::gen::inRange<std::size_t>(0, 4); parts > 0; --parts) {
        values.modelPath.push_back(anyWideText());
        values.modelPathZID.push_back(ascii());
    }
    values.sourceModel = values.modelPath.empty() ? u"" : anyWideText();
    values.signalUUID = ascii();
    values.observerType = ascii();
    if (*rc::gen::arbitrary<bool>()) {
        values.paramsModelName = anyWideText();
    }
    values.updateRate = *rc::gen::inRange<std::uint32_t>(0, 0x80000000U);
    values.dimensionChannel = *rc::gen::inRange<std::uint32_t>(0, 0x80000000U);
    values.observeImaginaryPart = *rc::gen::arbitrary<bool>();
    values.busLeafPath = ascii();
    return values;
}

RC_GTEST_FIXTURE_PROP(SignalClientFields, SavingAndLoadingLosesNothing, ())
{
    const ClientValues values = anyClient();
    const rh::OwnedValue data = makeStructFor(1);
    makeClient(values)->getPersistenceData(data.get(), 0);
    RC_ASSERT(load(data) == values);
}

}  // namespace
}  // namespace zm_hmi
