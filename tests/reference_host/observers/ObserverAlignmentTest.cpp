#include "reference_host/observers/ClientFunctions.hpp"

#include "tests/reference_host/observers/ObserversTest.hpp"

namespace reference_host {

namespace {

class ObserverAlignmentTest : public ObserversTest {
protected:
    void SetUp() override
    {
        ObserversTest::SetUp();
        addClient(&m_gauge, "gauge", "");
        addClient(&m_lamp, "lamp", "");
    }

    static OwnedValue call(const std::vector<const nvArray*>& inputs)
    {
        return std::move(HostFunctions::call("getAlignedObservers", inputs, 1).front());
    }

    /// "UUID path ZID" of every aligned client.
    std::vector<std::string> aligned() const
    {
        const OwnedValue clients = call({m_clients.get()});
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < elementCount(clients.get()); ++i) {
            const OwnedValue client =
                ObjectAccess::makeObjectArray("Zelmar.HMI.SignalClient", {objects(clients.get())[i]});
            lines.push_back(utf8Text(property(client, "UUID").get()) + " " + firstText(client, "ModelPath_") +
                            " " + firstText(client, "ModelPathZID_"));
        }
        return lines;
    }
};

using Lines = std::vector<std::string>;

TEST_F(ObserverAlignmentTest, ClientsComeInOrderWithTheirFullPaths)
{
    EXPECT_EQ(aligned(), (Lines{"gauge plant/Panel/Gauge plant:2", "lamp plant/Panel/Lamp plant:3"}));
}

TEST_F(ObserverAlignmentTest, NoClientsAreAnEmptyArray)
{
    m_clients = ObjectAccess::construct("Zelmar.HMI.StreamingClients", {makeText("plant").get()});
    EXPECT_TRUE(aligned().empty());
}

TEST_F(ObserverAlignmentTest, RenamedBlocksAreFollowed)
{
    m_model->rename(m_gauge, u"Zeiger");
    m_model->rename(m_panel, u"Pult");
    EXPECT_EQ(aligned(), (Lines{"gauge plant/Pult/Zeiger plant:2", "lamp plant/Pult/Lamp plant:3"}));
}

TEST_F(ObserverAlignmentTest, MovedBlocksAreFollowedEvenWhenAnotherTookTheirPlace)
{
    m_model->move(m_gauge, m_model->root());
    m_model->add(m_panel, u"Gauge", BlockKind::Component);
    EXPECT_EQ(aligned()[0], "gauge plant/Gauge plant:2");
}

TEST_F(ObserverAlignmentTest, ARenamedModelIsFollowedUnderTheCollectionsName)
{
    OpenModels::rename(u"plant", u"works");
    ObjectAccess::setProperty(m_clients.get(), "Model", makeText("works").get());
    EXPECT_EQ(aligned()[0], "gauge works/Panel/Gauge works:2");
}

TEST_F(ObserverAlignmentTest, ABlockWithoutAZidIsFoundByItsPathAndGetsOne)
{
    OwnedValue client = makeClient(&m_gauge, "bare", "");
    ObjectAccess::setProperty(client.get(), "ModelPathZID_", makeEmptyValue().get());
    ObjectAccess::callMethod(m_clients.get(), "add", {client.get()});
    EXPECT_EQ(aligned()[2], "bare plant/Panel/Gauge plant:2");
}

TEST_F(ObserverAlignmentTest, AnObserverWhoseBlockIsGoneStaysAsItIs)
{
    OwnedValue client = makeClient(&m_gauge, "lost", "");
    ObjectAccess::setProperty(client.get(), "ModelPath_", makeCell(u"plant/Nowhere").get());
    ObjectAccess::setProperty(client.get(), "ModelPathZID_", makeCell(u"plant:99").get());
    ObjectAccess::callMethod(m_clients.get(), "add", {client.get()});
    EXPECT_EQ(aligned()[2], "lost plant/Nowhere plant:99");
}

TEST_F(ObserverAlignmentTest, AnObserverWithoutAPathStaysWithoutOne)
{
    addClient(nullptr, "free", "");
    EXPECT_EQ(aligned()[2], "free  ");
}

TEST_F(ObserverAlignmentTest, EveryPartOfAPathIsFollowed)
{
    OwnedValue path = makeCells(Dimensions(1, 2));
    setCell(path.get(), 0, makeText(m_panel.path()));
    setCell(path.get(), 1, makeText(m_lamp.path()));
    OwnedValue zids = makeCells(Dimensions(1, 2));
    setCell(zids.get(), 0, makeText(m_panel.zid()));
    setCell(zids.get(), 1, makeText(m_lamp.zid()));
    OwnedValue client = makeClient(nullptr, "deep", "");
    ObjectAccess::setProperty(client.get(), "ModelPath_", path.get());
    ObjectAccess::setProperty(client.get(), "ModelPathZID_", zids.get());
    ObjectAccess::callMethod(m_clients.get(), "add", {client.get()});
    m_model->rename(m_lamp, u"Lampe");
    const OwnedValue clients = call({m_clients.get()});
    const OwnedValue deep =
        ObjectAccess::makeObjectArray("Zelmar.HMI.SignalClient", {objects(clients.get())[2]});
    EXPECT_EQ(utf8Text(cell(property(deep, "ModelPath_").get(), 1)), "plant/Panel/Lampe");
}

TEST_F(ObserverAlignmentTest, TheCollectionIsLeftAlone)
{
    m_model->rename(m_gauge, u"Zeiger");
    aligned();
    EXPECT_EQ(firstText(element(m_clients, 1), "ModelPath_"), "plant/Panel/Gauge");
}

TEST_F(ObserverAlignmentTest, ACollectionWhoseModelIsNotOpenIsAnError)
{
    ObjectAccess::setProperty(m_clients.get(), "Model", makeText("other").get());
    EXPECT_EQ(hostError([&] { aligned(); }), "ModelNotOpen");
}

TEST_F(ObserverAlignmentTest, AnythingButOneCollectionIsAnError)
{
    for (const std::vector<const nvArray*>& inputs :
         std::vector<std::vector<const nvArray*>>{{m_signals.get()}, {m_signals.get(), m_clients.get()}}) {
        EXPECT_EQ(hostError([&] { call(inputs); }), "InvalidClients");
    }
    EXPECT_EQ(hostError([&] { call({}); }), "TooFewInputs");
}

}  // namespace

}  // namespace reference_host
