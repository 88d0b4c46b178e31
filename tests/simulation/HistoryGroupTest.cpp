#include "simulation/HistoryGroup.hpp"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace simulation {
namespace {

/// Records steps 0, 1, 2 …; at step n, value k is 10 n + k.
class HistoryGroupTest : public testing::Test {
protected:
    void record(std::size_t count)
    {
        for (; count > 0; --count, ++m_step) {
            std::array<double, 4> values{};
            for (std::size_t i = 0; i < values.size(); ++i) {
                values[i] = 10.0 * static_cast<double>(m_step) + static_cast<double>(i);
            }
            m_group.record(m_step, static_cast<double>(m_step), values);
        }
    }

    std::vector<double> values(HistoryGroup::Column column) const
    {
        std::vector<double> times;
        std::vector<double> values;
        m_group.copy(column, times, values);
        return values;
    }

    HistoryGroup m_group{1, 0, 20};
    std::uint64_t m_step = 0;
};

TEST_F(HistoryGroupTest, ColumnHasTheValuesAtItsPlace)
{
    const auto second = m_group.add(1, 1);
    const auto wide = m_group.add(2, 2);
    record(2);
    EXPECT_EQ(values(second), (std::vector<double>{1, 11}));
    EXPECT_EQ(values(wide), (std::vector<double>{2, 3, 12, 13}));
    EXPECT_EQ(*m_group.lastValues(second), 11);
    EXPECT_EQ(m_group.lastTime(second), 1);
}

TEST_F(HistoryGroupTest, TheLastRowsAreKept)
{
    const auto column = m_group.add(0, 1);
    record(1000);
    const std::vector<double> kept = values(column);
    ASSERT_EQ(kept.size(), 20U);
    EXPECT_EQ(kept.front(), 9800);
    EXPECT_EQ(kept.back(), 9990);
    EXPECT_LE(m_group.bytes(), m_group.bytesFor(20));
}

TEST_F(HistoryGroupTest, EveryNthStepIsRecordedFromItsPhase)
{
    HistoryGroup group(3, 1, 20);
    const auto column = group.add(0, 1);
    const std::array<double, 1> value{7.0};
    std::vector<std::uint64_t> recorded;
    for (std::uint64_t step = 0; step < 8; ++step) {
        if (group.record(step, 0.0, value)) {
            recorded.push_back(step);
        }
    }
    EXPECT_EQ(recorded, (std::vector<std::uint64_t>{1, 4, 7}));
    EXPECT_EQ(group.rowCount(column), 3U);
}

TEST_F(HistoryGroupTest, ColumnThatIsAddedLaterBeginsThen)
{
    const auto first = m_group.add(0, 1);
    record(2);
    const auto late = m_group.add(3, 1);
    record(1);
    EXPECT_EQ(values(first), (std::vector<double>{0, 10, 20}));
    EXPECT_EQ(values(late), (std::vector<double>{23}));
}

TEST_F(HistoryGroupTest, ColumnInThePlaceOfARemovedOneHasNoneOfItsValues)
{
    m_group.add(0, 1);
    const auto removed = m_group.add(1, 1);
    record(2);
    m_group.remove(removed);
    const auto added = m_group.add(2, 1);
    EXPECT_EQ(added, removed);
    EXPECT_EQ(m_group.rowCount(added), 0U);
    record(1);
    EXPECT_EQ(values(added), (std::vector<double>{22}));
}

TEST_F(HistoryGroupTest, ClosedColumnKeepsWhatItHas)
{
    const auto closed = m_group.add(0, 1);
    record(2);
    m_group.close(closed);
    record(3);
    EXPECT_EQ(values(closed), (std::vector<double>{0, 10}));
}

TEST_F(HistoryGroupTest, MovedColumnGoesOnFromItsNewPlace)
{
    const auto column = m_group.add(0, 1);
    record(1);
    m_group.move(column, 3);
    record(1);
    EXPECT_EQ(values(column), (std::vector<double>{0, 13}));
}

TEST_F(HistoryGroupTest, LowerLimitFreesMemory)
{
    HistoryGroup group(1, 0, 10'000);
    const auto column = group.add(0, 1);
    const std::array<double, 1> value{1.0};
    for (std::uint64_t step = 0; step < 10'000; ++step) {
        group.record(step, 0.0, value);
    }
    const std::size_t before = group.bytes();
    group.setRowLimit(100);
    EXPECT_EQ(group.rowCount(column), 100U);
    EXPECT_LT(group.bytes(), before / 2);
}

}  // namespace
}  // namespace simulation
