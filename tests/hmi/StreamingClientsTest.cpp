#include "hmi/StreamingClients.hpp"

#include "host/OwnedArray.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/ClientsTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>
#include <boost/weak_ptr.hpp>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

constexpr const char* clientsClass = "Zelmar.HMI.StreamingClients";

class StreamingClientsTest : public ClientsTest {
protected:
    /// A collection of clients with these UUIDs.
    static void addNamed(StreamingClients& clients, const std::vector<std::string>& uuids)
    {
        for (const std::string& uuid : uuids) {
            clients.add(makeClient(clientNamed(uuid)));
        }
    }

    static std::vector<std::string> uuidsOf(const StreamingClients& clients)
    {
        std::vector<std::string> uuids;
        for (std::size_t i = 0; i < clients.getCount(); ++i) {
            uuids.push_back(clients.get(i)->getUUID());
        }
        return uuids;
    }

    StreamingClients m_clients;
};

using Uuids = std::vector<std::string>;

TEST_F(StreamingClientsTest, IsNotCopiedImplicitly)
{
    EXPECT_FALSE(std::is_copy_constructible_v<StreamingClients>);
    EXPECT_FALSE(std::is_copy_assignable_v<StreamingClients>);
}

TEST_F(StreamingClientsTest, StartsWithoutNamesAndClients)
{
    EXPECT_EQ(m_clients.getCount(), 0U);
    EXPECT_EQ(m_clients.getModelName(), u"");
    EXPECT_EQ(m_clients.getSyncedModelName(), u"");
}

// ---- host values --------------------------------------------------------------------------------

TEST_F(StreamingClientsTest, NullAndEmptyValuesAreOfAValidType)
{
    EXPECT_TRUE(StreamingClients::isValidType(nullptr));
    EXPECT_TRUE(StreamingClients::isValidType(rh::makeEmptyValue().get()));
    EXPECT_TRUE(StreamingClients::isValidType(rh::makeText("").get()));
    EXPECT_TRUE(StreamingClients::isValidType(rh::ObjectAccess::makeObjectArray(clientsClass, {}).get()));
}

TEST_F(StreamingClientsTest, OneObjectOfTheClassIsOfAValidType)
{
    EXPECT_TRUE(StreamingClients::isValidType(rh::ObjectAccess::construct(clientsClass).get()));
}

TEST_F(StreamingClientsTest, TwoObjectsAreNotOfAValidType)
{
    const rh::OwnedValue object = rh::ObjectAccess::construct(clientsClass);
    const nvcos::COSInterfacePtr& instance = rh::objects(object.get()).front();
    const rh::OwnedValue two = rh::makeObjects(clientsClass, rh::Dimensions(1, 2), {instance, instance});
    EXPECT_FALSE(StreamingClients::isValidType(two.get()));
}

TEST_F(StreamingClientsTest, OtherValuesAreNotOfAValidType)
{
    EXPECT_FALSE(StreamingClients::isValidType(rh::makeDouble(1.0).get()));
    EXPECT_FALSE(StreamingClients::isValidType(makePersistedClients({{}}).get()));
    EXPECT_FALSE(
        StreamingClients::isValidType(rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals").get()));
}

TEST_F(StreamingClientsTest, NoCollectionIsBehindNullAndEmptyValues)
{
    EXPECT_EQ(StreamingClients::getFromNVArray(nullptr), nullptr);
    EXPECT_EQ(StreamingClients::getFromNVArray(rh::makeEmptyValue().get()), nullptr);
}

TEST_F(StreamingClientsTest, EachObjectHasOneCollectionBehindIt)
{
    const rh::OwnedValue object = rh::ObjectAccess::construct(clientsClass);
    const rh::OwnedValue handle = rh::copyDeep(object.get());
    const rh::OwnedValue other = rh::ObjectAccess::construct(clientsClass);
    EXPECT_NE(StreamingClients::getFromNVArray(object.get()), nullptr);
    EXPECT_EQ(StreamingClients::getFromNVArray(object.get()), StreamingClients::getFromNVArray(handle.get()));
    EXPECT_NE(StreamingClients::getFromNVArray(object.get()), StreamingClients::getFromNVArray(other.get()));
}

TEST_F(StreamingClientsTest, TheFirstObjectOfAnArrayDecidesWhichCollection)
{
    const rh::OwnedValue first = rh::ObjectAccess::construct(clientsClass);
    const rh::OwnedValue second = rh::ObjectAccess::construct(clientsClass);
    const rh::OwnedValue both = rh::ObjectAccess::makeObjectArray(
        clientsClass, {rh::objects(first.get()).front(), rh::objects(second.get()).front()});
    EXPECT_EQ(StreamingClients::getFromNVArray(both.get()), StreamingClients::getFromNVArray(first.get()));
}

// ---- elements -----------------------------------------------------------------------------------

TEST_F(StreamingClientsTest, KeepsClientsInTheOrderOfAdding)
{
    addNamed(m_clients, {"a", "b", "c"});
    EXPECT_EQ(uuidsOf(m_clients), (Uuids{"a", "b", "c"}));
}

TEST_F(StreamingClientsTest, SharesTheClientsThatAreAdded)
{
    const SignalClientPtr client = makeClient({});
    m_clients.add(client);
    EXPECT_EQ(m_clients.get(0), client.get());
    EXPECT_EQ(m_clients.getShared(0), client);
}

TEST_F(StreamingClientsTest, SettingReplacesAndReleasesTheFormerClient)
{
    addNamed(m_clients, {"a", "b"});
    const boost::weak_ptr<SignalClient> former = m_clients.getShared(1);
    m_clients.set(1, makeClient(clientNamed("c")));
    EXPECT_EQ(uuidsOf(m_clients), (Uuids{"a", "c"}));
    EXPECT_TRUE(former.expired());
}

TEST_F(StreamingClientsTest, RemovingMovesTheLaterOnesDown)
{
    addNamed(m_clients, {"a", "b", "c"});
    m_clients.remove(1);
    EXPECT_EQ(uuidsOf(m_clients), (Uuids{"a", "c"}));
}

TEST_F(StreamingClientsTest, AnIndexIntoAnEmptyCollectionIsInvalidWithCountZero)
{
    EXPECT_EQ(invalidIndexCount([&] { m_clients.get(0); }), 0U);
}

TEST_F(StreamingClientsTest, AnIndexPastTheEndIsInvalidWithTheCountAndChangesNothing)
{
    addNamed(m_clients, {"a", "b", "c"});
    EXPECT_EQ(invalidIndexCount([&] { m_clients.get(7); }), 3U);
    EXPECT_EQ(invalidIndexCount([&] { m_clients.get(3); }), 3U);
    EXPECT_EQ(invalidIndexCount([&] { m_clients.set(3, makeClient({})); }), 3U);
    EXPECT_EQ(invalidIndexCount([&] { m_clients.remove(3); }), 3U);
    EXPECT_EQ(uuidsOf(m_clients), (Uuids{"a", "b", "c"}));
}

// ---- isEqual ------------------------------------------------------------------------------------

TEST_F(StreamingClientsTest, EqualClientsUnderOtherModelNamesAreEqual)
{
    StreamingClients other;
    m_clients.setModelName(u"a");
    other.setModelName(u"b");
    for (StreamingClients* clients : {&m_clients, &other}) {
        clients->add(makeClient(distinctClient()));
        clients->add(makeClient({}));
    }
    EXPECT_TRUE(m_clients.isEqual(&other));
    EXPECT_TRUE(other.isEqual(&m_clients));
}

TEST_F(StreamingClientsTest, CollectionsOfDifferentSizesDifferWithoutAskingTheHost)
{
    StreamingClients other;
    addNamed(m_clients, {"a", "b"});
    addNamed(other, {"a"});
    const CountedHostFunction isEqual("isequal", rh::isEqual);
    EXPECT_FALSE(m_clients.isEqual(&other));
    EXPECT_FALSE(other.isEqual(&m_clients));
    EXPECT_EQ(isEqual.calls(), 0U);
}

TEST_F(StreamingClientsTest, ComparingStopsAtTheFirstDifference)
{
    StreamingClients other;
    addNamed(m_clients, {"a", "b", "c"});
    addNamed(other, {"a", "x", "c"});
    const CountedHostFunction isEqual("isequal", rh::isEqual);
    EXPECT_FALSE(m_clients.isEqual(&other));
    EXPECT_EQ(isEqual.calls(), 1U);
}

TEST_F(StreamingClientsTest, OrderCounts)
{
    StreamingClients other;
    addNamed(m_clients, {"a", "b"});
    addNamed(other, {"b", "a"});
    EXPECT_FALSE(m_clients.isEqual(&other));
}

TEST_F(StreamingClientsTest, AFailingComparisonPassesThrough)
{
    StreamingClients other;
    addNamed(m_clients, {"a"});
    addNamed(other, {"a"});
    const rh::ScopedHostFunction failing("isequal", fail);
    EXPECT_EQ(hostError([&] { m_clients.isEqual(&other); }), "Refused");
}

TEST_F(StreamingClientsTest, HostCodeMayEmptyBothCollectionsWhileTheyAreCompared)
{
    StreamingClients other;
    addNamed(m_clients, {"a", "b"});
    addNamed(other, {"a", "b"});
    const rh::ScopedHostFunction emptying("isequal", [&](rh::HostFunctionCall& call) {
        for (StreamingClients* clients : {&m_clients, &other}) {
            while (clients->getCount() > 0) {
                clients->remove(0);
            }
        }
        rh::isEqual(call);
    });
    m_clients.isEqual(&other);
    EXPECT_EQ(m_clients.getCount(), 0U);
}

// ---- model names --------------------------------------------------------------------------------

TEST_F(StreamingClientsTest, TheFirstNamingSetsBothNames)
{
    m_clients.setModelName(u"a");
    EXPECT_EQ(m_clients.getModelName(), u"a");
    EXPECT_EQ(m_clients.getSyncedModelName(), u"a");
}

TEST_F(StreamingClientsTest, ALaterNamingKeepsTheSyncedName)
{
    m_clients.setModelName(u"a");
    m_clients.setModelName(u"b");
    EXPECT_EQ(m_clients.getModelName(), u"b");
    EXPECT_EQ(m_clients.getSyncedModelName(), u"a");
}

TEST_F(StreamingClientsTest, NamingAfterTheNameWasTakenAwayCountsAsTheFirst)
{
    m_clients.setModelName(u"a");
    m_clients.setModelName(u"");
    EXPECT_EQ(m_clients.getSyncedModelName(), u"a");
    m_clients.setModelName(u"c");
    EXPECT_EQ(m_clients.getSyncedModelName(), u"c");
}

TEST_F(StreamingClientsTest, NamingRenamesEveryClientFromTheFormerName)
{
    m_clients.setModelName(u"a");
    m_clients.add(makeClient({.sourceModel = u"a", .paramsModelName = u"a"}));
    m_clients.add(makeClient({}));
    m_clients.add(makeClient({.sourceModel = u"c", .paramsModelName = u"c"}));
    m_clients.setModelName(u"b");
    EXPECT_EQ(m_clients.get(0)->getSourceModel(), u"b");
    EXPECT_EQ(m_clients.get(1)->getSourceModel(), u"b");
    EXPECT_EQ(m_clients.get(2)->getSourceModel(), u"c");
    EXPECT_EQ(valuesOf(*m_clients.get(0)).paramsModelName, u"b");
    EXPECT_EQ(valuesOf(*m_clients.get(2)).paramsModelName, u"b");
}

TEST_F(StreamingClientsTest, TheNewNameMayBeOneOfTheCollectionsOwn)
{
    m_clients.setModelName(u"a");
    m_clients.setModelName(u"b");
    m_clients.setModelName(m_clients.getSyncedModelName());
    EXPECT_EQ(m_clients.getModelName(), u"a");
    m_clients.setModelName(m_clients.getModelName());
    EXPECT_EQ(m_clients.getModelName(), u"a");
}

TEST_F(StreamingClientsTest, TheNewNameMayBeAClientsText)
{
    addNamed(m_clients, {"x", "y"});
    m_clients.get(0)->setSourceModel(u"from a client");
    m_clients.setModelName(m_clients.get(0)->getSourceModel());
    EXPECT_EQ(m_clients.get(1)->getSourceModel(), u"from a client");
}

// ---- persisted form -----------------------------------------------------------------------------

TEST_F(StreamingClientsTest, AnEmptyCollectionIsSavedAsAOneByZeroStructOfAllFields)
{
    const OwnedArray data = m_clients.getPersistenceData();
    EXPECT_TRUE(rh::isStruct(data.get()));
    EXPECT_EQ(rh::dimensions(data.get()).text(), "1x0");
    EXPECT_EQ(rh::fieldNames(data.get()), std::vector<std::string>(SignalClient::getStructFields(),
                                                                   SignalClient::getStructFields() + 11));
}

TEST_F(StreamingClientsTest, IsSavedAsARowWithOneElementAClientAndNothingElse)
{
    m_clients.setModelName(u"plant");
    m_clients.add(makeClient(distinctClient()));
    m_clients.add(makeClient(clientNamed("b")));
    const OwnedArray data = m_clients.getPersistenceData();
    EXPECT_EQ(rh::dimensions(data.get()).text(), "1x2");
    EXPECT_EQ(rh::fieldNames(data.get()).size(), 11U);
    EXPECT_EQ(valuesOf(SignalClient(data.get(), 0, u"")), distinctClient());
    EXPECT_EQ(valuesOf(SignalClient(data.get(), 1, u"")), clientNamed("b"));
}

TEST_F(StreamingClientsTest, LoadingTwiceAppendsTwice)
{
    const rh::OwnedValue data = makePersistedClients({clientNamed("a"), clientNamed("b")});
    m_clients.setFromPersistenceData(data.get());
    m_clients.setFromPersistenceData(data.get());
    EXPECT_EQ(uuidsOf(m_clients), (Uuids{"a", "b", "a", "b"}));
}

TEST_F(StreamingClientsTest, LoadingDoesNotApplyTheModelName)
{
    m_clients.setModelName(u"plant");
    m_clients.setFromPersistenceData(makePersistedClients({{.modelPath = {u"plant/Pult"}}}).get());
    EXPECT_EQ(m_clients.get(0)->getModelPath().front(), u"plant/Pult");
    EXPECT_EQ(m_clients.get(0)->getSourceModel(), u"");
}

TEST_F(StreamingClientsTest, LoadingNothingDoesNothing)
{
    m_clients.setFromPersistenceData(nullptr);
    m_clients.setFromPersistenceData(rh::makeEmptyValue().get());
    m_clients.setFromPersistenceData(makePersistedClients({}).get());
    EXPECT_EQ(m_clients.getCount(), 0U);
}

TEST_F(StreamingClientsTest, LoadingTakesStructArraysOfAnyShape)
{
    rh::OwnedValue data = rh::makeStruct(rh::Dimensions(2, 2), {"UUID"});
    m_clients.setFromPersistenceData(data.get());
    EXPECT_EQ(m_clients.getCount(), 4U);
}

TEST_F(StreamingClientsTest, WhenOneCannotBeLoadedThoseBeforeItStay)
{
    addNamed(m_clients, {"first"});
    rh::OwnedValue data = makePersistedClients({clientNamed("a"), clientNamed("b"), clientNamed("c")});
    rh::replaceField(data.get(), 1, "UUID", rh::makeDouble(1.0));
    EXPECT_EQ(hostError([&] { m_clients.setFromPersistenceData(data.get()); }), "WrongClass");
    EXPECT_EQ(uuidsOf(m_clients), (Uuids{"first", "a"}));
}

TEST_F(StreamingClientsTest, SavingAndLoadingFreeAllWhenAnOperationFails)
{
    m_clients.add(makeClient(distinctClient()));
    m_clients.add(makeClient({}));
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            const OwnedArray data = m_clients.getPersistenceData();
            StreamingClients loaded;
            loaded.setFromPersistenceData(data.get());
        });
        EXPECT_GT(calls, 80U);
    }
}

// ---- copy ---------------------------------------------------------------------------------------

TEST_F(StreamingClientsTest, ACopyIsANewObjectWithBothNamesAndClonesOfTheClients)
{
    m_clients.setModelName(u"a");
    m_clients.add(makeClient(distinctClient()));
    m_clients.setModelName(u"b");
    const OwnedArray object = m_clients.copy();
    ASSERT_TRUE(rh::isOfClass(object.get(), clientsClass));
    const StreamingClients& copy = *StreamingClients::getFromNVArray(object.get());
    EXPECT_EQ(copy.getModelName(), u"b");
    EXPECT_EQ(copy.getSyncedModelName(), u"a");
    ASSERT_EQ(copy.getCount(), 1U);
    EXPECT_NE(copy.get(0), m_clients.get(0));
    EXPECT_TRUE(copy.isEqual(&m_clients));
}

TEST_F(StreamingClientsTest, ACopyFailsWhenTheHostMakesNoObject)
{
    const rh::ScopedHostFunction failing(clientsClass, fail);
    EXPECT_EQ(hostError([&] { m_clients.copy(); }), "Refused");
    expectNoWarning();
}

TEST_F(StreamingClientsTest, ACopyIntoAnObjectWithoutACollectionIsAnError)
{
    const rh::ScopedHostFunction odd(clientsClass, giveNothing);
    EXPECT_EQ(hostError([&] { m_clients.copy(); }), "NoCollection");
}

TEST_F(StreamingClientsTest, ACopyIntoItselfKeepsTheClients)
{
    const rh::OwnedValue object = rh::ObjectAccess::construct(clientsClass);
    StreamingClients& clients = *StreamingClients::getFromNVArray(object.get());
    addNamed(clients, {"a", "b"});
    clients.setModelName(u"m");
    const rh::ScopedHostFunction same(clientsClass,
                                      [&](auto& call) { call.setOutput(0, rh::copyShared(object.get())); });
    const OwnedArray copy = clients.copy();
    EXPECT_EQ(uuidsOf(clients), (Uuids{"a", "b"}));
    EXPECT_EQ(clients.getModelName(), u"m");
}

TEST_F(StreamingClientsTest, CopyingFreesAllWhenAnOperationFails)
{
    m_clients.add(makeClient(distinctClient()));
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls =
            rh::walkFaults(rh::Faults::anyOperation, kind, [&] { const OwnedArray copy = m_clients.copy(); });
        EXPECT_GE(calls, 5U);
    }
}

TEST_F(StreamingClientsTest, NoCollectionEqualsNull)
{
    EXPECT_FALSE(StreamingClients().isEqual(nullptr));
}

// ---- a rename that fails halfway ----------------------------------------------------------------

TEST_F(StreamingClientsTest, ARetryCompletesARenameThatFailed)
{
    StreamingClients clients;
    clients.setModelName(u"a");
    for (int i = 0; i < 2; ++i) {
        clients.add(makeClient({.sourceModel = u"a", .paramsModelName = u"a"}));
    }
    rh::Faults::arm("nvReplaceField", rh::FaultKind::HostException, 2);
    EXPECT_THROW(clients.setModelName(u"b"), zmsvException);
    EXPECT_TRUE(rh::Faults::disarm());
    EXPECT_EQ(clients.getModelName(), u"a");
    EXPECT_EQ(clients.get(0)->getSourceModel(), u"b");
    EXPECT_EQ(clients.get(1)->getSourceModel(), u"a");
    clients.setModelName(u"b");
    EXPECT_EQ(clients.getModelName(), u"b");
    EXPECT_EQ(clients.getSyncedModelName(), u"a");
    EXPECT_EQ(valuesOf(*clients.get(1)), valuesOf(*clients.get(0)));
}

TEST_F(StreamingClientsTest, AFirstNamingThatFailedAndIsRetriedIsNoRename)
{
    StreamingClients clients;
    clients.add(makeClient({.paramsModelName = u""}));
    rh::Faults::arm("nvReplaceField", rh::FaultKind::OutOfMemory, 1);
    EXPECT_THROW(clients.setModelName(u"a"), zmsvOutOfMemoryException);
    EXPECT_TRUE(rh::Faults::disarm());
    EXPECT_EQ(clients.getModelName(), u"");
    clients.setModelName(u"a");
    EXPECT_EQ(clients.getSyncedModelName(), u"a");
}

}  // namespace
}  // namespace zm_hmi
