#include "editor/RemovedClients.hpp"

#include "editor/ObserversParameter.hpp"
#include "editor/SignalEditor.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/InterfaceManager.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace editor {
namespace {

namespace rh = reference_host;

/// What the editor does for the streaming clients of its model.
class RemovedClientsTest : public EditorTest {
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        rh::InterfaceManager::forgetRenames();
        signalEditor = std::make_unique<SignalEditor>(model);
        addSignal(at(u"Tank"), 1);
        addSignal(at(u"Controller/Gain"), 1);
        addSignal(at(u"Tank"), 2);
        for (std::size_t i = 0; i < 3; ++i) {
            addClient(i);
        }
    }
    void TearDown() override { rh::InterfaceManager::forgetRenames(); }

    /// The UUIDs of the observed signals, in the order of the clients.
    std::vector<std::string> observed() const
    {
        std::vector<std::string> uuids;
        const zm_hmi::StreamingClients& native = *nativeClients(clients.get());
        for (std::size_t i = 0; i < native.getCount(); ++i) {
            uuids.push_back(native.get(i)->getSignalUUID());
        }
        return uuids;
    }

    static std::vector<std::u16string> announced()
    {
        std::vector<std::u16string> names;
        for (const rh::InterfaceManager::Rename& rename : rh::InterfaceManager::renames()) {
            names.push_back(rename.oldName + u">" + rename.newName);
        }
        return names;
    }

    std::unique_ptr<SignalEditor> signalEditor;
};

TEST_F(RemovedClientsTest, ARenamedModelIsAnnouncedOnceEachWay)
{
    history().renameModel(u"factory");
    EXPECT_EQ(announced(), std::vector<std::u16string>{u"plant>factory"});
    EXPECT_EQ(nativeClients(clients.get())->getSyncedModelName(), u"factory");
    history().undo();
    EXPECT_EQ(announced(), (std::vector<std::u16string>{u"plant>factory", u"factory>plant"}));
    EXPECT_EQ(observed().size(), 3U);
}

TEST_F(RemovedClientsTest, ClientsOfADeletedBlockGoAndComeBackInTheirPlaces)
{
    const std::vector<std::string> before = observed();
    history().deleteBlock(at(u"Tank"));
    EXPECT_EQ(observed(), std::vector<std::string>{before[1]});
    history().undo();
    EXPECT_EQ(observed(), before);
    history().redo();
    EXPECT_EQ(observed(), std::vector<std::string>{before[1]});
}

TEST_F(RemovedClientsTest, TheClientOfADeletedPortGoesAndComesBack)
{
    const std::vector<std::string> before = observed();
    history().deleteOutput(at(u"Tank"), 1);
    EXPECT_EQ(observed(), (std::vector<std::string>{before[1], before[2]}));
    history().undo();
    EXPECT_EQ(observed(), before);
}

TEST_F(RemovedClientsTest, AnEditThatRemovesNoSignalLeavesClientsWithoutASignal)
{
    nativeClients(clients.get())->get(0)->setSignalUUID("of no signal");
    history().renameBlock(at(u"Tank"), u"Kessel");
    history().reorderOutputs(at(u"Kessel"), {2, 1});
    EXPECT_EQ(observed().size(), 3U);
}

TEST_F(RemovedClientsTest, ObserversAreAlignedWithTheDiagram)
{
    history().renameBlock(at(u"Tank"), u"Kessel");
    const std::vector<SignalEditor::Observer> observers = signalEditor->observers();
    ASSERT_EQ(observers.size(), 3U);
    EXPECT_EQ(observers[2].path, std::vector<std::u16string>{u"plant/Kessel"});
    EXPECT_EQ(observers[2].port, 2);
    EXPECT_EQ(observers[1].path, std::vector<std::u16string>{u"plant/Controller/Gain"});
}

TEST_F(RemovedClientsTest, ValidatingNothingRemovesNothing)
{
    RemovedClients::validate(nullptr).putBack(nullptr);
    EXPECT_EQ(observed().size(), 3U);
}

TEST_F(RemovedClientsTest, OtherValuesAreRefused)
{
    EXPECT_THROW(nativeClients(signals.get()), zmsvException);
}

// ---- the observers parameter ----------------------------------------------------------------------------

TEST_F(RemovedClientsTest, TheParameterIsStoredAndSplitByTheLibrary)
{
    const ObserversPair pair = readObservers(*model);
    EXPECT_EQ(nativeClients(pair.clients.get()), nativeClients(clients.get()));
    EXPECT_TRUE(pair.signals);
    storeObservers(*model, nullptr);
    const ObserversPair none = readObservers(*model);
    EXPECT_FALSE(none.signals);
    EXPECT_FALSE(none.clients);
}

TEST_F(RemovedClientsTest, AnInvalidParameterChangesNothing)
{
    const rh::OwnedValue number = rh::makeDouble(1.0);
    try {
        storeObservers(*model, number.get());
        ADD_FAILURE() << "stored";
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().key(), "SignalObserversSetParamInvalidType");
    }
    EXPECT_TRUE(readObservers(*model).clients);
}

}  // namespace
}  // namespace editor
