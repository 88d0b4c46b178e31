#include "reference_host/classes/InterfaceManager.hpp"

#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <utility>

namespace reference_host {

namespace {

class InterfaceManagerTest : public ClassesTest {
protected:
    void SetUp() override
    {
        ClassSystem::createContributedNamespaces();
        InterfaceManager::forgetRenames();
    }
    void TearDown() override
    {
        InterfaceManager::forgetRenames();
        ClassesTest::TearDown();
    }

    static OwnedValue getManager()
    {
        return std::move(HostFunctions::call("Zelmar.HMI.InterfaceMgr.getInterfaceMgr", {}, 1).front());
    }
    static void rename(const std::vector<const nvArray*>& inputs)
    {
        const ScopedHostFunction function("renameModel", InterfaceManager::renameModel);
        HostFunctions::call("renameModel", inputs, 0);
    }
    static OwnedValue renamesOf(const OwnedValue& manager)
    {
        return ObjectAccess::getProperty(manager.get(), "Renames");
    }

    const OwnedValue m_old = makeText("plant");
    const OwnedValue m_new = makeText(u"w\u00e4rme");
};

TEST_F(InterfaceManagerTest, KnowsNoRenamesAtFirst)
{
    const OwnedValue renames = renamesOf(getManager());
    EXPECT_EQ(describe(renames.get()), "1x0 struct {OldName, NewName}");
}

TEST_F(InterfaceManagerTest, KeepsTheRenamesThatItIsToldInOrder)
{
    const OwnedValue manager = getManager();
    rename({manager.get(), m_old.get(), m_new.get()});
    rename({manager.get(), m_new.get(), m_old.get()});
    const OwnedValue renames = renamesOf(manager);
    ASSERT_EQ(elementCount(renames.get()), 2U);
    EXPECT_EQ(text(field(renames.get(), 0, "OldName")), u"plant");
    EXPECT_EQ(text(field(renames.get(), 0, "NewName")), u"w\u00e4rme");
    EXPECT_EQ(text(field(renames.get(), 1, "NewName")), u"plant");
    ASSERT_EQ(InterfaceManager::renames().size(), 2U);
    EXPECT_EQ(InterfaceManager::renames()[1].oldName, u"w\u00e4rme");
}

TEST_F(InterfaceManagerTest, IsTheSameBehindEveryObject)
{
    const OwnedValue early = getManager();
    rename({getManager().get(), m_old.get(), m_new.get()});
    EXPECT_EQ(elementCount(renamesOf(early).get()), 1U);
}

TEST_F(InterfaceManagerTest, TakesAnEmptyNameForAModelThatHadNone)
{
    rename({getManager().get(), makeText("").get(), m_new.get()});
    EXPECT_EQ(InterfaceManager::renames().front().oldName, u"");
}

TEST_F(InterfaceManagerTest, RefusesAnythingButAManagerAndTwoNames)
{
    const OwnedValue manager = getManager();
    const OwnedValue number = makeDouble(1.0);
    for (const std::vector<const nvArray*>& inputs :
         std::vector<std::vector<const nvArray*>>{{},
                                                  {manager.get(), m_old.get()},
                                                  {number.get(), m_old.get(), m_new.get()},
                                                  {manager.get(), number.get(), m_new.get()},
                                                  {manager.get(), m_old.get(), manager.get()}}) {
        EXPECT_EQ(hostError([&] { rename(inputs); }, {"renameModel"}), "WrongArgument");
    }
    EXPECT_TRUE(InterfaceManager::renames().empty());
}

}  // namespace

}  // namespace reference_host
