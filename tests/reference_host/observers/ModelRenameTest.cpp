#include "reference_host/observers/ModelRename.hpp"

#include "tests/reference_host/observers/ObserversTest.hpp"

namespace reference_host {

namespace {

class ModelRenameTest : public ObserversTest {
protected:
    void SetUp() override
    {
        ObserversTest::SetUp();
        addSignal(m_gain, 2, "signal");
        addClient(&m_gauge, "gauge", "signal");
        setObservers();
    }

    OwnedValue half(const char* name) const { return property(m_model->observers(), name); }
};

TEST_F(ModelRenameTest, RenamesTheModelAndItsClients)
{
    renameModelWithObservers(u"plant", u"works");
    EXPECT_EQ(OpenModels::find(u"works"), m_model);
    EXPECT_EQ(read(m_clients, "Model"), "\"works\"");
    const OwnedValue client = element(half("Clients"), 1);
    EXPECT_EQ(read(client, "SourceModel_"), "\"works\"");
    EXPECT_EQ(firstText(client, "ModelPath_"), "works/Panel/Gauge");
    EXPECT_EQ(firstText(client, "ModelPathZID_"), "works:2");
}

TEST_F(ModelRenameTest, GivesTheModelSignalsOfTheNewNameWithNothingLost)
{
    renameModelWithObservers(u"plant", u"works");
    const OwnedValue signals = half("Signals");
    EXPECT_EQ(read(signals, "Model"), "\"works\"");
    EXPECT_EQ(read(signals, "Count"), "uint32 1");
    const OwnedValue signal = element(signals, 1);
    EXPECT_EQ(read(signal, "UUID"), "\"signal\"");
    EXPECT_EQ(read(signal, "BlockPath_"), "\"works/Gain\"");
    EXPECT_EQ(read(signal, "ZID_"), "\"works:4\"");
    EXPECT_EQ(read(signal, "OutputPortIndex_"), "double 2");
    EXPECT_EQ(read(signal, "BindingRule_"), "\"same-name\"");
}

TEST_F(ModelRenameTest, EveryObserverIsStillBound)
{
    renameModelWithObservers(u"plant", u"works");
    const OwnedValue signal = property(element(m_clients, 1), "SignalInfo");
    EXPECT_EQ(read(signal, "UUID"), "\"signal\"");
    EXPECT_EQ(scalar(property(signal, "CachedBlockHandle_").get()), m_gain.handle());
    const std::vector<const nvArray*> inputs{m_clients.get()};
    HostFunctions::call("validateAndRemoveUnused", inputs, 0);
    EXPECT_EQ(clientUUIDs(), std::vector<std::string>{"gauge"});
}

TEST_F(ModelRenameTest, TheNamesMayBeTheModelsOwn)
{
    renameModelWithObservers(m_model->name(), u"works");
    EXPECT_EQ(OpenModels::find(u"works"), m_model);
    EXPECT_EQ(read(m_clients, "Model"), "\"works\"");
    renameModelWithObservers(m_model->name(), m_model->name());
    EXPECT_EQ(OpenModels::find(u"works"), m_model);
}

TEST_F(ModelRenameTest, ToATakenNameChangesNothing)
{
    OpenModels::add(std::make_shared<Model>(u"works"));
    EXPECT_EQ(hostError([] { renameModelWithObservers(u"plant", u"works"); }), "ModelAlreadyOpen");
    EXPECT_EQ(m_model->name(), u"plant");
    EXPECT_EQ(read(m_clients, "Model"), "\"plant\"");
    EXPECT_EQ(read(half("Signals"), "Model"), "\"plant\"");
}

TEST_F(ModelRenameTest, ToItsOwnNameKeepsTheSignals)
{
    renameModelWithObservers(u"plant", u"plant");
    EXPECT_EQ(objects(half("Signals").get()).front().get(), objects(m_signals.get()).front().get());
}

TEST_F(ModelRenameTest, OfAModelThatIsNotOpenIsAnError)
{
    EXPECT_EQ(hostError([] { renameModelWithObservers(u"other", u"works"); }), "ModelNotOpen");
}

TEST_F(ModelRenameTest, WorksWithoutObserversAndWithHalfOfThem)
{
    m_model->setObservers(nullptr);
    renameModelWithObservers(u"plant", u"a");
    EXPECT_EQ(m_model->observers(), nullptr);
    m_model->setObservers(make("ModelObservers", {}).get());
    renameModelWithObservers(u"a", u"b");
    EXPECT_EQ(describe(half("Signals").get()), "0x0 double");
    EXPECT_EQ(m_model->name(), u"b");
}

}  // namespace

}  // namespace reference_host
