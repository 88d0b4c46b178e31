#include "reference_host/observers/ObserverFunctions.hpp"

#include "tests/reference_host/observers/ObserversTest.hpp"

namespace reference_host {

namespace {

class ObserverFunctionsTest : public ObserversTest {};

TEST_F(ObserverFunctionsTest, EveryFunctionIsDefined)
{
    for (const char* name :
         {"getSignalInfo", "getAlignedObservers", "validateAndRemoveUnused", "getSignalsAndClients",
          "renameModel", "isequal", "Zelmar.HMI.InterfaceMgr.getInterfaceMgr",
          "Zelmar.HMI.ModelObservers.createFromSignalsAndClients"}) {
        EXPECT_TRUE(HostFunctions::isDefined(name)) << name;
    }
}

TEST_F(ObserverFunctionsTest, InstallingTwiceIsAsInstallingOnce)
{
    installObserverFunctions();
    EXPECT_TRUE(HostFunctions::isDefined("isequal"));
}

TEST_F(ObserverFunctionsTest, ARenameReachesTheInterfaceManager)
{
    const std::vector<const nvArray*> none;
    const OwnedValue manager =
        std::move(HostFunctions::call("Zelmar.HMI.InterfaceMgr.getInterfaceMgr", none, 1).front());
    const OwnedValue oldName = makeText("plant");
    const OwnedValue newName = makeText("works");
    const std::vector<const nvArray*> inputs{manager.get(), oldName.get(), newName.get()};
    HostFunctions::call("renameModel", inputs, 0);
    ASSERT_EQ(InterfaceManager::renames().size(), 1U);
    EXPECT_EQ(InterfaceManager::renames()[0].newName, u"works");
    EXPECT_EQ(elementCount(property(manager, "Renames").get()), 1U);
}

TEST_F(ObserverFunctionsTest, CollectionsOfEqualClientsAreEqualValues)
{
    addClient(&m_gauge, "g", "signal");
    const OwnedValue other =
        ObjectAccess::construct("Zelmar.HMI.StreamingClients", {makeText("plant").get()});
    ObjectAccess::callMethod(other.get(), "add", {makeClient(&m_gauge, "g", "signal").get()});
    const std::vector<const nvArray*> inputs{m_clients.get(), other.get()};
    EXPECT_EQ(describe(HostFunctions::call("isequal", inputs, 1).front().get()), "logical true");
    ObjectAccess::setProperty(other.get(), "Model", makeText("works").get());
    EXPECT_EQ(describe(HostFunctions::call("isequal", inputs, 1).front().get()), "logical false");
}

}  // namespace

}  // namespace reference_host
