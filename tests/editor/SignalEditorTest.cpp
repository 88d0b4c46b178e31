#include "editor/SignalEditor.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/EditorEvents.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/ModelRename.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace editor {
namespace {

namespace rh = reference_host;
using rh::Block;
using rh::BlockKind;
using Places = std::vector<std::string>;

class SignalEditorTest : public EditorTest {
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        signalEditor = std::make_unique<SignalEditor>(model);
        rh::EditorEvents::take();
    }

    Block& gain() { return at(u"Controller/Gain"); }

    std::unique_ptr<SignalEditor> signalEditor;
};

// ---- output ports ---------------------------------------------------------------------------------------

TEST_F(SignalEditorTest, SignalsFollowPortsThatAreReordered)
{
    addSignal(gain(), 1);
    addSignal(gain(), 3);
    history().reorderOutputs(gain(), {2, 3, 1});
    EXPECT_EQ(places(), (Places{"plant/Controller/Gain 2", "plant/Controller/Gain 1"}));
    EXPECT_TRUE(isObserved(gain(), 1));
    EXPECT_TRUE(isObserved(gain(), 2));
    EXPECT_FALSE(isObserved(gain(), 3));
}

TEST_F(SignalEditorTest, UndoingAnOrderBringsThePersistedFormBack)
{
    addSignal(gain(), 1);
    addSignal(gain(), 3);
    const std::string before = persisted();
    history().reorderOutputs(gain(), {2, 3, 1});
    EXPECT_NE(persisted(), before);
    history().undo();
    EXPECT_EQ(persisted(), before);
}

TEST_F(SignalEditorTest, SignalsOnPortsBehindAnAddedOneMoveOn)
{
    addSignal(gain(), 1);
    addSignal(gain(), 2);
    history().addOutput(gain(), u"new", 2);
    EXPECT_EQ(places(), (Places{"plant/Controller/Gain 1", "plant/Controller/Gain 3"}));
    EXPECT_FALSE(isObserved(gain(), 2));
}

TEST_F(SignalEditorTest, TheSignalOfADeletedPortGoesAndComesBackInItsPlaceOnUndo)
{
    addSignal(at(u"Tank"), 1);
    addSignal(gain(), 2);
    addSignal(gain(), 3);
    addActivity(at(u"Tank"), u"1");
    const std::string before = persisted();
    history().deleteOutput(gain(), 2);
    EXPECT_EQ(places(), (Places{"plant/Tank 1", "plant/Controller/Gain 2", "plant/Tank 0"}));
    history().undo();
    EXPECT_EQ(persisted(), before);
    EXPECT_TRUE(isObserved(gain(), 2));
    EXPECT_TRUE(isObserved(gain(), 3));
    history().redo();
    EXPECT_EQ(places(), (Places{"plant/Tank 1", "plant/Controller/Gain 2", "plant/Tank 0"}));
    history().undo();
    EXPECT_EQ(persisted(), before);
}

TEST_F(SignalEditorTest, ASignalOnAnAddedPortGoesWithTheUndoAndComesBackWithTheRedo)
{
    addSignal(gain(), 1);
    history().addOutput(gain(), u"new", 1);
    addSignal(gain(), 1);
    const std::string with = persisted();
    history().undo();
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 1"});
    history().redo();
    EXPECT_EQ(persisted(), with);
}

TEST_F(SignalEditorTest, ASignalAddedMeanwhileStaysWhenOthersComeBack)
{
    addSignal(gain(), 1);
    history().deleteOutput(gain(), 1);
    addSignal(at(u"Tank"), 1);
    history().undo();
    EXPECT_EQ(places(), (Places{"plant/Controller/Gain 1", "plant/Tank 1"}));
}

TEST_F(SignalEditorTest, EveryPortKeepsItsUUID)
{
    addSignal(gain(), 1);
    addSignal(gain(), 2);
    addSignal(gain(), 3);
    const auto uuidOf = [this](double number) {
        return rh::utf8Text(rh::ObjectAccess::callStatic(rh::signalsClass, "getUUIDForBlock",
                                                         {rh::makeDouble(gain().handle()).get(),
                                                          rh::makeNumber(number, nvClassID::UInt32).get(),
                                                          rh::makeLogical(true).get()})
                                .front()
                                .get());
    };
    const std::vector<std::string> before = {uuidOf(1), uuidOf(2), uuidOf(3)};
    history().deleteOutput(gain(), 1);
    EXPECT_EQ(uuidOf(1), before[1]);
    EXPECT_EQ(uuidOf(2), before[2]);
    history().addOutput(gain(), u"new", 1);
    EXPECT_NE(uuidOf(1), before[0]) << "another port";
    EXPECT_EQ(uuidOf(2), before[1]);
    history().undo();
    history().undo();
    EXPECT_EQ((std::vector<std::string>{uuidOf(1), uuidOf(2), uuidOf(3)}), before);
}

TEST_F(SignalEditorTest, PortsKeepTheirUUIDsWithoutSignals)
{
    addSignal(gain(), 1);
    const rh::OwnedValue observers = model->observers();
    model->setObservers(nullptr);
    history().reorderOutputs(gain(), {2, 3, 1});
    model->setObservers(observers.get());
    signalEditor->rebind(false);
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 2"});
}

TEST_F(SignalEditorTest, SignalsThatWereJustLoadedAreBoundBeforeTheyMove)
{
    addSignal(u"plant/Controller/Gain", "plant:2", 1);
    addSignal(u"plant/Tank", "", 2);
    history().reorderOutputs(gain(), {2, 3, 1});
    EXPECT_TRUE(isObserved(gain(), 2));
    EXPECT_EQ(records()[0].cachedHandle, gain().handle());
    history().undo();
    EXPECT_TRUE(isObserved(gain(), 1));
    EXPECT_FALSE(isObserved(gain(), 2));
}

TEST_F(SignalEditorTest, SignalsThatWereJustLoadedAreSeenByARedraw)
{
    addSignal(u"plant/Controller/Gain", "plant:2", 1);
    addSignal(u"plant/Tank", "", 7);
    const std::string before = persisted();
    signalEditor->redraw();
    EXPECT_TRUE(signalEditor->isDrawnPortObserved(gain(), 1));
    EXPECT_EQ(persisted(), before);
}

// ---- blocks ---------------------------------------------------------------------------------------------

TEST_F(SignalEditorTest, ADeletedSystemTakesAllItsSignalsAndUndoBringsThemBack)
{
    addSignal(at(u"Controller"), 1);
    addSignal(at(u"Tank"), 2);
    addSignal(gain(), 2);
    const std::string before = persisted();
    history().deleteBlock(at(u"Controller"));
    EXPECT_EQ(places(), Places{"plant/Tank 2"});
    history().undo();
    EXPECT_EQ(persisted(), before);
    EXPECT_TRUE(isObserved(gain(), 2));
    EXPECT_TRUE(isObserved(at(u"Controller"), 1));
}

TEST_F(SignalEditorTest, ADeletedBlockTakesTheSignalsOnItsChart)
{
    addActivity(at(u"Tank"), u"1");
    addSignal(at(u"Tank"), 1);
    const std::string before = persisted();
    history().deleteBlock(at(u"Tank"));
    EXPECT_TRUE(places().empty());
    history().undo();
    EXPECT_EQ(persisted(), before);
}

TEST_F(SignalEditorTest, SignalsFollowARenamedBlock)
{
    addSignal(gain(), 2);
    addActivity(at(u"Tank"), u"1");
    const std::string before = persisted();
    history().renameBlock(at(u"Controller"), u"C");
    history().renameBlock(at(u"Tank"), u"T");
    EXPECT_EQ(places(), (Places{"plant/C/Gain 2", "plant/T 0"}));
    EXPECT_TRUE(isObserved(at(u"C/Gain"), 2));
    history().undo();
    history().undo();
    EXPECT_EQ(persisted(), before);
}

TEST_F(SignalEditorTest, SignalsFollowAMovedBlock)
{
    addSignal(at(u"Tank"), 2);
    history().moveBlock(at(u"Tank"), at(u"Controller"));
    EXPECT_EQ(places(), Places{"plant/Controller/Tank 2"});
    history().undo();
    EXPECT_EQ(places(), Places{"plant/Tank 2"});
}

TEST_F(SignalEditorTest, ABlockThatTakesOverANameTakesOverNoSignal)
{
    addSignal(at(u"Tank"), 1);
    history().renameBlock(at(u"Tank"), u"Old");
    Block& added = history().addBlock(root(), u"Tank", BlockKind::Component);
    history().addOutput(added, u"a", 1);
    history().addOutput(added, u"b", 1);
    EXPECT_EQ(places(), Places{"plant/Old 1"});
}

TEST_F(SignalEditorTest, SignalsFollowARenamedModel)
{
    addSignal(gain(), 2);
    const std::string before = persisted();
    history().renameModel(u"factory");
    EXPECT_EQ(rh::readSignals(rh::modelSignals(*model).get()).at(0).path, u"factory/Controller/Gain");
    history().deleteOutput(gain(), 1);
    EXPECT_EQ(rh::readSignals(rh::modelSignals(*model).get()).at(0).outputPort, 1);
    history().undo();
    history().undo();
    signals = rh::modelSignals(*model);
    EXPECT_EQ(persisted(), before);
}

TEST_F(SignalEditorTest, SignalsComeBackUnderTheNameThatTheModelHasByThen)
{
    addSignal(gain(), 1);
    addActivity(at(u"Tank"), u"1");
    const std::string before = persisted();
    history().deleteOutput(gain(), 1);
    history().deleteBlock(at(u"Tank"));
    rh::renameModelWithObservers(u"plant", u"factory");
    history().undo();
    history().undo();
    signals = rh::modelSignals(*model);
    ASSERT_EQ(records().size(), 2U);
    EXPECT_EQ(records()[0].path, u"factory/Controller/Gain");
    EXPECT_EQ(records()[0].zid, "factory:2");
    EXPECT_EQ(records()[1].path, u"factory/Tank");
    EXPECT_EQ(persisted(), before) << "which names no model";
}

// ---- the rest -------------------------------------------------------------------------------------------

TEST_F(SignalEditorTest, AChangedParameterIsAnnounced)
{
    history().setParameter(gain(), u"k", u"2");
    history().undo();
    const auto events = rh::EditorEvents::take();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].name, u"block_param_change");
    EXPECT_EQ(events[0].blockPath, u"plant/Controller/Gain");
}

TEST_F(SignalEditorTest, AModelWithoutObserversIsFollowedWithoutEffect)
{
    model->setObservers(nullptr);
    history().deleteOutput(gain(), 1);
    history().deleteBlock(gain());
    history().undo();
    history().undo();
    signalEditor->redraw();
    EXPECT_FALSE(signalEditor->isDrawnPortObserved(gain(), 1));
}

TEST_F(SignalEditorTest, AModelHasOneEditor)
{
    EXPECT_THROW(SignalEditor{model}, zmsvException);
    EXPECT_THROW(SignalEditor{nullptr}, zmsvException);
    addSignal(gain(), 1);
    history().reorderOutputs(gain(), {2, 3, 1});
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 2"}) << "renumbered once";
    signalEditor.reset();
    EXPECT_NO_THROW(SignalEditor{model});
}

TEST_F(SignalEditorTest, AnEditorThatEndsWhileOthersAreToldIsToldNothing)
{
    signalEditor.reset();
    const auto ending = history().addListener([this](const rh::DiagramChange&) { signalEditor.reset(); });
    signalEditor = std::make_unique<SignalEditor>(model);
    addSignal(gain(), 1);
    history().deleteOutput(gain(), 1);
    history().removeListener(ending);
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 1"});
}

TEST_F(SignalEditorTest, WhatAnotherListenerEditsMeanwhileIsFollowedInOrder)
{
    signalEditor.reset();
    bool isFirst = true;
    const auto editing = history().addListener([&](const rh::DiagramChange& change) {
        if (std::exchange(isFirst, false)) {
            history().deleteOutput(*change.block, 1);
        }
    });
    signalEditor = std::make_unique<SignalEditor>(model);
    addSignal(gain(), 1);
    addSignal(gain(), 2);
    addSignal(gain(), 3);
    const std::string before = persisted();
    history().reorderOutputs(gain(), {2, 3, 1});
    EXPECT_EQ(places(), (Places{"plant/Controller/Gain 1", "plant/Controller/Gain 2"}));
    EXPECT_EQ(gain().ports(rh::PortKind::Output)[0].name, u"y");
    history().undo();
    history().undo();
    EXPECT_EQ(persisted(), before);
    history().removeListener(editing);
}

TEST_F(SignalEditorTest, AnEndedEditorFollowsNoMore)
{
    addSignal(gain(), 1);
    signalEditor.reset();
    history().deleteOutput(gain(), 1);
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 1"});
}

TEST_F(SignalEditorTest, ObservedPortsAndBadgesComeThroughTheLibrary)
{
    addSignal(gain(), 2);
    addSignal(at(u"Tank"), 1);
    addClient(0);
    const auto ports = signalEditor->observedPorts("Controller", "", true, false);
    ASSERT_EQ(ports.size(), 1U);
    EXPECT_EQ(ports[0].name, records()[0].uuid);
    EXPECT_EQ(ports[0].handle, gain().handle());
    EXPECT_EQ(ports[0].number1, 2);
    EXPECT_EQ(ports[0].number3, 1);
    EXPECT_TRUE(ports[0].flag1);
    EXPECT_TRUE(ports[0].flag2);
    EXPECT_FALSE(ports[0].flag3);
    EXPECT_EQ(ports[0].text1, u"plant/Controller/Gain");
    EXPECT_EQ(ports[0].text2, u"z");
    EXPECT_EQ(signalEditor->badgedBlocks(), (std::set<double>{gain().handle(), at(u"Tank").handle()}));
}

TEST_F(SignalEditorTest, QuestionsAboutAClosedModelAreWarnings)
{
    rh::OpenModels::closeAll();
    EXPECT_TRUE(signalEditor->observedPorts("", "", true, true).empty());
    EXPECT_TRUE(signalEditor->badgedBlocks().empty());
    EXPECT_EQ(rh::Warnings::take().size(), 2U);
}

TEST_F(SignalEditorTest, RebindingWithoutSignalsDoesNothing)
{
    model->setObservers(nullptr);
    signalEditor->rebind(true);
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

}  // namespace
}  // namespace editor
