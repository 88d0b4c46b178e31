#include "hmi/StreamingClients.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/ClientsTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

// The host class "Zelmar.HMI.StreamingClients" as scripts use it.

namespace zm_hmi {
namespace {

namespace rh = reference_host;

constexpr const char* className = "Zelmar.HMI.StreamingClients";
constexpr const char* signalsClass = "Zelmar.HMI.InstrumentedSignals";

using Names = std::vector<std::string>;

class StreamingClientsClassTest : public ClientsTest {
protected:
    /// Calls a method with borrowed arguments; the first result, null for none.
    static rh::OwnedValue call(const rh::OwnedValue& object, const char* method,
                               const std::vector<const nvArray*>& arguments)
    {
        rh::ObjectAccess::Results results = rh::ObjectAccess::callMethod(object.get(), method, arguments);
        return results.empty() ? nullptr : std::move(results.front());
    }
    rh::OwnedValue call(const char* method, const std::vector<const nvArray*>& arguments) const
    {
        return call(m_object, method, arguments);
    }

    std::string read(const char* property) const
    {
        return rh::describe(rh::ObjectAccess::getProperty(m_object.get(), property).get());
    }
    void assign(const char* property, const rh::OwnedValue& value) const
    {
        rh::ObjectAccess::setProperty(m_object.get(), property, value.get());
    }

    void add(const ClientValues& values) const { call("add", {makeClientObject(values).get()}); }

    std::string uuidAt(double index) const
    {
        const rh::OwnedValue client = call("get", {rh::makeDouble(index).get()});
        return rh::utf8Text(rh::ObjectAccess::getProperty(client.get(), "UUID").get());
    }

    StreamingClients& clients() const { return *StreamingClients::getFromNVArray(m_object.get()); }

    rh::OwnedValue m_object = rh::ObjectAccess::construct(className);
};

// ---- what is registered -------------------------------------------------------------------------

TEST_F(StreamingClientsClassTest, StandsBehindTheInstrumentedSignals)
{
    const Names classes = rh::ClassSystem::classes("Zelmar.HMI");
    const auto signals = std::ranges::find(classes, "InstrumentedSignals");
    const auto streaming = std::ranges::find(classes, "StreamingClients");
    ASSERT_NE(streaming, classes.end());
    EXPECT_EQ(signals + 1, streaming);
}

TEST_F(StreamingClientsClassTest, HasItsPropertiesInOrder)
{
    Names properties;
    for (const rh::PropertyDescription& property : rh::describeClass(className).properties) {
        properties.push_back(property.name + ": " + property.type + ", access " +
                             std::to_string(static_cast<int>(property.access)));
    }
    EXPECT_EQ(properties, (Names{"Model: unicodeString, access 2", "Count: uint32 scalar, access 5",
                                 "Persistence: any, access 2"}));
}

TEST_F(StreamingClientsClassTest, HasItsMethodsInOrder)
{
    const rh::ClassDescription description = rh::describeClass(className);
    Names methods;
    for (const rh::MethodDescription& method : description.methods) {
        methods.push_back(method.signature);
    }
    ASSERT_TRUE(description.constructor.has_value());
    EXPECT_EQ(description.constructor->inputs, Names{"unicodeString"});
    EXPECT_EQ(description.constructor->optionalInputs, 1U);
    EXPECT_EQ(description.constructor->outputs, Names{className});
    const auto first = std::ranges::find_if(
        methods, [](const std::string& signature) { return signature.starts_with("add("); });
    EXPECT_EQ(Names(first, methods.end()),
              (Names{"add(obj, Zelmar.HMI.SignalClient)", "set(obj, uint32 scalar, Zelmar.HMI.SignalClient)",
                     "remove(obj, uint32 scalar)", "get(obj, uint32 scalar) -> Zelmar.HMI.SignalClient"}));
}

// ---- constructor --------------------------------------------------------------------------------

TEST_F(StreamingClientsClassTest, AnObjectMadeWithoutAnArgumentHasNoModelName)
{
    EXPECT_EQ(read("Model"), "\"\"");
    EXPECT_EQ(read("Count"), "uint32 0");
}

TEST_F(StreamingClientsClassTest, AnObjectMadeWithANameHasIt)
{
    const rh::OwnedValue name = rh::makeText(u"pl\u00e4nt");
    const rh::OwnedValue object = rh::ObjectAccess::construct(className, {name.get()});
    const StreamingClients& made = *StreamingClients::getFromNVArray(object.get());
    EXPECT_EQ(made.getModelName(), u"pl\u00e4nt");
    EXPECT_EQ(made.getSyncedModelName(), u"pl\u00e4nt");
}

// ---- properties ---------------------------------------------------------------------------------

TEST_F(StreamingClientsClassTest, AssigningModelRenamesTheCollection)
{
    assign("Model", rh::makeText("a"));
    add({.modelPath = {u"a/Pult"}, .sourceModel = u"a", .paramsModelName = u"a"});
    assign("Model", rh::makeText("b"));
    EXPECT_EQ(read("Model"), "\"b\"");
    EXPECT_EQ(clients().getSyncedModelName(), u"a");
    EXPECT_EQ(clients().get(0)->getSourceModel(), u"b");
    EXPECT_EQ(valuesOf(*clients().get(0)).paramsModelName, u"b");
}

TEST_F(StreamingClientsClassTest, AssigningCountChangesNothing)
{
    add({});
    assign("Count", rh::makeDouble(7.0));
    EXPECT_EQ(read("Count"), "uint32 1");
}

TEST_F(StreamingClientsClassTest, AssigningPersistenceAppends)
{
    add(clientNamed("a"));
    const rh::OwnedValue saved = rh::ObjectAccess::getProperty(m_object.get(), "Persistence");
    assign("Persistence", saved);
    EXPECT_EQ(read("Count"), "uint32 2");
}

TEST_F(StreamingClientsClassTest, PersistenceOfAnEmptyCollectionIsARowOfNothing)
{
    EXPECT_EQ(read("Persistence").substr(0, 10), "1x0 struct");
}

TEST_F(StreamingClientsClassTest, PersistenceIsReleasedOnceAndTheOthersNever)
{
    add({});
    rh::Journal::startRecording();
    const rh::OwnedValue saved = rh::ObjectAccess::getProperty(m_object.get(), "Persistence");
    EXPECT_EQ(rh::Journal::count("releaseValue"), 1U);
    EXPECT_EQ(rh::Journal::count("nvDestroyArray"), 1U);
    rh::Journal::startRecording();
    read("Model");
    read("Count");
    EXPECT_EQ(rh::Journal::count("releaseValue"), 2U);
    EXPECT_EQ(rh::Journal::count("nvDestroyArray"), 0U);
    EXPECT_EQ(rh::elementCount(saved.get()), 1U);  // the script's own value lives on
}

TEST_F(StreamingClientsClassTest, WhatIsSavedLoadsIntoAnotherCollection)
{
    assign("Model", rh::makeText("plant"));
    ClientValues client = distinctClient();
    client.modelPath[0] = u"plant/" + client.modelPath[0];
    client.modelPathZID[0] = "plant:" + client.modelPathZID[0];
    add(client);
    const rh::OwnedValue saved = rh::ObjectAccess::getProperty(m_object.get(), "Persistence");
    const rh::OwnedValue other = rh::ObjectAccess::construct(className);
    rh::ObjectAccess::setProperty(other.get(), "Persistence", saved.get());
    EXPECT_TRUE(clients().isEqual(StreamingClients::getFromNVArray(other.get())));
    EXPECT_EQ(valuesOf(*clients().get(0)), distinctClient());
}

// ---- methods ------------------------------------------------------------------------------------

TEST_F(StreamingClientsClassTest, AddTakesTheModelNameOff)
{
    assign("Model", rh::makeText("plant"));
    add({.modelPath = {u"plant/Pult"}, .modelPathZID = {"plant:3"}});
    EXPECT_EQ(clients().get(0)->getModelPath().front(), u"Pult");
    EXPECT_EQ(clients().get(0)->getModelPathZID().front(), "3");
}

TEST_F(StreamingClientsClassTest, GetPutsTheModelNameBack)
{
    assign("Model", rh::makeText("plant"));
    add({.modelPath = {u"plant/Pult"}, .modelPathZID = {"plant:3"}});
    const rh::OwnedValue client = call("get", {rh::makeDouble(1.0).get()});
    const rh::OwnedValue path = rh::ObjectAccess::getProperty(client.get(), "ModelPath_");
    EXPECT_EQ(rh::utf8Text(rh::cell(path.get(), 0)), "plant/Pult");
}

TEST_F(StreamingClientsClassTest, SetReplacesTheClient)
{
    add(clientNamed("a"));
    add(clientNamed("b"));
    call("set", {rh::makeDouble(2.0).get(), makeClientObject(clientNamed("c")).get()});
    EXPECT_EQ(uuidAt(1.0), "a");
    EXPECT_EQ(uuidAt(2.0), "c");
}

TEST_F(StreamingClientsClassTest, RemoveTakesTheClientAway)
{
    add(clientNamed("a"));
    add(clientNamed("b"));
    call("remove", {rh::makeDouble(1.0).get()});
    EXPECT_EQ(read("Count"), "uint32 1");
    EXPECT_EQ(uuidAt(1.0), "b");
}

TEST_F(StreamingClientsClassTest, IndexZeroOfAnEmptyCollectionIsInvalidWithCountZero)
{
    EXPECT_EQ(invalidIndexCount([&] { call("remove", {rh::makeDouble(0.0).get()}); }), 0U);
}

TEST_F(StreamingClientsClassTest, IndicesZeroAndPastTheEndAreInvalidWithTheCountAndChangeNothing)
{
    add(clientNamed("a"));
    add(clientNamed("b"));
    const rh::OwnedValue client = makeClientObject(clientNamed("c"));
    for (const double index : {0.0, 3.0, 4294967295.0}) {
        const rh::OwnedValue k = rh::makeDouble(index);
        EXPECT_EQ(invalidIndexCount([&] { call("get", {k.get()}); }), 2U);
        EXPECT_EQ(invalidIndexCount([&] { call("remove", {k.get()}); }), 2U);
        EXPECT_EQ(invalidIndexCount([&] { call("set", {k.get(), client.get()}); }), 2U);
    }
    EXPECT_EQ(uuidAt(1.0), "a");
    EXPECT_EQ(uuidAt(2.0), "b");
}

TEST_F(StreamingClientsClassTest, SetChecksIndexZeroBeforeItReadsTheClient)
{
    const rh::OwnedValue client = makeClientObject({});
    rh::Journal::startRecording();
    EXPECT_EQ(invalidIndexCount([&] { call("set", {rh::makeDouble(0.0).get(), client.get()}); }), 0U);
    EXPECT_EQ(rh::Journal::count("nvGetPropertyShared"), 0U);
}

TEST_F(StreamingClientsClassTest, GetGivesAnEmptyValueAfterOneWarningWhenTheHostRefusesTheClient)
{
    add({});
    const rh::ScopedHostFunction refused("Zelmar.HMI.SignalClient", fail);
    EXPECT_EQ(rh::describe(call("get", {rh::makeDouble(1.0).get()}).get()), "0x0 double");
    expectOneWarning("Refused");
}

TEST_F(StreamingClientsClassTest, HostCodeMayRemoveTheClientThatGetIsMaking)
{
    add(clientNamed("a"));
    const rh::ScopedHostFunction removing("Zelmar.HMI.SignalClient", [&](rh::HostFunctionCall& inner) {
        call("remove", {rh::makeDouble(1.0).get()});
        inner.setOutput(0, rh::makeText("made"));
    });
    EXPECT_EQ(rh::describe(call("get", {rh::makeDouble(1.0).get()}).get()), "\"made\"");
    EXPECT_EQ(read("Count"), "uint32 0");
}

TEST_F(StreamingClientsClassTest, AClientThatCannotBeReadIsNotAdded)
{
    const rh::OwnedValue client = makeClientObject(distinctClient());
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults("nvGetPropertyShared", kind, [&] {
            const rh::OwnedValue object = rh::ObjectAccess::construct(className);
            const StreamingClients& added = *StreamingClients::getFromNVArray(object.get());
            try {
                call(object, "add", {client.get()});
            } catch (...) {  // whatever it was
                EXPECT_EQ(added.getCount(), 0U);
                throw;
            }
        });
        EXPECT_EQ(calls, 10U);
    }
}

TEST_F(StreamingClientsClassTest, EveryMethodFreesAllWhenAnOperationFails)
{
    const rh::OwnedValue client = makeClientObject(distinctClient());
    const rh::OwnedValue first = rh::makeDouble(1.0);
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            const rh::OwnedValue object = rh::ObjectAccess::construct(className);
            call(object, "add", {client.get()});
            call(object, "set", {first.get(), client.get()});
            call(object, "get", {first.get()});
            rh::ObjectAccess::setProperty(object.get(), "Persistence",
                                          rh::ObjectAccess::getProperty(object.get(), "Persistence").get());
            call(object, "remove", {first.get()});
        });
        EXPECT_GT(calls, 100U);
    }
    rh::Warnings::clear();
}

// ---- values of other types ----------------------------------------------------------------------

TEST_F(StreamingClientsClassTest, AClientOfAnotherTypeIsAHostErrorThatNamesTheArgument)
{
    const rh::OwnedValue others[] = {makePersistedClients({{}}),
                                     rh::ObjectAccess::makeObjectArray("Zelmar.HMI.SignalClient", {}),
                                     rh::ObjectAccess::construct("Zelmar.HMI.SignalSpecification"),
                                     rh::copyShared(m_object.get()),
                                     rh::makeEmptyValue(),
                                     nullptr};
    for (const rh::OwnedValue& other : others) {
        EXPECT_EQ(hostError([&] { call("add", {other.get()}); }), "WrongArgument")
            << rh::describe(other.get());
    }
    EXPECT_EQ(read("Count"), "uint32 0");
}

TEST_F(StreamingClientsClassTest, ClientsAndSignalsRefuseEachOthersElements)
{
    const rh::OwnedValue signals = rh::ObjectAccess::construct(signalsClass);
    const rh::OwnedValue client = makeClientObject({});
    EXPECT_EQ(hostError([&] { call(signals, "add", {client.get()}); }), "WrongArgument");
}

TEST_F(StreamingClientsClassTest, ClientsAndSignalsHaveNotEachOthersMethods)
{
    const rh::OwnedValue signals = rh::ObjectAccess::construct(signalsClass);
    const rh::OwnedValue index = rh::makeDouble(1.0);
    EXPECT_EQ(hostError([&] { call("getUUID", {index.get()}); }), "UnknownMethod");
    EXPECT_EQ(hostError([&] { call(signals, "StreamingClients", {}); }), "UnknownMethod");
    EXPECT_EQ(hostError([&] { call(signals, "get", {index.get()}); }), "InvalidElementIndex");
}

TEST_F(StreamingClientsClassTest, MethodsAreNotCalledOnTheClass)
{
    const rh::OwnedValue client = makeClientObject({});
    EXPECT_EQ(hostError([&] {
                  rh::ObjectAccess::callStatic(className, "add", {m_object.get(), client.get()});
              }),
              "NoObject");
}

TEST_F(StreamingClientsClassTest, MethodsAreCalledOnOneObjectAndNothingElse)
{
    const rh::OwnedValue client = makeClientObject({});
    const nvcos::COSInterfacePtr& instance = rh::objects(m_object.get()).front();
    const rh::OwnedValue others[] = {makePersistedClients({{}}), rh::makeEmptyValue(),
                                     rh::ObjectAccess::makeObjectArray(className, {}),
                                     rh::ObjectAccess::makeObjectArray(className, {instance, instance})};
    for (const rh::OwnedValue& other : others) {
        EXPECT_EQ(hostError([&] { call(other, "add", {client.get()}); }), "NoObject")
            << rh::describe(other.get());
    }
    EXPECT_EQ(hostError([&] { call(nullptr, "add", {client.get()}); }), "NullArgument");
    EXPECT_EQ(read("Count"), "uint32 0");
}

TEST_F(StreamingClientsClassTest, AnIndexThatIsNoIndexIsAHostError)
{
    add({});
    for (const double index : {-1.0, 1.5, 4294967296.0}) {
        EXPECT_EQ(hostError([&] { call("get", {rh::makeDouble(index).get()}); }), "WrongArgument");
    }
    EXPECT_EQ(hostError([&] { call("get", {rh::makeText("1").get()}); }), "WrongArgument");
    EXPECT_EQ(hostError([&] { call("get", {}); }), "TooFewArguments");
}

}  // namespace
}  // namespace zm_hmi
