#include "simulation/ValueHub.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace simulation {
namespace {

/// Writes down what it is told.
class Listener : public HubConsumer {
public:
    void channelAdded(const Channel& channel) override { said += "+" + channel.uuid + " "; }
    void channelChanged(const Channel& channel) override { said += "~" + channel.uuid + " "; }
    void channelRemoved(ChannelId channel) override { said += "-" + std::to_string(channel) + " "; }
    void clientsChanged(const std::vector<ResolvedClient>& clients) override
    {
        said += "clients:" + std::to_string(clients.size()) + " ";
    }
    void step(const StepTime& time, std::span<const ChannelSamples> samples) override
    {
        said += "step" + std::to_string(time.number) + "(";
        for (const ChannelSamples& each : samples) {
            said += std::to_string(each.channel) + "=";
            for (const double value : each.values) {
                said += std::to_string(static_cast<int>(value)) + ",";
            }
        }
        said += ") ";
        if (throws) {
            throw std::runtime_error("consumer");
        }
    }
    void runStateChanged(RunState state, const std::string& error) override
    {
        said += state == RunState::Ended ? "ended:" + error + " " : "state ";
    }

    std::string take() { return std::exchange(said, {}); }

    std::string said;
    bool throws = false;
};

Channel channel(const std::string& uuid)
{
    Channel made;
    made.uuid = uuid;
    return made;
}

class ValueHubTest : public testing::Test {
protected:
    void record(std::vector<double> values)
    {
        const auto number = m_step++;
        m_hub.record(StepTime::at(static_cast<double>(number), number), values);
    }

    ValueHub m_hub;
    std::uint64_t m_step = 0;
};

TEST_F(ValueHubTest, LatestAndHistoryFollowTheSteps)
{
    m_hub.align({{channel("a"), 0}, {channel("b"), 1}});
    const ChannelId b = m_hub.findByUuid("b")->id;
    EXPECT_FALSE(m_hub.latest(b).has_value());
    record({1, 2});
    record({3, 4});
    EXPECT_EQ(m_hub.latest(b)->time, 1.0);
    EXPECT_EQ(m_hub.latest(b)->values, (std::vector<double>{4}));
    EXPECT_EQ(m_hub.history(b).times, (std::vector<double>{0, 1}));
    EXPECT_EQ(m_hub.history(b).values, (std::vector<double>{2, 4}));
}

TEST_F(ValueHubTest, ConsumerIsToldOfEachStep)
{
    Listener listener;
    m_hub.align({{channel("a"), 0}});
    const Subscription subscription = m_hub.subscribe(listener);
    EXPECT_EQ(listener.take(), "+a clients:0 ");
    record({5});
    EXPECT_EQ(listener.take(), "step0(1=5,) ");
    m_hub.setState(RunState::Ended, "why");
    EXPECT_EQ(listener.take(), "ended:why ");
}

TEST_F(ValueHubTest, DecimatedChannelHasNoSampleBetween)
{
    Channel decimated = channel("a");
    decimated.decimation = 2;
    m_hub.align({{decimated, 0}});
    Listener listener;
    const Subscription subscription = m_hub.subscribe(listener);
    listener.take();
    record({1});
    record({2});
    record({3});
    EXPECT_EQ(listener.take(), "step0(1=1,) step1() step2(1=3,) ");
    EXPECT_EQ(m_hub.history(1).values, (std::vector<double>{1, 3}));
}

TEST_F(ValueHubTest, SubscriptionSelectsChannels)
{
    m_hub.align({{channel("a"), 0}, {channel("b"), 1}});
    Listener listener;
    Subscription subscription = m_hub.subscribe(listener);
    listener.take();
    subscription.select({2, 99});
    record({1, 2});
    EXPECT_EQ(listener.take(), "step0(2=2,) ");
    subscription.selectAll();
    record({1, 2});
    EXPECT_EQ(listener.take(), "step1(1=1,2=2,) ");
    subscription.end();
    record({1, 2});
    EXPECT_EQ(listener.take(), "");
}

TEST_F(ValueHubTest, BufferedChannelIsDeliveredInBlocks)
{
    ValueHub hub({.blockSamples = 3});
    Channel buffered = channel("a");
    buffered.isBuffered = true;
    hub.align({{buffered, 0}});
    Listener listener;
    const Subscription subscription = hub.subscribe(listener);
    listener.take();
    for (int i = 1; i <= 4; ++i) {
        const std::vector<double> value{static_cast<double>(i)};
        hub.record(StepTime::at(i, static_cast<std::uint64_t>(i)), value);
    }
    EXPECT_EQ(listener.take(), "step1() step2() step3(1=1,2,3,) step4() ");
    EXPECT_EQ(hub.latest(1)->values, (std::vector<double>{4}));
    hub.setState(RunState::Paused);
    EXPECT_EQ(listener.take(), "step4(1=4,) state ");
}

TEST_F(ValueHubTest, ChannelKeepsItsIdAndHistoryThroughARename)
{
    Channel a = channel("a");
    m_hub.align({{a, 0}, {channel("b"), 1}});
    Listener listener;
    const Subscription subscription = m_hub.subscribe(listener);
    listener.take();
    record({1, 2});
    a.blockPath = "plant/New";
    m_hub.align({{channel("c"), 1}, {a, 0}});
    EXPECT_EQ(listener.take(), "step0(1=1,2=2,) -2 ~a +c ");
    record({3, 4});
    EXPECT_EQ(m_hub.history(1).values, (std::vector<double>{1, 3}));
    EXPECT_EQ(m_hub.history(3).values, (std::vector<double>{4}));
    EXPECT_EQ(m_hub.find(2), nullptr);
    EXPECT_TRUE(m_hub.history(2).times.empty());
}

TEST_F(ValueHubTest, SignalsOfOneUuidAreChannelsOfTheirOwn)
{
    m_hub.align({{channel("a"), 0}, {channel("a"), 1}});
    record({1, 2});
    m_hub.align({{channel("a"), 0}, {channel("a"), 1}});
    record({3, 4});
    EXPECT_EQ(m_hub.history(1).values, (std::vector<double>{1, 3}));
    EXPECT_EQ(m_hub.history(2).values, (std::vector<double>{2, 4}));
}

TEST_F(ValueHubTest, ChannelWithoutASourceKeepsWhatItHas)
{
    m_hub.align({{channel("a"), 0}});
    record({1});
    m_hub.align({{channel("a"), std::nullopt}});
    record({2});
    EXPECT_FALSE(m_hub.find(1)->hasSource);
    EXPECT_EQ(m_hub.history(1).values, (std::vector<double>{1}));
}

TEST_F(ValueHubTest, ArraysHaveAsManyValuesASample)
{
    Channel wide = channel("a");
    wide.layout = ValueLayout::numbers(2, true);
    m_hub.align({{wide, 1}});
    record({0, 1, 2, 3, 4});
    EXPECT_EQ(m_hub.latest(1)->values, (std::vector<double>{1, 2, 3, 4}));
    EXPECT_EQ(wide.layout.find("", 2, true), 3U);
    EXPECT_EQ(wide.layout.find("", 3, false), std::nullopt);
}

TEST_F(ValueHubTest, BusLeavesAreFoundByPath)
{
    ValueLayout bus{{}, 0};
    bus.addLeaf("motor.speed", 1, false);
    bus.addLeaf("motor.current", 3, true);
    EXPECT_EQ(bus.width, 7U);
    EXPECT_EQ(bus.find("motor.current", 2, false), 3U);
    EXPECT_EQ(bus.find("motor.speed", 1, true), std::nullopt);
    EXPECT_EQ(bus.find("motor.torque", 1, false), std::nullopt);
}

TEST_F(ValueHubTest, HistoriesThatNeedTooMuchAreShortenedEvenlyWithOneWarning)
{
    ValueHub hub({.historyBytes = 16'000});
    std::vector<std::string> warnings;
    hub.onShortened([&](const std::string& warning) { warnings.push_back(warning); });
    Channel little = channel("b");
    little.maxPoints = 1000;
    hub.align({{channel("a"), 0}, {little, 1}});
    hub.align({{channel("a"), 0}, {little, 1}, {channel("c"), 1}});
    const std::vector<double> values{1, 2};
    for (std::uint64_t i = 0; i < 20'000; ++i) {
        hub.record(StepTime::at(0.0, i), values);
    }
    ASSERT_EQ(warnings.size(), 1U);
    const auto many = static_cast<double>(hub.history(1).times.size());
    const auto few = static_cast<double>(hub.history(2).times.size());
    EXPECT_NEAR(many / few, 10.0, 1.0);
    EXPECT_LE(hub.historyBytes(), 16'000U);
}

TEST_F(ValueHubTest, ConsumerThatThrowsDoesNotKeepTheOthersFromTheStep)
{
    m_hub.align({{channel("a"), 0}});
    Listener bad;
    Listener good;
    bad.throws = true;
    const Subscription first = m_hub.subscribe(bad);
    const Subscription second = m_hub.subscribe(good);
    good.take();
    EXPECT_THROW(record({1}), std::runtime_error);
    EXPECT_EQ(good.take(), "step0(1=1,) ");
}

TEST_F(ValueHubTest, ProbeIsDeliveredOnlyWhereItIsSelected)
{
    Channel probe = channel("probe");
    probe.isProbe = true;
    m_hub.align({{probe, 0}});
    Listener listener;
    Subscription subscription = m_hub.subscribe(listener);
    EXPECT_EQ(listener.take(), "clients:0 ");
    EXPECT_TRUE(m_hub.channels().empty());
    record({1});
    EXPECT_EQ(listener.take(), "step0() ");
    subscription.select({1});
    record({2});
    EXPECT_EQ(listener.take(), "step1(1=2,) ");
}

TEST_F(ValueHubTest, SubscriptionMayOutliveTheHub)
{
    Listener listener;
    Subscription subscription;
    {
        ValueHub hub;
        subscription = hub.subscribe(listener);
    }
    subscription.end();
    EXPECT_EQ(listener.take(), "clients:0 ");
}

}  // namespace
}  // namespace simulation
