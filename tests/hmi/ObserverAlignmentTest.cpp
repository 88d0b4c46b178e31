#include "hmi/StreamingClients.hpp"

#include "reference_host/calls/Faults.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/ClientsTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

constexpr const char* clientClass = "Zelmar.HMI.SignalClient";

class ObserverAlignmentTest : public ClientsTest {
protected:
    StreamingClients& clients() const { return *StreamingClients::getFromNVArray(m_object.get()); }

    /// An array of client objects.
    static rh::OwnedValue makeClientObjects(const std::vector<ClientValues>& values)
    {
        std::vector<nvcos::COSInterfacePtr> instances;
        for (const ClientValues& client : values) {
            instances.push_back(rh::objects(makeClientObject(client).get()).front());
        }
        return rh::ObjectAccess::makeObjectArray(clientClass, instances);
    }

    /// A host function that gives these clients.
    static rh::HostFunction give(std::vector<ClientValues> values)
    {
        return [values = std::move(values)](rh::HostFunctionCall& call) {
            call.setOutput(0, makeClientObjects(values));
        };
    }

    rh::OwnedValue m_object = rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients");
    std::vector<SignalClientPtr> m_observers;
};

// ---- getAlignedObservers ------------------------------------------------------------------------

TEST_F(ObserverAlignmentTest, ObserversAreWhatTheHostGivesWithoutTheModelName)
{
    clients().setModelName(u"m");
    const rh::ScopedHostFunction aligned("getAlignedObservers", give({clientNamed("a"),
                                                                      {.uuid = "b",
                                                                       .modelPath = {u"m/Pult", u"m/x"},
                                                                       .modelPathZID = {"m:3", "m:4"},
                                                                       .sourceModel = u"m"}}));
    StreamingClients::getAlignedObservers(m_object.get(), m_observers);
    ASSERT_EQ(m_observers.size(), 2U);
    EXPECT_EQ(m_observers[0]->getUUID(), "a");
    EXPECT_EQ(m_observers[1]->getModelPath(), (std::vector<std::u16string>{u"Pult", u"m/x"}));
    EXPECT_EQ(m_observers[1]->getModelPathZID(), (std::vector<std::string>{"3", "m:4"}));
    expectNoWarning();
}

TEST_F(ObserverAlignmentTest, TheHostIsAskedOnceWithTheCollection)
{
    std::vector<std::string> inputs;
    const rh::ScopedHostFunction asked("getAlignedObservers", [&](rh::HostFunctionCall& call) {
        EXPECT_EQ(call.outputCount(), 1U);
        for (const nvArray* input : call.inputs()) {
            inputs.push_back(rh::className(input));
            EXPECT_EQ(StreamingClients::getFromNVArray(input), &clients());
        }
    });
    StreamingClients::getAlignedObservers(m_object.get(), m_observers);
    EXPECT_EQ(inputs, std::vector<std::string>{"Zelmar.HMI.StreamingClients"});
}

TEST_F(ObserverAlignmentTest, FormerObserversAreDropped)
{
    m_observers = {makeClient({}), makeClient({})};
    const rh::ScopedHostFunction aligned("getAlignedObservers", give({}));
    StreamingClients::getAlignedObservers(m_object.get(), m_observers);
    EXPECT_TRUE(m_observers.empty());
    expectNoWarning();
}

TEST_F(ObserverAlignmentTest, AHostThatGivesNothingGivesNoObservers)
{
    const rh::ScopedHostFunction odd("getAlignedObservers", giveNothing);
    StreamingClients::getAlignedObservers(m_object.get(), m_observers);
    EXPECT_TRUE(m_observers.empty());
    expectNoWarning();
}

TEST_F(ObserverAlignmentTest, AFailingHostLeavesNoObserversAndOneWarning)
{
    m_observers = {makeClient({})};
    const rh::ScopedHostFunction failing("getAlignedObservers", fail);
    StreamingClients::getAlignedObservers(m_object.get(), m_observers);
    EXPECT_TRUE(m_observers.empty());
    expectOneWarning("Refused");
}

TEST_F(ObserverAlignmentTest, NullClearsWithoutAHostCall)
{
    m_observers = {makeClient({})};
    const CountedHostFunction asked("getAlignedObservers", giveNothing);
    StreamingClients::getAlignedObservers(nullptr, m_observers);
    EXPECT_TRUE(m_observers.empty());
    EXPECT_EQ(asked.calls(), 0U);
}

TEST_F(ObserverAlignmentTest, AnEmptyValueIsPassedOnAndNoModelNameIsTakenOff)
{
    const rh::ScopedHostFunction aligned("getAlignedObservers", give({{.modelPath = {u"m/Pult"}}}));
    StreamingClients::getAlignedObservers(rh::makeEmptyValue().get(), m_observers);
    ASSERT_EQ(m_observers.size(), 1U);
    EXPECT_EQ(m_observers[0]->getModelPath().front(), u"m/Pult");
}

TEST_F(ObserverAlignmentTest, AnAnswerOfAnotherClassIsAHostError)
{
    const rh::ScopedHostFunction odd("getAlignedObservers",
                                     [](auto& call) { call.setOutput(0, rh::makeDouble(1.0)); });
    EXPECT_EQ(hostError([&] { StreamingClients::getAlignedObservers(m_object.get(), m_observers); }),
              "NoObject");
    EXPECT_TRUE(m_observers.empty());
}

TEST_F(ObserverAlignmentTest, AnObserverThatCannotBeReadLeavesThoseBeforeIt)
{
    const rh::ScopedHostFunction aligned("getAlignedObservers", give({clientNamed("a"), clientNamed("b")}));
    rh::Faults::arm("omCreateNVCOSScalar", rh::FaultKind::HostException, 2);
    EXPECT_EQ(hostError([&] { StreamingClients::getAlignedObservers(m_object.get(), m_observers); }),
              "InjectedFault");
    ASSERT_EQ(m_observers.size(), 1U);
    EXPECT_EQ(m_observers[0]->getUUID(), "a");
}

TEST_F(ObserverAlignmentTest, AligningFreesAllWhenAnOperationFails)
{
    const rh::ScopedHostFunction aligned("getAlignedObservers", give({distinctClient()}));
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            std::vector<SignalClientPtr> observers;
            StreamingClients::getAlignedObservers(m_object.get(), observers);
        });
        EXPECT_GT(calls, 25U);
    }
    rh::Warnings::clear();
}

// ---- handleModelRename --------------------------------------------------------------------------

/// The renames that "renameModel" was told, as "old>new".
class ModelRenameTest : public ObserverAlignmentTest {
protected:
    const CountedHostFunction m_getManager{"Zelmar.HMI.InterfaceMgr.getInterfaceMgr", [](auto& call) {
                                               EXPECT_EQ(call.inputs().size(), 0U);
                                               EXPECT_EQ(call.outputCount(), 1U);
                                               call.setOutput(0, rh::makeText("the manager"));
                                           }};
    const CountedHostFunction m_renameModel{
        "renameModel", [this](rh::HostFunctionCall& call) {
            ASSERT_EQ(call.inputs().size(), 3U);
            EXPECT_EQ(call.outputCount(), 0U);
            EXPECT_EQ(call.input(1)->scope, rh::Scope::Temporary);
            EXPECT_EQ(call.input(2)->scope, rh::Scope::Temporary);
            m_managers.push_back(rh::elementCount(call.input(0)) > 0 ? rh::utf8Text(call.input(0)) : "none");
            m_renames.push_back(rh::utf8Text(call.input(1)) + ">" + rh::utf8Text(call.input(2)));
        }};
    const rh::ScopedHostFunction m_validate{"validateAndRemoveUnused", giveNothing};
    std::vector<std::string> m_managers;
    std::vector<std::string> m_renames;
};

using Renames = std::vector<std::string>;

TEST_F(ModelRenameTest, IsAnnouncedToTheManagerEachTimeUntilValidationHasRun)
{
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_managers, Renames{"the manager"});
    EXPECT_EQ(m_renames, Renames{"a>b"});
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_renames, (Renames{"a>b", "a>b"}));
    StreamingClients::validateAndRemoveUnused(m_object.get());
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_renames, (Renames{"a>b", "a>b"}));
    expectNoWarning();
}

TEST_F(ModelRenameTest, RightAfterValidationCallsNoHostFunction)
{
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    StreamingClients::validateAndRemoveUnused(m_object.get());
    rh::Journal::startRecording();
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(rh::Journal::count("zmsvFEVAL_NoThrow"), 0U);
    EXPECT_EQ(m_getManager.calls(), 0U);
}

TEST_F(ModelRenameTest, AFirstNamingIsNotAnnounced)
{
    clients().setModelName(u"a");
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_getManager.calls(), 0U);
}

TEST_F(ModelRenameTest, TwoEmptyNamesAreNoRename)
{
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_getManager.calls(), 0U);
}

TEST_F(ModelRenameTest, NamesAreComparedToTheLetter)
{
    clients().setModelName(u"a");
    clients().setModelName(u"A");
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_renames, Renames{"a>A"});
}

TEST_F(ModelRenameTest, ATakenAwayNameIsAnnounced)
{
    clients().setModelName(u"a");
    clients().setModelName(u"");
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_renames, Renames{"a>"});
}

TEST_F(ModelRenameTest, OfNoCollectionDoesNothing)
{
    StreamingClients::handleModelRename(nullptr);
    StreamingClients::handleModelRename(rh::makeEmptyValue().get());
    EXPECT_EQ(m_getManager.calls(), 0U);
}

TEST_F(ModelRenameTest, WithoutAManagerIsNotAnnouncedAndGivesOneWarning)
{
    const rh::ScopedHostFunction failing("Zelmar.HMI.InterfaceMgr.getInterfaceMgr", fail);
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_renameModel.calls(), 0U);
    expectOneWarning("Refused");
    EXPECT_EQ(clients().getSyncedModelName(), u"a");
}

TEST_F(ModelRenameTest, AManagerThatIsNothingIsPassedAsAnEmptyValue)
{
    const rh::ScopedHostFunction odd("Zelmar.HMI.InterfaceMgr.getInterfaceMgr", giveNothing);
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    StreamingClients::handleModelRename(m_object.get());
    EXPECT_EQ(m_managers, Renames{"none"});
    expectNoWarning();
}

TEST_F(ModelRenameTest, ARefusedAnnouncementGivesOneWarning)
{
    const rh::ScopedHostFunction failing("renameModel", fail);
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    StreamingClients::handleModelRename(m_object.get());
    expectOneWarning("Refused");
    EXPECT_EQ(clients().getSyncedModelName(), u"a");
    EXPECT_EQ(clients().getModelName(), u"b");
}

TEST_F(ModelRenameTest, FreesAllWhenAnOperationFails)
{
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults(rh::Faults::anyOperation, kind,
                                          [&] { StreamingClients::handleModelRename(m_object.get()); });
        EXPECT_GE(calls, 8U);
    }
    rh::Warnings::clear();
}

// ---- validateAndRemoveUnused --------------------------------------------------------------------

TEST_F(ObserverAlignmentTest, ValidationAsksTheHostOnceWithTheNameSynced)
{
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    const CountedHostFunction validate("validateAndRemoveUnused", [&](rh::HostFunctionCall& call) {
        ASSERT_EQ(call.inputs().size(), 1U);
        EXPECT_EQ(call.outputCount(), 0U);
        EXPECT_EQ(StreamingClients::getFromNVArray(call.input(0)), &clients());
        EXPECT_EQ(clients().getSyncedModelName(), u"b");
    });
    StreamingClients::validateAndRemoveUnused(m_object.get());
    EXPECT_EQ(validate.calls(), 1U);
    expectNoWarning();
}

TEST_F(ObserverAlignmentTest, HostCodeMayRemoveClientsWhileTheyAreValidated)
{
    clients().add(makeClient(clientNamed("a")));
    clients().add(makeClient(clientNamed("b")));
    const rh::ScopedHostFunction validate("validateAndRemoveUnused", [](rh::HostFunctionCall& call) {
        rh::ObjectAccess::callMethod(call.input(0), "remove", {rh::makeDouble(1.0).get()});
    });
    StreamingClients::validateAndRemoveUnused(m_object.get());
    ASSERT_EQ(clients().getCount(), 1U);
    EXPECT_EQ(clients().get(0)->getUUID(), "b");
}

TEST_F(ObserverAlignmentTest, AFailingValidationGivesOneWarningAndTheNameIsSyncedAllTheSame)
{
    clients().setModelName(u"a");
    clients().setModelName(u"b");
    const rh::ScopedHostFunction failing("validateAndRemoveUnused", fail);
    StreamingClients::validateAndRemoveUnused(m_object.get());
    expectOneWarning("Refused");
    EXPECT_EQ(clients().getSyncedModelName(), u"b");
}

TEST_F(ObserverAlignmentTest, ValidatingNoCollectionDoesNothing)
{
    const CountedHostFunction validate("validateAndRemoveUnused", giveNothing);
    StreamingClients::validateAndRemoveUnused(nullptr);
    StreamingClients::validateAndRemoveUnused(rh::makeEmptyValue().get());
    EXPECT_EQ(validate.calls(), 0U);
}

TEST_F(ObserverAlignmentTest, AValueOfAnotherClassHasNoClientsBehindIt)
{
    const rh::ScopedHostFunction asked("getAlignedObservers", give({clientNamed("a")}));
    const CountedHostFunction getManager("Zelmar.HMI.InterfaceMgr.getInterfaceMgr", giveNothing);
    const CountedHostFunction validate("validateAndRemoveUnused", giveNothing);
    const rh::OwnedValue signals =
        rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals", {rh::makeText("m").get()});
    const rh::OwnedValue number = rh::makeDouble(1.0);
    for (const nvArray* value : {signals.get(), number.get()}) {
        StreamingClients::getAlignedObservers(value, m_observers);
        EXPECT_EQ(m_observers.size(), 1U);
        StreamingClients::handleModelRename(value);
        StreamingClients::validateAndRemoveUnused(value);
    }
    EXPECT_EQ(getManager.calls(), 0U);
    EXPECT_EQ(validate.calls(), 0U);
    EXPECT_EQ(rh::scalar(rh::ObjectAccess::getProperty(signals.get(), "Count").get()), 0.0);
}

TEST_F(ObserverAlignmentTest, OfAnArrayOfCollectionsTheFirstCounts)
{
    const rh::OwnedValue other = rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients");
    const rh::OwnedValue both = rh::ObjectAccess::makeObjectArray(
        "Zelmar.HMI.StreamingClients",
        {rh::objects(m_object.get()).front(), rh::objects(other.get()).front()});
    clients().setModelName(u"m");
    clients().setModelName(u"n");
    const rh::ScopedHostFunction aligned("getAlignedObservers", give({{.modelPath = {u"n/Pult"}}}));
    StreamingClients::getAlignedObservers(both.get(), m_observers);
    ASSERT_EQ(m_observers.size(), 1U);
    EXPECT_EQ(m_observers[0]->getModelPath().front(), u"Pult");

    const CountedHostFunction manager("Zelmar.HMI.InterfaceMgr.getInterfaceMgr", giveNothing);
    const CountedHostFunction renaming("renameModel", giveNothing);
    StreamingClients::handleModelRename(both.get());
    EXPECT_EQ(renaming.calls(), 1U);

    const CountedHostFunction validation("validateAndRemoveUnused", giveNothing);
    StreamingClients::validateAndRemoveUnused(both.get());
    EXPECT_EQ(validation.calls(), 1U);
    EXPECT_EQ(clients().getSyncedModelName(), u"n");
}

}  // namespace
}  // namespace zm_hmi
