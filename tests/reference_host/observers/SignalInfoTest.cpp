#include "reference_host/observers/ClientFunctions.hpp"

#include "tests/reference_host/observers/ObserversTest.hpp"

namespace reference_host {

namespace {

class SignalInfoTest : public ObserversTest {
protected:
    void SetUp() override
    {
        ObserversTest::SetUp();
        addSignal(m_gain, 1, "first");
        addSignal(m_gain, 2, "second");
        setObservers();
        m_client = makeClient(&m_gauge, "g", "second");
    }

    static OwnedValue infoOf(const OwnedValue& client) { return property(client, "SignalInfo"); }

    void expectNone(const OwnedValue& client) const { EXPECT_EQ(read(client, "SignalInfo"), "0x0 double"); }

    OwnedValue m_client;
};

TEST_F(SignalInfoTest, IsTheSignalThatTheClientNames)
{
    const OwnedValue signal = infoOf(m_client);
    EXPECT_EQ(className(signal.get()), "Zelmar.HMI.SignalSpecification");
    EXPECT_EQ(read(signal, "UUID"), "\"second\"");
    EXPECT_EQ(read(signal, "BlockPath_"), "\"plant/Gain\"");
    EXPECT_EQ(read(signal, "OutputPortIndex_"), "double 2");
}

TEST_F(SignalInfoTest, HasHandleAndPortFromTheDiagram)
{
    const OwnedValue signal = infoOf(m_client);
    EXPECT_EQ(scalar(property(signal, "CachedBlockHandle_").get()), m_gain.handle());
    EXPECT_EQ(scalar(property(signal, "CachedPortIdx_").get()), 2.0);
}

TEST_F(SignalInfoTest, FollowsTheObservedBlock)
{
    m_model->rename(m_gain, u"Verst\u00e4rkung");
    m_model->move(m_gain, m_panel);
    EXPECT_EQ(scalar(property(infoOf(m_client), "CachedBlockHandle_").get()), m_gain.handle());
}

TEST_F(SignalInfoTest, HasNoHandleWhereTheBlockIsGone)
{
    Model other(u"other");
    const Block& gone = other.add(other.root(), u"Gone", BlockKind::Component);
    addSignal(gone, 1, "third");
    const OwnedValue signal = infoOf(makeClient(&m_gauge, "g", "third"));
    EXPECT_EQ(read(signal, "UUID"), "\"third\"");
    EXPECT_EQ(read(signal, "CachedBlockHandle_"), "0x0 double");
    EXPECT_EQ(read(signal, "CachedPortIdx_"), "0x0 double");
}

TEST_F(SignalInfoTest, HasNoHandleWhereThePortIsGone)
{
    addSignal(m_gain, 3, "third");
    addSignal(m_gain, 0, "no port");
    for (const char* uuid : {"third", "no port"}) {
        const OwnedValue signal = infoOf(makeClient(&m_gauge, "g", uuid));
        EXPECT_EQ(read(signal, "CachedBlockHandle_"), "0x0 double") << uuid;
        EXPECT_EQ(read(signal, "CachedPortIdx_"), "0x0 double") << uuid;
    }
}

TEST_F(SignalInfoTest, IsEmptyForASignalThatTheModelLacks)
{
    expectNone(makeClient(&m_gauge, "g", "unknown"));
}

TEST_F(SignalInfoTest, IsEmptyForAClientThatNamesNone)
{
    expectNone(makeClient(&m_gauge, "g", ""));
}

TEST_F(SignalInfoTest, IsEmptyWhereTheModelHasNoObservers)
{
    m_model->setObservers(nullptr);
    expectNone(m_client);
}

TEST_F(SignalInfoTest, IsEmptyWhereTheModelHasNoSignals)
{
    m_model->setObservers(make("ModelObservers", {}).get());
    expectNone(m_client);
}

TEST_F(SignalInfoTest, IsEmptyWhereTheModelIsNotOpen)
{
    OpenModels::close(u"plant");
    expectNone(m_client);
}

TEST_F(SignalInfoTest, ComesFromTheSourceModelOfAClientWithoutAPath)
{
    EXPECT_EQ(read(infoOf(makeClient(nullptr, "g", "second")), "UUID"), "\"second\"");
}

TEST_F(SignalInfoTest, ComesFromTheModelInWhichThePathBegins)
{
    OwnedValue client = makeClient(&m_gauge, "g", "second");
    ObjectAccess::setProperty(client.get(), "SourceModel_", makeText("elsewhere").get());
    EXPECT_EQ(read(infoOf(client), "UUID"), "\"second\"");
}

TEST_F(SignalInfoTest, IsFoundWhereverTheSignalHasMovedTo)
{
    infoOf(m_client);
    ObjectAccess::callMethod(m_signals.get(), "remove", {makeDouble(1.0).get()});
    EXPECT_EQ(read(infoOf(m_client), "UUID"), "\"second\"");
    ObjectAccess::callMethod(m_signals.get(), "remove", {makeDouble(1.0).get()});
    expectNone(m_client);
    addSignal(m_gain, 1, "another");
    addSignal(m_gain, 2, "second");
    EXPECT_EQ(read(infoOf(m_client), "OutputPortIndex_"), "double 2");
}

TEST_F(SignalInfoTest, OfOneModelIsNotTakenFromAnother)
{
    infoOf(m_client);
    const auto other = std::make_shared<Model>(u"other");
    OpenModels::add(other);
    const OwnedValue signals =
        ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals", {makeText("other").get()});
    other->setObservers(ObjectAccess::callStatic("Zelmar.HMI.ModelObservers", "createFromSignalsAndClients",
                                                 {signals.get(), m_clients.get()})
                            .front()
                            .get());
    const OwnedValue client = makeClient(nullptr, "o", "second");
    ObjectAccess::setProperty(client.get(), "SourceModel_", makeText("other").get());
    expectNone(client);
    EXPECT_EQ(read(infoOf(m_client), "UUID"), "\"second\"");
}

TEST_F(SignalInfoTest, ResolvesTheClientsOfTheCollection)
{
    addClient(&m_gauge, "g", "first");
    EXPECT_EQ(read(infoOf(element(m_clients, 1)), "UUID"), "\"first\"");
}

}  // namespace

}  // namespace reference_host
