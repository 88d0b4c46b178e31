#include "reference_host/drawing/DrawingPlan.hpp"

#include "tests/reference_host/model/DiagramTest.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace reference_host {
namespace {

/// A model of blocks "0", "1" … with an input and an output each.
class DrawingPlanTest : public DiagramTest {
protected:
    void addBlocks(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const std::string name = std::to_string(m_blocks.size());
            m_blocks.push_back(
                &m_model->add(m_model->root(), {name.begin(), name.end()}, BlockKind::Component));
            m_blocks.back()->addPort(PortKind::Input, u"u");
            m_blocks.back()->addPort(PortKind::Output, u"y");
        }
    }
    void connect(std::size_t start, std::size_t end)
    {
        m_model->root().addConnection({{m_blocks[start], {}, u"y"}, {m_blocks[end], {}, u"u"}});
    }

    /// "0,1|2": columns of blocks, a line for each band.
    std::vector<std::string> plan() const
    {
        const DrawingPlan plan(m_model->root());
        std::vector<std::string> bands;
        for (const DrawingPlan::Band& band : plan.bandsOf(m_model->root())) {
            std::string text;
            for (const DrawingPlan::Column& column : band) {
                text += text.empty() ? "" : "|";
                for (const Block* block : column) {
                    text += (block == column.front() ? "" : ",") +
                            std::string(block->name().begin(), block->name().end());
                }
            }
            bands.push_back(text);
        }
        return bands;
    }

    using Bands = std::vector<std::string>;
    std::shared_ptr<Model> m_model = std::make_shared<Model>(u"plant");
    std::vector<Block*> m_blocks;
};

TEST_F(DrawingPlanTest, ASystemWithoutBlocksHasNoBands)
{
    EXPECT_EQ(plan(), Bands{});
}

TEST_F(DrawingPlanTest, EveryBlockStandsRightOfAllThatLeadToIt)
{
    addBlocks(5);
    connect(4, 3);
    connect(3, 0);
    connect(4, 1);
    connect(1, 0);
    connect(2, 0);
    EXPECT_EQ(plan(), Bands{"2,4|1,3|0"});
}

TEST_F(DrawingPlanTest, InACircleTheFirstBlockComesFirst)
{
    addBlocks(3);
    connect(2, 0);
    connect(0, 1);
    connect(1, 2);
    connect(1, 1);
    EXPECT_EQ(plan(), Bands{"0|1|2"});
    const DrawingPlan made(m_model->root());
    EXPECT_TRUE(made.isForward(*m_blocks[0], *m_blocks[1]));
    EXPECT_FALSE(made.isForward(*m_blocks[2], *m_blocks[0]));
    EXPECT_FALSE(made.isForward(*m_blocks[1], *m_blocks[1]));
}

TEST_F(DrawingPlanTest, BlocksThatAreConnectedToNothingComeLast)
{
    addBlocks(3);
    connect(2, 1);
    EXPECT_EQ(plan(), Bands{"2|1|0"});
}

TEST_F(DrawingPlanTest, AWideDrawingIsBrokenIntoBands)
{
    addBlocks(100);
    for (std::size_t i = 1; i < m_blocks.size(); ++i) {
        connect(i - 1, i);
    }
    const Bands bands = plan();
    ASSERT_GT(bands.size(), 3U);
    EXPECT_EQ(bands[0].substr(0, 6), "0|1|2|");
    const DrawingPlan made(m_model->root());
    const std::size_t length = made.bandsOf(m_model->root())[0].size();
    EXPECT_TRUE(made.isForward(*m_blocks[0], *m_blocks[length - 1]));
    EXPECT_FALSE(made.isForward(*m_blocks[length - 1], *m_blocks[length])) << "the next band";
}

TEST_F(DrawingPlanTest, ManyBlocksThatAreConnectedToNothingFillASquare)
{
    addBlocks(100);
    const DrawingPlan made(m_model->root());
    const DrawingPlan::Band& band = made.bandsOf(m_model->root()).at(0);
    EXPECT_GT(band.size(), 4U);
    EXPECT_GT(band[0].size(), 4U);
}

TEST_F(DrawingPlanTest, SystemsInSystemsArePlannedToo)
{
    Block& outer = m_model->add(m_model->root(), u"outer", BlockKind::System);
    Block& inner = m_model->add(outer, u"inner", BlockKind::System);
    Block& block = m_model->add(inner, u"block", BlockKind::Component);
    const DrawingPlan made(m_model->root());
    EXPECT_EQ(made.bandsOf(outer).at(0).at(0).at(0), &inner);
    EXPECT_EQ(made.bandsOf(inner).at(0).at(0).at(0), &block);
}

}  // namespace
}  // namespace reference_host
