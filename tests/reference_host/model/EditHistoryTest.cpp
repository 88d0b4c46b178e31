#include "reference_host/model/EditHistory.hpp"

#include "tests/reference_host/model/DiagramTest.hpp"

#include <algorithm>
#include <random>
#include <sstream>
#include <utility>

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::ChangeKind;
using reference_host::DiagramChange;
using reference_host::EditHistory;
using reference_host::Model;
using reference_host::OpenModels;
using reference_host::PortKind;

namespace {

/// Everything that an undo has to bring back, as a text. Names are plain in these tests.
void describe(const Block& block, std::ostream& out)
{
    const auto plain = [](const std::u16string& text) { return std::string(text.begin(), text.end()); };
    out << plain(block.path()) << ' ' << block.zid() << ' ' << block.handle() << '\n';
    for (const PortKind kind : {PortKind::Output, PortKind::Input}) {
        for (const auto& port : block.ports(kind)) {
            out << "  port " << plain(port.name) << '\n';
        }
    }
    for (const auto& [name, value] : block.parameters()) {
        out << "  " << plain(name) << '=' << plain(value) << '\n';
    }
    for (const auto& line : block.connections()) {
        out << "  line " << plain(line.start.element->path()) << '.' << plain(line.start.connector) << " to "
            << plain(line.end.element->path()) << '.' << plain(line.end.connector) << '\n';
    }
    for (const auto& child : block.children()) {
        describe(*child, out);
    }
}

class EditHistoryTest : public DiagramTest {
protected:
    EditHistoryTest()
    {
        Block& controller = m_model->add(root(), u"Controller", BlockKind::System);
        Block& gain = m_model->add(controller, u"Gain", BlockKind::Component);
        gain.setPorts(PortKind::Output, {{u"y"}, {u"z"}, {u"w"}});
        Block& sink = m_model->add(controller, u"Sink", BlockKind::Component);
        sink.addPort(PortKind::Input, u"u");
        m_model->add(root(), u"Plant", BlockKind::System);
        controller.addConnection({{&gain, {}, u"y"}, {&sink, {}, u"u"}});
        controller.addConnection({{&gain, {}, u"w"}, {&sink, {}, u"u"}});
        m_listener = history().addListener([this](const DiagramChange& change) { m_told.push_back(change); });
    }
    ~EditHistoryTest() override { history().removeListener(m_listener); }

    Block& root() { return m_model->root(); }
    Block& at(const std::u16string& path) { return *m_model->findByPath(path); }
    EditHistory& history() { return m_model->history(); }

    std::string now()
    {
        std::ostringstream out;
        describe(root(), out);
        return out.str();
    }

    /// The edit changes something, its undo takes all of it back, and its redo does all of it again.
    void expectUndoable(const std::function<void()>& edit)
    {
        const std::string before = now();
        edit();
        const std::string after = now();
        EXPECT_NE(before, after);
        EXPECT_TRUE(history().undo());
        EXPECT_EQ(now(), before);
        EXPECT_TRUE(history().redo());
        EXPECT_EQ(now(), after);
        EXPECT_TRUE(history().undo());
        EXPECT_EQ(now(), before);
    }

    std::shared_ptr<Model> m_model = std::make_shared<Model>(u"plant");
    std::vector<DiagramChange> m_told;
    std::uint64_t m_listener = 0;
};

TEST_F(EditHistoryTest, NothingIsToBeUndoneAtFirst)
{
    EXPECT_FALSE(history().undo());
    EXPECT_FALSE(history().redo());
}

TEST_F(EditHistoryTest, AddingABlockIsUndoable)
{
    expectUndoable([this] { history().addBlock(root(), u"New", BlockKind::Component); });
}

TEST_F(EditHistoryTest, AnAddedBlockComesBackAsTheSameBlock)
{
    const Block& added = history().addBlock(root(), u"New", BlockKind::Component);
    const double handle = added.handle();
    history().undo();
    EXPECT_EQ(m_model->findByHandle(handle), nullptr);
    history().redo();
    EXPECT_EQ(m_model->findByHandle(handle), &added);
}

TEST_F(EditHistoryTest, DeletingABlockIsUndoable)
{
    expectUndoable([this] { history().deleteBlock(at(u"Controller/Gain")); });
}

TEST_F(EditHistoryTest, DeletingASystemWithItsContentIsUndoable)
{
    expectUndoable([this] { history().deleteBlock(at(u"Controller")); });
}

TEST_F(EditHistoryTest, NothingInADeletedSystemIsFound)
{
    const Block& gain = at(u"Controller/Gain");
    history().deleteBlock(at(u"Controller"));
    EXPECT_EQ(m_model->findByZid(gain.zid()), nullptr);
    EXPECT_EQ(m_model->findByHandle(gain.handle()), nullptr);
    EXPECT_EQ(m_model->findByPath(u"Controller/Gain"), nullptr);
    EXPECT_EQ(m_model->blockCount(), 1U);
    EXPECT_EQ(gain.path(), u"plant/Controller/Gain") << "where it was";
}

TEST_F(EditHistoryTest, ADeletedBlockTakesItsConnectionsAlong)
{
    history().deleteBlock(at(u"Controller/Sink"));
    EXPECT_TRUE(at(u"Controller").connections().empty());
    history().undo();
    EXPECT_EQ(at(u"Controller").connections().size(), 2U);
}

TEST_F(EditHistoryTest, RenamingABlockIsUndoable)
{
    expectUndoable([this] { history().renameBlock(at(u"Controller/Gain"), u"Amplifier"); });
}

TEST_F(EditHistoryTest, MovingABlockIsUndoable)
{
    expectUndoable([this] { history().moveBlock(at(u"Controller/Gain"), at(u"Plant")); });
}

TEST_F(EditHistoryTest, AddingAnOutputIsUndoable)
{
    expectUndoable([this] { history().addOutput(at(u"Controller/Gain"), u"new", 2); });
}

TEST_F(EditHistoryTest, DeletingAnOutputIsUndoable)
{
    expectUndoable([this] { history().deleteOutput(at(u"Controller/Gain"), 1); });
}

TEST_F(EditHistoryTest, ADeletedOutputTakesItsConnectionsAlong)
{
    history().deleteOutput(at(u"Controller/Gain"), 1);
    ASSERT_EQ(at(u"Controller").connections().size(), 1U);
    EXPECT_EQ(at(u"Controller").connections()[0].start.connector, u"w");
}

TEST_F(EditHistoryTest, PuttingOutputsInOrderIsUndoable)
{
    expectUndoable([this] { history().reorderOutputs(at(u"Controller/Gain"), {3, 1, 2}); });
}

TEST_F(EditHistoryTest, RenamingTheModelIsUndoable)
{
    expectUndoable([this] { history().renameModel(u"factory"); });
}

TEST_F(EditHistoryTest, RenamingAnOpenModelRenamesItAmongTheOpenOnes)
{
    OpenModels::add(m_model);
    history().renameModel(u"factory");
    EXPECT_EQ(OpenModels::find(u"factory"), m_model);
    history().undo();
    EXPECT_EQ(OpenModels::find(u"plant"), m_model);
    OpenModels::closeAll();
}

TEST_F(EditHistoryTest, SettingAParameterIsUndoable)
{
    expectUndoable([this] { history().setParameter(at(u"Controller/Gain"), u"k", u"2"); });
    history().setParameter(at(u"Controller/Gain"), u"k", u"2");
    expectUndoable([this] { history().setParameter(at(u"Controller/Gain"), u"k", u"3"); });
}

TEST_F(EditHistoryTest, ANewEditEndsWhatCouldBeRedone)
{
    history().renameBlock(at(u"Plant"), u"A");
    history().undo();
    history().renameBlock(at(u"Plant"), u"B");
    EXPECT_EQ(history().redoCount(), 0U);
    EXPECT_FALSE(history().redo());
    EXPECT_EQ(history().undoCount(), 1U);
}

// ---- what is refused ------------------------------------------------------------------------------------

TEST_F(EditHistoryTest, ARefusedEditChangesNothingAndIsNotToBeUndone)
{
    const std::string before = now();
    hostError("DuplicateName", [this] { history().addBlock(root(), u"Plant", BlockKind::System); });
    hostError("DuplicateName", [this] { history().renameBlock(at(u"Plant"), u"Controller"); });
    hostError("InvalidMove", [this] { history().moveBlock(at(u"Controller"), at(u"Controller")); });
    hostError("InvalidName", [this] { history().renameModel(u"a/b"); });
    hostError("InvalidBlock", [this] { history().deleteBlock(root()); });
    EXPECT_EQ(now(), before);
    EXPECT_EQ(history().undoCount(), 0U);
    EXPECT_TRUE(m_told.empty());
}

TEST_F(EditHistoryTest, OutputsAreCountedFromOne)
{
    Block& gain = at(u"Controller/Gain");
    hostError("InvalidPort", [&] { history().deleteOutput(gain, 0); });
    hostError("InvalidPort", [&] { history().deleteOutput(gain, 4); });
    hostError("InvalidPort", [&] { history().addOutput(gain, u"a", 5); });
    history().addOutput(gain, u"last", 4);
    EXPECT_EQ(gain.ports(PortKind::Output).back().name, u"last");
}

TEST_F(EditHistoryTest, AnOrderNamesEveryOutputOnce)
{
    Block& gain = at(u"Controller/Gain");
    hostError("InvalidPortOrder", [&] { history().reorderOutputs(gain, {1, 2}); });
    hostError("InvalidPortOrder", [&] { history().reorderOutputs(gain, {1, 1, 2}); });
    hostError("InvalidPortOrder", [&] { history().reorderOutputs(gain, {0, 1, 2}); });
}

TEST_F(EditHistoryTest, AnOutputHasANameOfItsOwn)
{
    hostError("InvalidName", [this] { history().addOutput(at(u"Controller/Gain"), u"", 1); });
    hostError("DuplicateName", [this] { history().addOutput(at(u"Controller/Gain"), u"y", 1); });
}

TEST_F(EditHistoryTest, ADeletedBlockIsNotEdited)
{
    Block& gain = at(u"Controller/Gain");
    Block& controller = at(u"Controller");
    history().deleteBlock(controller);
    hostError("InvalidBlock", [&] { history().renameBlock(gain, u"A"); });
    hostError("InvalidBlock", [&] { history().deleteBlock(gain); });
    hostError("InvalidBlock", [&] { history().moveBlock(gain, root()); });
    hostError("InvalidBlock", [&] { history().addOutput(gain, u"A", 1); });
    hostError("InvalidBlock", [&] { history().setParameter(gain, u"A", u"1"); });
    hostError("InvalidSystem", [&] { history().addBlock(controller, u"A", BlockKind::Component); });
    hostError("InvalidSystem", [&] { history().moveBlock(at(u"Plant"), controller); });
}

// ---- what listeners are told ----------------------------------------------------------------------------

TEST_F(EditHistoryTest, ListenersAreToldOldToNewNumbersAndTheInverseOnUndo)
{
    history().deleteOutput(at(u"Controller/Gain"), 2);
    history().undo();
    ASSERT_EQ(m_told.size(), 2U);
    EXPECT_EQ(m_told[0].kind, ChangeKind::OutputsChanged);
    EXPECT_EQ(m_told[0].newNumbers, (std::vector<int>{1, 0, 2}));
    EXPECT_EQ(m_told[1].newNumbers, (std::vector<int>{1, 3}));
    EXPECT_EQ(m_told[0].edit, m_told[1].edit);
}

TEST_F(EditHistoryTest, AnAddedOutputMovesThoseBehindIt)
{
    history().addOutput(at(u"Controller/Gain"), u"new", 2);
    history().undo();
    EXPECT_EQ(m_told[0].newNumbers, (std::vector<int>{1, 3, 4}));
    EXPECT_EQ(m_told[1].newNumbers, (std::vector<int>{1, 0, 2, 3}));
}

TEST_F(EditHistoryTest, AnOrderIsToldAsItIsAndItsInverseOnUndo)
{
    history().reorderOutputs(at(u"Controller/Gain"), {3, 1, 2});
    EXPECT_EQ(at(u"Controller/Gain").ports(PortKind::Output)[2].name, u"y");
    history().undo();
    EXPECT_EQ(m_told[0].newNumbers, (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(m_told[1].newNumbers, (std::vector<int>{2, 3, 1}));
}

TEST_F(EditHistoryTest, BlocksAppearAndVanishWhicheverWay)
{
    history().addBlock(root(), u"A", BlockKind::Component);
    history().undo();
    history().redo();
    history().deleteBlock(at(u"A"));
    history().undo();
    std::vector<ChangeKind> kinds;
    for (const DiagramChange& change : m_told) {
        kinds.push_back(change.kind);
    }
    EXPECT_EQ(kinds, (std::vector<ChangeKind>{ChangeKind::BlockAppeared, ChangeKind::BlockVanished,
                                              ChangeKind::BlockAppeared, ChangeKind::BlockVanished,
                                              ChangeKind::BlockAppeared}));
}

TEST_F(EditHistoryTest, TheFormerPathIsTold)
{
    history().renameBlock(at(u"Controller"), u"C");
    history().renameModel(u"factory");
    EXPECT_EQ(m_told[0].formerPath, u"plant/Controller");
    EXPECT_EQ(m_told[0].block->path(), u"factory/C");
    EXPECT_EQ(m_told[1].formerPath, u"plant");
    EXPECT_EQ(m_told[1].block, nullptr);
}

TEST_F(EditHistoryTest, AListenerThatFailsLeavesTheEditDone)
{
    const auto failing = history().addListener([](const DiagramChange&) { throw std::runtime_error("no"); });
    EXPECT_THROW(history().renameBlock(at(u"Plant"), u"A"), std::runtime_error);
    history().removeListener(failing);
    EXPECT_NE(m_model->findByPath(u"A"), nullptr);
    EXPECT_EQ(history().undoCount(), 1U);
}

TEST_F(EditHistoryTest, AListenerThatFailsKeepsNothingFromTheOthers)
{
    const auto failing = history().addListener([](const DiagramChange&) { throw std::runtime_error("no"); });
    std::size_t told = 0;
    const auto behind = history().addListener([&told](const DiagramChange&) { ++told; });
    EXPECT_THROW(history().renameBlock(at(u"Plant"), u"A"), std::runtime_error);
    EXPECT_THROW(history().undo(), std::runtime_error);
    history().removeListener(failing);
    history().removeListener(behind);
    EXPECT_EQ(told, 2U);
}

TEST_F(EditHistoryTest, WhatAListenerEditsIsToldToAllAfterwards)
{
    std::vector<ChangeKind> told;
    const auto editing = history().addListener([this](const DiagramChange& change) {
        if (change.kind == ChangeKind::OutputsChanged) {
            history().renameBlock(*change.block, u"Changed");
        }
    });
    const auto behind =
        history().addListener([&told](const DiagramChange& change) { told.push_back(change.kind); });
    history().deleteOutput(at(u"Controller/Gain"), 1);
    history().removeListener(editing);
    history().removeListener(behind);
    EXPECT_EQ(told, (std::vector<ChangeKind>{ChangeKind::OutputsChanged, ChangeKind::BlockRenamed}));
    EXPECT_EQ(history().undoCount(), 2U);
}

TEST_F(EditHistoryTest, AListenerThatIsTakenAwayWhileOthersAreToldIsToldNothing)
{
    std::size_t told = 0;
    std::uint64_t behind = 0;
    const auto removing =
        history().addListener([&](const DiagramChange&) { history().removeListener(behind); });
    behind = history().addListener([&told](const DiagramChange&) { ++told; });
    history().renameBlock(at(u"Plant"), u"A");
    history().removeListener(removing);
    EXPECT_EQ(told, 0U);
}

// ---- long ways ------------------------------------------------------------------------------------------

/// One random edit; those that the diagram refuses are part of it.
class RandomEdits {
public:
    RandomEdits(Model& model, std::uint32_t seed) : m_model(model), m_random(seed) {}

    void edit()
    {
        try {
            editOnce();
        } catch (const zmsvException&) {  // NOLINT(bugprone-empty-catch): refused, which is as good
        }
    }

private:
    std::size_t below(std::size_t bound) { return m_random() % bound; }
    std::u16string name() { return u"N" + std::u16string(1, static_cast<char16_t>(u'a' + below(26))); }

    Block& any()
    {
        const auto blocks = m_model.blocks();
        return blocks.empty() ? m_model.root() : *blocks[below(blocks.size())];
    }

    void editOnce()
    {
        EditHistory& history = m_model.history();
        Block& block = any();
        const std::size_t ports = block.ports(PortKind::Output).size();
        switch (below(8)) {
            case 0:
                history.addBlock(block, name(), below(2) == 0 ? BlockKind::System : BlockKind::Component);
                break;
            case 1:
                history.addBlock(m_model.root(), name(), BlockKind::System);
                break;
            case 2:
                history.deleteBlock(block);
                break;
            case 3:
                history.renameBlock(block, name());
                break;
            case 4:
                history.moveBlock(block, any());
                break;
            case 5:
                history.addOutput(block, name(), below(ports + 1) + 1);
                break;
            case 6:
                history.deleteOutput(block, below(ports + 1));
                break;
            default:
                history.setParameter(block, name(), name());
        }
    }

    Model& m_model;
    std::mt19937 m_random;
};

TEST_F(EditHistoryTest, AThousandEditsAreTakenBackAndDoneAgainStepByStep)
{
    RandomEdits edits(*m_model, 7);
    std::vector<std::string> states{now()};
    for (int i = 0; i < 1000; ++i) {
        edits.edit();
        if (states.size() <= history().undoCount()) {
            states.push_back(now());
        }
    }
    ASSERT_EQ(states.size(), history().undoCount() + 1);
    ASSERT_GT(states.size(), 300U);
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        ASSERT_TRUE(history().undo());
        ASSERT_EQ(now(), states[i]) << i;
    }
    for (std::size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(history().redo());
        ASSERT_EQ(now(), states[i]) << i;
    }
}

}  // namespace
