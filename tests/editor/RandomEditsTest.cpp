#include "editor/SignalEditor.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace editor {
namespace {

namespace rh = reference_host;
using rh::Block;
using rh::BlockKind;
using rh::PortKind;

/// Port names are never used twice, so that a port can be told from any other whatever its number: the
/// signal on a port bears its name.
class RandomEdits : public EditorTest {
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        signalEditor = std::make_unique<SignalEditor>(model);
        for (int i = 0; i < 12; ++i) {
            Block& system = i % 4 == 0 ? root() : any();
            Block& added = model->add(system.kind() == BlockKind::System ? system : root(), newName(),
                                      i % 3 == 0 ? BlockKind::System : BlockKind::Component);
            added.setPorts(PortKind::Output, {{newName()}, {newName()}, {newName()}});
        }
        for (const Block* block : model->blocks()) {
            for (std::size_t number = 1; number <= block->ports(PortKind::Output).size(); ++number) {
                if (below(2) == 0) {
                    observe(*block, number);
                }
            }
        }
    }

    std::size_t below(std::size_t bound) { return m_random() % bound; }
    std::u16string newName()
    {
        std::u16string name = u"n";
        for (const char digit : std::to_string(++m_names)) {
            name += static_cast<char16_t>(digit);
        }
        return name;
    }
    Block& any()
    {
        const auto blocks = model->blocks();
        return blocks.empty() ? root() : *blocks[below(blocks.size())];
    }

    /// The UUID stands for the port from now on.
    void observe(const Block& block, std::size_t number)
    {
        addSignal(block, number);
        m_portOf[records().back().uuid] = block.ports(PortKind::Output)[number - 1].name;
    }

    void edit()
    {
        Block& block = any();
        const std::size_t ports = block.ports(PortKind::Output).size();
        std::vector<int> order(ports);
        switch (below(9)) {
            case 0:
                history().addBlock(block.kind() == BlockKind::System ? block : root(), newName(),
                                   below(2) == 0 ? BlockKind::System : BlockKind::Component);
                break;
            case 1:
                if (below(4) == 0) {
                    history().deleteBlock(block);
                }
                break;
            case 2:
                history().renameBlock(block, newName());
                break;
            case 3:
                history().moveBlock(block, any());
                break;
            case 4:
            case 5:
                history().addOutput(block, newName(), below(ports + 1) + 1);
                break;
            case 6:
                history().deleteOutput(block, below(ports + 1));
                break;
            case 7:
                for (std::size_t i = 0; i < ports; ++i) {
                    order[i] = static_cast<int>(i) + 1;
                }
                std::shuffle(order.begin(), order.end(), m_random);
                history().reorderOutputs(block, order);
                break;
            default:
                history().undo();
        }
    }

    bool tryEdit()
    {
        try {
            edit();
            return true;
        } catch (const zmsvException&) {  // the diagram refused it
            return false;
        }
    }

    /// Every signal is on the port that it was made for, and exactly those ports count as observed.
    void expectEverySignalOnItsPort()
    {
        std::set<std::pair<const Block*, std::size_t>> observed;
        for (const rh::SignalRecord& signal : records()) {
            const rh::SignalPlace place = rh::placeOf(signal);
            ASSERT_TRUE(place.isThere) << plain(signal.path) << ' ' << signal.outputPort;
            const auto number = static_cast<std::size_t>(signal.outputPort);
            ASSERT_EQ(place.block->ports(PortKind::Output)[number - 1].name, m_portOf.at(signal.uuid));
            ASSERT_EQ(signal.path, place.block->path());
            observed.emplace(place.block, number);
        }
        for (const Block* block : model->blocks()) {
            for (std::size_t number = 1; number <= block->ports(PortKind::Output).size() + 1; ++number) {
                ASSERT_EQ(isObserved(*block, number), observed.count({block, number}) > 0)
                    << plain(block->path()) << ' ' << number;
            }
        }
    }

    std::unique_ptr<SignalEditor> signalEditor;

private:
    std::mt19937 m_random{20};
    int m_names = 0;
    std::map<std::string, std::u16string> m_portOf;
};

TEST_F(RandomEdits, EverySignalStaysOnItsPort)
{
    for (int i = 0; i < 300; ++i) {
        tryEdit();
        ASSERT_NO_FATAL_FAILURE(expectEverySignalOnItsPort()) << "after edit " << i;
        if (below(5) == 0) {
            Block& block = any();
            const std::size_t ports = block.ports(PortKind::Output).size();
            if (ports > 0) {
                const std::size_t number = below(ports) + 1;
                if (!isObserved(block, number)) {
                    observe(block, number);
                }
            }
        }
    }
    EXPECT_TRUE(rh::Warnings::take().empty());
}

TEST_F(RandomEdits, UndoBringsThePersistedFormBackToTheLetter)
{
    std::vector<std::string> forms{persisted()};
    for (int i = 0; i < 150; ++i) {
        tryEdit();
        forms.resize(std::min(forms.size(), history().undoCount() + 1));
        if (forms.size() <= history().undoCount()) {
            forms.push_back(persisted());
        }
    }
    ASSERT_EQ(forms.size(), history().undoCount() + 1);
    ASSERT_GT(forms.size(), 40U);
    for (std::size_t i = forms.size() - 1; i-- > 0;) {
        history().undo();
        ASSERT_EQ(persisted(), forms[i]) << i;
    }
    for (std::size_t i = 1; i < forms.size(); ++i) {
        history().redo();
        ASSERT_EQ(persisted(), forms[i]) << i;
    }
    EXPECT_TRUE(rh::Warnings::take().empty());
}

}  // namespace
}  // namespace editor
