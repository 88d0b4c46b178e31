#include "reference_host/classes/BuiltInClasses.hpp"

#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <utility>

namespace reference_host {

namespace {

/// Stand-ins of host code take the places of the two collection classes.
class ModelObserversClassTest : public ClassesTest {
protected:
    void SetUp() override
    {
        for (const char* name : {"InstrumentedSignals", "StreamingClients"}) {
            ClassSystem::contributeClass("Zelmar.HMI",
                                         [name] { return makeRecordClass(name, {textProperty("Name")}); });
        }
        ClassSystem::createContributedNamespaces();
        m_signals = makeNamed("InstrumentedSignals", "the signals");
        m_clients = makeNamed("StreamingClients", "the clients");
    }
    void TearDown() override
    {
        m_signals.reset();
        m_clients.reset();
        ClassesTest::TearDown();
    }

    static OwnedValue makeNamed(const std::string& className, const char* name)
    {
        OwnedValue object = ObjectAccess::construct("Zelmar.HMI." + className);
        ObjectAccess::setProperty(object.get(), "Name", makeText(name).get());
        return object;
    }
    static OwnedValue create(const nvArray* signals, const nvArray* clients)
    {
        return std::move(
            ObjectAccess::callStatic(modelObserversClass, "createFromSignalsAndClients", {signals, clients})
                .front());
    }
    static ObjectAccess::Results split(const std::vector<const nvArray*>& inputs)
    {
        const ScopedHostFunction function("getSignalsAndClients", getSignalsAndClients);
        return HostFunctions::call("getSignalsAndClients", inputs, 2);
    }
    static std::string nameOf(const OwnedValue& object)
    {
        return utf8Text(ObjectAccess::getProperty(object.get(), "Name").get());
    }

    OwnedValue m_signals;
    OwnedValue m_clients;
};

TEST_F(ModelObserversClassTest, APairGivesItsTwoHalvesBack)
{
    const OwnedValue pair = create(m_signals.get(), m_clients.get());
    const ObjectAccess::Results halves = split({pair.get()});
    EXPECT_EQ(nameOf(halves[0]), "the signals");
    EXPECT_EQ(nameOf(halves[1]), "the clients");
}

TEST_F(ModelObserversClassTest, HalvesAreTheScriptsOwnObjects)
{
    const OwnedValue pair = create(m_signals.get(), m_clients.get());
    ObjectAccess::setProperty(m_clients.get(), "Name", makeText("renamed").get());
    EXPECT_EQ(nameOf(split({pair.get()})[1]), "renamed");
}

TEST_F(ModelObserversClassTest, AMissingHalfIsEmpty)
{
    const OwnedValue pair = create(makeEmptyValue().get(), m_clients.get());
    const ObjectAccess::Results halves = split({pair.get()});
    EXPECT_EQ(describe(halves[0].get()), "0x0 double");
    EXPECT_EQ(nameOf(halves[1]), "the clients");
}

TEST_F(ModelObserversClassTest, ANewPairIsEmpty)
{
    const OwnedValue pair = ObjectAccess::construct(modelObserversClass);
    for (const char* half : {"Signals", "Clients"}) {
        EXPECT_EQ(describe(ObjectAccess::getProperty(pair.get(), half).get()), "0x0 double");
    }
}

TEST_F(ModelObserversClassTest, HalvesOfTheWrongClassAreRefused)
{
    EXPECT_EQ(
        hostError([&] { create(m_clients.get(), m_signals.get()); }, {"Signals", "InstrumentedSignals"}),
        "WrongValue");
    EXPECT_EQ(
        hostError([&] { create(m_signals.get(), makeText("x").get()); }, {"Clients", "StreamingClients"}),
        "WrongValue");
}

TEST_F(ModelObserversClassTest, SeveralObjectsAreNoHalf)
{
    const nvcos::COSInterfacePtr& instance = objects(m_clients.get()).front();
    const OwnedValue two = ObjectAccess::makeObjectArray("Zelmar.HMI.StreamingClients", {instance, instance});
    EXPECT_EQ(hostError([&] { create(m_signals.get(), two.get()); }, {"Clients"}), "WrongValue");
}

TEST_F(ModelObserversClassTest, OnlyOnePairCanBeSplit)
{
    const OwnedValue pair = create(m_signals.get(), m_clients.get());
    for (const std::vector<const nvArray*>& inputs :
         std::vector<std::vector<const nvArray*>>{{}, {m_clients.get()}, {pair.get(), pair.get()}}) {
        EXPECT_EQ(hostError([&] { split(inputs); }, {"getSignalsAndClients", modelObserversClass}),
                  "WrongArgument");
    }
}

}  // namespace

}  // namespace reference_host
