#include "reference_host/model/Chart.hpp"

#include "tests/reference_host/model/DiagramTest.hpp"

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::Chart;
using reference_host::chartDomainType;
using reference_host::ChartObjectKind;
using reference_host::Model;

namespace {

class ChartTest : public DiagramTest {
protected:
    Model m_model{u"plant"};
    Block& m_block = m_model.add(m_model.root(), u"Mode", BlockKind::Component);
};

TEST_F(ChartTest, ChartItselfHasNumberZero)
{
    const Chart& chart = m_block.addChart(u"Mode logic");
    ASSERT_NE(chart.find(0), nullptr);
    EXPECT_EQ(chart.find(0)->kind, ChartObjectKind::Chart);
    EXPECT_EQ(chart.name(), u"Mode logic");
}

TEST_F(ChartTest, StatesAndDataAreNumberedTogether)
{
    Chart& chart = m_block.addChart(u"Mode logic");
    EXPECT_EQ(chart.addState(u"On"), 1U);
    EXPECT_EQ(chart.addData(u"count"), 2U);
    EXPECT_EQ(chart.addState(u"Heating", 1), 3U);
    EXPECT_EQ(chart.find(2)->kind, ChartObjectKind::Data);
    EXPECT_EQ(chart.find(3)->parent, 1U);
    EXPECT_EQ(chart.find(3)->name, u"Heating");
    EXPECT_EQ(chart.objects().size(), 4U);
}

TEST_F(ChartTest, NumberThatWasNotGivenFindsNothing)
{
    EXPECT_EQ(m_block.addChart(u"Mode logic").find(1), nullptr);
}

TEST_F(ChartTest, ParentIsTheChartOrAState)
{
    Chart& chart = m_block.addChart(u"Mode logic");
    const std::uint32_t data = chart.addData(u"count");
    hostError("InvalidChartParent", [&] { chart.addState(u"On", data); });
    hostError("InvalidChartParent", [&] { chart.addData(u"x", 7); });
    EXPECT_EQ(chart.objects().size(), 2U);
}

TEST_F(ChartTest, ChartsAndTheirObjectsNeedNames)
{
    hostError("InvalidName", [&] { m_block.addChart(u""); });
    EXPECT_EQ(m_block.chart(), nullptr);
    Chart& chart = m_block.addChart(u"Mode logic");
    hostError("InvalidName", [&] { chart.addState(u""); });
    hostError("InvalidName", [&] { chart.addData(u""); });
}

TEST_F(ChartTest, BlockCarriesOneChart)
{
    const Chart& chart = m_block.addChart(u"Mode logic");
    hostError("InvalidChartBlock", [&] { m_block.addChart(u"Other"); });
    EXPECT_EQ(m_block.chart(), &chart);
}

TEST_F(ChartTest, ModelItselfCarriesNoChart)
{
    hostError("InvalidChartBlock", [&] { m_model.root().addChart(u"Mode logic"); });
}

TEST_F(ChartTest, DomainTypeFollowsTheKind)
{
    EXPECT_EQ(std::u16string(chartDomainType(ChartObjectKind::Chart)), u"kw_chart");
    EXPECT_EQ(std::u16string(chartDomainType(ChartObjectKind::State)), u"kw_state");
    EXPECT_EQ(std::u16string(chartDomainType(ChartObjectKind::Data)), u"kw_data");
}

}  // namespace
