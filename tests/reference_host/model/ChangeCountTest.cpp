#include "reference_host/support/ChangeCount.hpp"

#include "reference_host/model/Model.hpp"
#include "tests/support/HostTest.hpp"

#include <functional>

namespace reference_host {
namespace {

class ChangeCountTest : public HostTest {
protected:
    static bool countsDiagram(const std::function<void()>& work)
    {
        const std::uint64_t before = ChangeCount::ofDiagrams();
        work();
        return ChangeCount::ofDiagrams() != before;
    }

    Model m_model{u"plant"};
    Block& m_block = m_model.add(m_model.root(), u"Tank", BlockKind::Component);
};

TEST_F(ChangeCountTest, EachChangeOfADiagramCounts)
{
    EXPECT_TRUE(countsDiagram([&] { m_model.add(m_model.root(), u"Pump", BlockKind::Component); }));
    EXPECT_TRUE(countsDiagram([&] { m_model.rename(m_block, u"Basin"); }));
    EXPECT_TRUE(countsDiagram([&] { m_block.addPort(PortKind::Output, u"level"); }));
    EXPECT_TRUE(countsDiagram([&] { m_block.setPorts(PortKind::Output, {}); }));
    EXPECT_TRUE(countsDiagram([&] { m_model.root().addConnection({}); }));
    EXPECT_TRUE(countsDiagram([&] { m_block.addChart(u"modes").addState(u"on"); }));
    EXPECT_TRUE(countsDiagram([&] { m_model.setObservers(nullptr); }));
    EXPECT_TRUE(countsDiagram([&] { m_model.remove(m_block); }));
    EXPECT_TRUE(countsDiagram([&] { m_model.restore(m_block, 0); }));
}

TEST_F(ChangeCountTest, ReadingADiagramDoesNotCount)
{
    EXPECT_FALSE(countsDiagram([&] { EXPECT_EQ(m_model.findByPath(u"Tank"), &m_block); }));
}

}  // namespace
}  // namespace reference_host
