#include "tests/reference_host/observers/ObserversTest.hpp"

namespace reference_host {

namespace {

class ModelObserversTest : public ObserversTest {
protected:
    std::string refusal(const OwnedValue& value) const
    {
        return hostError([&] { m_model->setObservers(value.get()); });
    }
};

TEST_F(ModelObserversTest, AModelHasNoneAtFirst)
{
    EXPECT_EQ(m_model->observers(), nullptr);
}

TEST_F(ModelObserversTest, AreThePairThatWasSet)
{
    addClient(&m_gauge, "g", "");
    setObservers();
    const OwnedValue clients = property(m_model->observers(), "Clients");
    EXPECT_EQ(read(clients, "Count"), "uint32 1");
}

TEST_F(ModelObserversTest, OutliveTheValueThatWasSet)
{
    setObservers();
    m_clients.reset();
    EXPECT_EQ(read(property(m_model->observers(), "Clients"), "Model"), "\"plant\"");
}

TEST_F(ModelObserversTest, AreEndedByNullAndByAnEmptyValue)
{
    setObservers();
    m_model->setObservers(nullptr);
    EXPECT_EQ(m_model->observers(), nullptr);
    setObservers();
    m_model->setObservers(makeEmptyValue().get());
    EXPECT_EQ(m_model->observers(), nullptr);
}

TEST_F(ModelObserversTest, AreNotOfAnotherClass)
{
    setObservers();
    EXPECT_EQ(refusal(makeDouble(1.0)), "SignalObserversSetParamInvalidType");
    EXPECT_EQ(refusal(copyShared(m_clients.get())), "SignalObserversSetParamInvalidType");
    EXPECT_NE(m_model->observers(), nullptr);
}

TEST_F(ModelObserversTest, AreNotSeveral)
{
    const nvcos::COSInterfacePtr instance = objects(make("ModelObservers", {}).get()).front();
    EXPECT_EQ(refusal(ObjectAccess::makeObjectArray("Zelmar.HMI.ModelObservers", {instance, instance})),
              "SignalObserversSetParamNonScalar");
    EXPECT_EQ(refusal(makeText("ab")), "SignalObserversSetParamNonScalar");
}

TEST_F(ModelObserversTest, EndWhenTheModelIsClosed)
{
    setObservers();
    OpenModels::close(u"plant");
    EXPECT_EQ(m_model->observers(), nullptr);
}

TEST_F(ModelObserversTest, EndWhenAllModelsAreClosed)
{
    setObservers();
    OpenModels::closeAll();
    EXPECT_EQ(m_model->observers(), nullptr);
}

}  // namespace

}  // namespace reference_host
