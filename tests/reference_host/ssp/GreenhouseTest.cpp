#include "reference_host/ssp/ModelFile.hpp"
#include "tests/reference_host/model/DiagramTest.hpp"

#include <algorithm>

using reference_host::Block;
using reference_host::Model;
using reference_host::OpenModels;
using reference_host::PortKind;

namespace {

class GreenhouseTest : public DiagramTest {
protected:
    void TearDown() override
    {
        OpenModels::close(u"Gewächshaus");
        DiagramTest::TearDown();
    }

    std::shared_ptr<Model> m_model = reference_host::openModel(ZM_EXAMPLES "/greenhouse.ssd");
};

TEST_F(GreenhouseTest, OpensWithoutAWarning)
{
    std::size_t outputs = 0;
    for (const Block* block : m_model->blocks()) {
        outputs += block->ports(PortKind::Output).size();
    }
    EXPECT_EQ(m_model->blockCount(), 36U);
    EXPECT_EQ(outputs, 63U);
}

TEST_F(GreenhouseTest, HasFourLevelsOfSystems)
{
    const Block* valve = m_model->findByPath(u"Klima/Heizung/Kessel/Brenner/Gasventil");
    ASSERT_NE(valve, nullptr);
    EXPECT_EQ(valve->ports(PortKind::Output).size(), 2U);
}

TEST_F(GreenhouseTest, HasANameOutsideTheBasicPlane)
{
    ASSERT_NE(m_model->findByPath(u"灌漑/養液/𠮷田タンク"), nullptr);
}

TEST_F(GreenhouseTest, EveryBlockIsFoundByPathZidAndHandle)
{
    for (Block* block : m_model->blocks()) {
        EXPECT_EQ(OpenModels::findByPath(block->path()), block);
        EXPECT_EQ(OpenModels::findByZid(block->zid()), block);
        EXPECT_EQ(OpenModels::findByHandle(block->handle()), block);
    }
}

}  // namespace
