#include "reference_host/observers/ClientFunctions.hpp"

#include "tests/reference_host/observers/ObserversTest.hpp"

namespace reference_host {

namespace {

class ObserverValidationTest : public ObserversTest {
protected:
    void SetUp() override
    {
        ObserversTest::SetUp();
        addSignal(m_gain, 1, "signal");
        setObservers();
    }

    void validate() const
    {
        const std::vector<const nvArray*> inputs{m_clients.get()};
        HostFunctions::call("validateAndRemoveUnused", inputs, 0);
    }

    /// A client on a block that the model does not have.
    void addLost(const char* uuid, const char* signalUUID) const
    {
        const OwnedValue client = makeClient(nullptr, uuid, signalUUID);
        ObjectAccess::setProperty(client.get(), "ModelPath_", makeCell(u"plant/Nowhere").get());
        ObjectAccess::setProperty(client.get(), "ModelPathZID_", makeCell(u"plant:99").get());
        ObjectAccess::callMethod(m_clients.get(), "add", {client.get()});
    }
};

using Uuids = std::vector<std::string>;

TEST_F(ObserverValidationTest, ClientsWithBlockAndSignalStay)
{
    addClient(&m_gauge, "a", "signal");
    addClient(&m_lamp, "b", "signal");
    validate();
    EXPECT_EQ(clientUUIDs(), (Uuids{"a", "b"}));
}

TEST_F(ObserverValidationTest, ClientsWhoseBlockIsGoneAreRemoved)
{
    addLost("a", "signal");
    addClient(&m_gauge, "b", "signal");
    addLost("c", "signal");
    validate();
    EXPECT_EQ(clientUUIDs(), Uuids{"b"});
}

TEST_F(ObserverValidationTest, ClientsWhoseSignalIsGoneAreRemoved)
{
    addClient(&m_gauge, "a", "gone");
    addClient(&m_lamp, "b", "signal");
    validate();
    EXPECT_EQ(clientUUIDs(), Uuids{"b"});
}

TEST_F(ObserverValidationTest, AClientGoesWithItsSignal)
{
    addClient(&m_gauge, "a", "signal");
    ObjectAccess::callMethod(m_signals.get(), "remove", {makeDouble(1.0).get()});
    validate();
    EXPECT_EQ(clientUUIDs(), Uuids{});
}

TEST_F(ObserverValidationTest, RenamedAndMovedBlocksAreNotGone)
{
    addClient(&m_gauge, "a", "signal");
    m_model->rename(m_gauge, u"Zeiger");
    m_model->move(m_gauge, m_model->root());
    validate();
    EXPECT_EQ(clientUUIDs(), Uuids{"a"});
}

TEST_F(ObserverValidationTest, WhatWasNeverThereIsNotGone)
{
    addClient(nullptr, "no block", "signal");
    addClient(&m_gauge, "no signal", "");
    validate();
    EXPECT_EQ(clientUUIDs(), (Uuids{"no block", "no signal"}));
}

TEST_F(ObserverValidationTest, SignalsAreNotGoneWhereThereIsNoneToLookIn)
{
    addClient(&m_gauge, "a", "anything");
    m_model->setObservers(make("ModelObservers", {}).get());
    validate();
    m_model->setObservers(nullptr);
    validate();
    EXPECT_EQ(clientUUIDs(), Uuids{"a"});
}

TEST_F(ObserverValidationTest, NothingIsLostWhereTheModelIsNotOpen)
{
    addLost("a", "gone");
    OpenModels::close(u"plant");
    EXPECT_EQ(hostError([&] { validate(); }), "ModelNotOpen");
    EXPECT_EQ(clientUUIDs(), Uuids{"a"});
}

TEST_F(ObserverValidationTest, AnythingButOneCollectionIsAnError)
{
    const std::vector<const nvArray*> inputs{m_signals.get()};
    EXPECT_EQ(hostError([&] { HostFunctions::call("validateAndRemoveUnused", inputs, 0); }),
              "InvalidClients");
}

}  // namespace

}  // namespace reference_host
