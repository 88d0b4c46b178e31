#include "simulation/Pacer.hpp"

#include "host/Exceptions.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace simulation {
namespace {

using std::chrono::milliseconds;

/// A clock that only sleeping moves.
class PacerTest : public testing::Test {
protected:
    Pacer pacer(double factor)
    {
        return Pacer(factor, {[this] { return m_now; },
                              [this](Waiting::Clock::duration time) {
                                  EXPECT_LE(time, milliseconds(20));
                                  m_now += time;
                              }});
    }
    milliseconds elapsed() const
    {
        return std::chrono::duration_cast<milliseconds>(m_now - Waiting::Clock::time_point());
    }

    Waiting::Clock::time_point m_now;
};

TEST_F(PacerTest, ModelTimeIsRealTimeTimesTheFactor)
{
    Pacer slow = pacer(0.5);
    slow.waitFor(10.0, {});
    EXPECT_EQ(elapsed(), milliseconds(0));
    slow.waitFor(10.5, {});
    EXPECT_EQ(elapsed(), milliseconds(1000));
}

TEST_F(PacerTest, NoFactorDoesNotWait)
{
    Pacer(std::nullopt).waitFor(1e300, [] { FAIL(); });
}

TEST_F(PacerTest, CheckpointCanEndTheWait)
{
    Pacer slow = pacer(1.0);
    slow.waitFor(0.0, {});
    EXPECT_THROW(slow.waitFor(1000.0, [] { throw std::runtime_error("interrupt"); }), std::runtime_error);
    EXPECT_EQ(elapsed(), milliseconds(0));
}

TEST_F(PacerTest, RunThatIsLateDoesNotHurryAfterwards)
{
    Pacer real = pacer(1.0);
    real.waitFor(0.0, {});
    m_now += milliseconds(5000);
    real.waitFor(1.0, {});
    real.waitFor(2.0, {});
    EXPECT_EQ(elapsed(), milliseconds(6000));
}

TEST_F(PacerTest, TimeAfterARestartCountsAnew)
{
    Pacer real = pacer(1.0);
    real.waitFor(0.0, {});
    real.restart();
    real.waitFor(100.0, {});
    EXPECT_EQ(elapsed(), milliseconds(0));
}

TEST_F(PacerTest, FactorThatIsNotAboveZeroIsRefused)
{
    EXPECT_THROW(pacer(0.0), zmsvException);
    EXPECT_THROW(pacer(1.0).setFactor(-1.0), zmsvException);
}

}  // namespace
}  // namespace simulation
