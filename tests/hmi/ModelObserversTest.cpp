#include "hmi/ModelObservers.hpp"

#include "host/OwnedArray.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/ClientsTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

constexpr const char* createFunction = "Zelmar.HMI.ModelObservers.createFromSignalsAndClients";

class ModelObserversTest : public ClientsTest {
protected:
    static rh::OwnedValue makePair() { return rh::ObjectAccess::construct("Zelmar.HMI.ModelObservers"); }

    /// The pair that an instance hands out.
    static std::pair<OwnedArray, OwnedArray> split(const ModelObservers& observers)
    {
        nvArray* signals = nullptr;
        nvArray* clients = nullptr;
        observers.getSignalsAndClients(signals, clients);
        return {OwnedArray(signals), OwnedArray(clients)};
    }

    static OwnedArray create(const rh::OwnedValue& signals, const rh::OwnedValue& clients)
    {
        return OwnedArray(ModelObservers::createFromSignalsAndClients(signals.get(), clients.get()));
    }

    rh::OwnedValue m_signals = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
    rh::OwnedValue m_clients = rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients");
    const CountedHostFunction m_split{"getSignalsAndClients", rh::getSignalsAndClients};
};

TEST_F(ModelObserversTest, IsNotCopiedImplicitly)
{
    EXPECT_FALSE(std::is_copy_constructible_v<ModelObservers>);
    EXPECT_FALSE(std::is_copy_assignable_v<ModelObservers>);
}

// ---- validation ---------------------------------------------------------------------------------

/// Value and the key of the error that it has to raise, from validation and from the constructor.
void expectRefused(const rh::OwnedValue& value, const char* key)
{
    const auto keyOf = [](const auto& work) -> std::string {
        try {
            work();
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().catalog(), "dvx_hmi_foundation:errors");
            EXPECT_TRUE(error.id().arguments().empty());
            return error.id().key();
        }
        return "no error";
    };
    EXPECT_EQ(keyOf([&] { ModelObservers::validateDataFormat(value.get()); }), key);
    EXPECT_EQ(keyOf([&] { const ModelObservers observers(value.get()); }), key);
}

TEST_F(ModelObserversTest, NullAndEmptyValuesAreValid)
{
    ModelObservers::validateDataFormat(nullptr);
    ModelObservers::validateDataFormat(rh::makeEmptyValue().get());
    ModelObservers::validateDataFormat(rh::makeCells(rh::Dimensions(1, 0)).get());
}

TEST_F(ModelObserversTest, OnePairIsValid)
{
    ModelObservers::validateDataFormat(makePair().get());
}

TEST_F(ModelObserversTest, TwoElementsOfAnyClassAreRefusedForTheirNumber)
{
    const rh::OwnedValue pair = makePair();
    const nvcos::COSInterfacePtr& instance = rh::objects(pair.get()).front();
    expectRefused(rh::makeLogicals(rh::Dimensions(1, 2)), "SignalObserversSetParamNonScalar");
    expectRefused(rh::makeText("ab"), "SignalObserversSetParamNonScalar");
    expectRefused(rh::makeObjects("Zelmar.HMI.ModelObservers", rh::Dimensions(1, 2), {instance, instance}),
                  "SignalObserversSetParamNonScalar");
}

TEST_F(ModelObserversTest, OneElementOfAnotherClassIsRefusedForItsClass)
{
    expectRefused(rh::makeDouble(1.0), "SignalObserversSetParamInvalidType");
    expectRefused(rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients"),
                  "SignalObserversSetParamInvalidType");
}

TEST_F(ModelObserversTest, MessagesSpeakOfTheParameter)
{
    try {
        ModelObservers::validateDataFormat(rh::makeDouble(1.0).get());
        FAIL();
    } catch (const zmsvException& error) {
        EXPECT_STREQ(error.what(),
                     "The observers parameter must be an object of class Zelmar.HMI.ModelObservers.");
    }
}

// ---- holding ------------------------------------------------------------------------------------

TEST_F(ModelObserversTest, HoldsASharedCopyLocalFirstAndPersistentLast)
{
    const rh::OwnedValue pair = makePair();
    rh::Journal::startRecording();
    {
        const ModelObservers observers(pair.get());
        EXPECT_EQ(rh::Journal::count("nvDestroyArray"), 0U);
    }
    rh::Journal::stopRecording();
    std::vector<std::string> operations;
    for (const rh::JournalEntry& entry : rh::Journal::entries()) {
        if (entry.operation.starts_with("nvCreate") || entry.operation.starts_with("zmsvSet") ||
            entry.operation == "nvDestroyArray") {
            operations.push_back(entry.operation);
        }
    }
    EXPECT_EQ(operations, (std::vector<std::string>{"nvCreateSharedDataCopy", "zmsvSetLocalScope",
                                                    "zmsvSetPersistentScope", "nvDestroyArray"}));
}

TEST_F(ModelObserversTest, HoldsThePairWhenTheHostLetsGoOfIt)
{
    rh::OwnedValue pair = makePair();
    rh::ObjectAccess::setProperty(pair.get(), "Clients", m_clients.get());
    const ModelObservers observers(pair.get());
    pair.reset();
    const auto [signals, clients] = split(observers);
    EXPECT_EQ(StreamingClients::getFromNVArray(clients.get()),
              StreamingClients::getFromNVArray(m_clients.get()));
}

TEST_F(ModelObserversTest, AnEmptyValueIsHeldAsNothingAndSplitWithoutAHostCall)
{
    const rh::OwnedValue empty = rh::makeEmptyValue();
    const auto [signals, clients] = split(ModelObservers(empty.get()));
    EXPECT_EQ(signals, nullptr);
    EXPECT_EQ(clients, nullptr);
    EXPECT_EQ(m_split.calls(), 0U);
}

TEST_F(ModelObserversTest, HoldingFreesAllWhenAnOperationFails)
{
    const rh::OwnedValue pair = makePair();
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        EXPECT_EQ(rh::walkFaults(rh::Faults::anyOperation, kind, [&] { ModelObservers(pair.get()); }), 3U);
    }
}

// ---- splitting ----------------------------------------------------------------------------------

TEST_F(ModelObserversTest, SplittingAsksTheHostOnceForTwoOutputs)
{
    const CountedHostFunction asked("getSignalsAndClients", [](rh::HostFunctionCall& call) {
        EXPECT_EQ(call.inputs().size(), 1U);
        EXPECT_EQ(call.outputCount(), 2U);
        call.setOutput(0, rh::makeText("signals"));
        call.setOutput(1, rh::makeText("clients"));
    });
    const auto [signals, clients] = split(ModelObservers(makePair().get()));
    EXPECT_EQ(rh::utf8Text(signals.get()), "signals");
    EXPECT_EQ(rh::utf8Text(clients.get()), "clients");
    EXPECT_EQ(signals->scope, rh::Scope::Local);
    EXPECT_EQ(clients->scope, rh::Scope::Local);
    EXPECT_EQ(asked.calls(), 1U);
    expectNoWarning();
}

TEST_F(ModelObserversTest, FormerOutputsAreOverwrittenWithNull)
{
    const rh::ScopedHostFunction failing("getSignalsAndClients", fail);
    const rh::OwnedValue other = rh::makeDouble(1.0);
    nvArray* signals = other.get();
    nvArray* clients = other.get();
    ModelObservers(makePair().get()).getSignalsAndClients(signals, clients);
    EXPECT_EQ(signals, nullptr);
    EXPECT_EQ(clients, nullptr);
    expectOneWarning("Refused");
}

TEST_F(ModelObserversTest, FormerOutputsAreOverwrittenWithNullWhereNothingIsHeld)
{
    const rh::OwnedValue other = rh::makeDouble(1.0);
    nvArray* signals = other.get();
    nvArray* clients = other.get();
    ModelObservers(nullptr).getSignalsAndClients(signals, clients);
    EXPECT_EQ(signals, nullptr);
    EXPECT_EQ(clients, nullptr);
}

TEST_F(ModelObserversTest, AFailureAfterTheFirstOutputGivesNeither)
{
    const rh::ScopedHostFunction failing("getSignalsAndClients", [](rh::HostFunctionCall& call) {
        call.setOutput(0, rh::makeDouble(1.0));
        fail(call);
    });
    const auto [signals, clients] = split(ModelObservers(makePair().get()));
    EXPECT_EQ(signals, nullptr);
    EXPECT_EQ(clients, nullptr);
    expectOneWarning("Refused");
}

TEST_F(ModelObserversTest, AHostThatGivesOnlyOneOutputGivesOne)
{
    const rh::ScopedHostFunction odd("getSignalsAndClients",
                                     [](auto& call) { call.setOutput(1, rh::makeText("clients")); });
    const auto [signals, clients] = split(ModelObservers(makePair().get()));
    EXPECT_EQ(signals, nullptr);
    EXPECT_EQ(rh::utf8Text(clients.get()), "clients");
    expectNoWarning();
}

TEST_F(ModelObserversTest, HostCodeMayEndThemWhileTheyAreSplit)
{
    auto observers = std::make_unique<ModelObservers>(makePair().get());
    const rh::ScopedHostFunction ending("getSignalsAndClients", [&](rh::HostFunctionCall& call) {
        observers.reset();
        rh::getSignalsAndClients(call);
    });
    const auto [signals, clients] = split(*observers);
    EXPECT_EQ(rh::describe(clients.get()), "0x0 double");
    expectNoWarning();
}

TEST_F(ModelObserversTest, SplittingFreesAllWhenAnOperationFails)
{
    const rh::OwnedValue pair = makePair();
    const ModelObservers observers(pair.get());
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        EXPECT_EQ(rh::walkFaults(rh::Faults::anyOperation, kind, [&] { split(observers); }), 5U);
    }
    rh::Warnings::clear();
}

// ---- making -------------------------------------------------------------------------------------

TEST_F(ModelObserversTest, MadeOfBothHoldsBoth)
{
    const OwnedArray pair = create(m_signals, m_clients);
    const auto [signals, clients] = split(ModelObservers(pair.get()));
    EXPECT_TRUE(rh::isOfClass(signals.get(), "Zelmar.HMI.InstrumentedSignals"));
    EXPECT_TRUE(rh::isOfClass(clients.get(), "Zelmar.HMI.StreamingClients"));
    expectNoWarning();
}

TEST_F(ModelObserversTest, MadeOfNothingIsNullWithoutAHostCall)
{
    const CountedHostFunction asked(createFunction, giveNothing);
    EXPECT_EQ(create(nullptr, nullptr), nullptr);
    EXPECT_EQ(asked.calls(), 0U);
}

TEST_F(ModelObserversTest, AMissingHalfIsPassedAsATemporaryZeroByZeroDouble)
{
    std::vector<std::string> inputs;
    const rh::ScopedHostFunction asked(createFunction, [&](rh::HostFunctionCall& call) {
        ASSERT_EQ(call.inputs().size(), 2U);
        for (const nvArray* input : call.inputs()) {
            inputs.push_back(rh::describe(input) +
                             (input->scope == rh::Scope::Temporary ? ", temporary" : ""));
        }
    });
    create(nullptr, m_clients);
    create(m_signals, nullptr);
    EXPECT_EQ(inputs,
              (std::vector<std::string>{"0x0 double, temporary", "1x1 Zelmar.HMI.StreamingClients",
                                        "1x1 Zelmar.HMI.InstrumentedSignals", "0x0 double, temporary"}));
}

TEST_F(ModelObserversTest, MadeByAFailingHostIsNullAfterOneWarning)
{
    const rh::ScopedHostFunction failing(createFunction, fail);
    EXPECT_EQ(create(nullptr, m_clients), nullptr);
    expectOneWarning("Refused");
}

TEST_F(ModelObserversTest, MadeByAHostThatGivesNothingIsNull)
{
    const rh::ScopedHostFunction odd(createFunction, giveNothing);
    EXPECT_EQ(create(m_signals, nullptr), nullptr);
    expectNoWarning();
}

TEST_F(ModelObserversTest, MakingFreesAllWhenAnOperationFails)
{
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls =
            rh::walkFaults(rh::Faults::anyOperation, kind, [&] { create(nullptr, m_clients); });
        EXPECT_EQ(calls, 5U);  // the placeholder and its two scopes, the call, its output's scope
    }
    rh::Warnings::clear();
}

}  // namespace
}  // namespace zm_hmi
