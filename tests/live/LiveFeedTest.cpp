#include "live/HubFeed.hpp"

#include "live/ValueExchange.hpp"

#include <gtest/gtest.h>

using namespace live;
using simulation::StepTime;

namespace {

class LiveFeed : public ::testing::Test {
protected:
    simulation::ValueHub hub;
    std::shared_ptr<ValueExchange> exchange = std::make_shared<ValueExchange>();
    Delivery delivery;

    static simulation::ChannelSetup setup(const std::string& uuid, const std::string& block,
                                          std::size_t offset)
    {
        simulation::ChannelSetup result;
        result.channel.uuid = uuid;
        result.channel.modelName = "plant";
        result.channel.blockPath = "plant/" + block;
        result.channel.portName = "out";
        result.channel.portNumber = 1;
        result.channel.isBound = true;
        result.valueOffset = offset;
        return result;
    }

    HubFeed feedOf() { return {std::make_shared<reference_host::Model>(u"plant"), hub, exchange}; }

    std::shared_ptr<const Scene> takeScene()
    {
        exchange->take(delivery);
        return delivery.scene;
    }

    void record(double seconds, std::vector<double> values)
    {
        hub.record(StepTime::at(seconds, m_number++), values);
    }

private:
    std::uint64_t m_number = 0;
};

}  // namespace

TEST_F(LiveFeed, NamesChannelsByModelBlockAndPort)
{
    auto hidden = setup("c", "C", 2);
    hidden.channel.isHidden = true;
    hub.align({setup("a", "A", 0), setup("b", "A", 1), hidden});
    const HubFeed feed = feedOf();
    const auto scene = takeScene();
    ASSERT_EQ(scene->channels.size(), 3U);
    EXPECT_EQ(scene->model, "plant");
    EXPECT_EQ(scene->channels[0].topic, "plant/A:out");
    EXPECT_EQ(scene->channels[1].topic, "plant/A:out #2") << "two signals on one port";
    EXPECT_TRUE(scene->channels[0].isListed);
    EXPECT_FALSE(scene->channels[2].isListed);
}

TEST_F(LiveFeed, DeliversWhatIsWantedWithItsTime)
{
    hub.align({setup("a", "A", 0), setup("b", "B", 1)});
    const HubFeed feed = feedOf();
    const ChannelId wanted = takeScene()->channels[1].id;
    record(0.5, {1.0, 10.0});
    exchange->take(delivery);
    EXPECT_TRUE(delivery.values.empty());
    exchange->setWanted({wanted});
    record(1.0, {2.0, 20.0});
    exchange->take(delivery);
    ASSERT_EQ(delivery.values.all().size(), 1U) << "the latest value of a channel that is new";
    record(1.5, {3.0, 30.0});
    exchange->take(delivery);
    ASSERT_EQ(delivery.values.all().size(), 1U);
    EXPECT_EQ(delivery.values.all()[0].channel, wanted);
    EXPECT_EQ(delivery.values.all()[0].latest, 30.0);
    EXPECT_EQ(delivery.values.all()[0].time, 1'500'000'000);
    EXPECT_EQ(delivery.time, 1'500'000'000);
}

TEST_F(LiveFeed, AChannelKeepsItsIdUntilItsNameChanges)
{
    hub.align({setup("a", "A", 0), setup("b", "B", 1)});
    const HubFeed feed = feedOf();
    const auto former = takeScene();
    hub.align({setup("a", "A", 0), setup("b", "Renamed", 1)});
    record(1.0, {1.0, 2.0});
    const auto scene = takeScene();
    ASSERT_NE(scene, nullptr);
    EXPECT_EQ(scene->channels[0].id, former->channels[0].id);
    EXPECT_NE(scene->channels[1].id, former->channels[1].id);
    EXPECT_EQ(scene->channels[1].topic, "plant/Renamed:out");
    hub.align({setup("a", "A", 0)});
    record(2.0, {1.0});
    EXPECT_EQ(takeScene()->channels.size(), 1U);
}

TEST_F(LiveFeed, AClientIsAWidgetAndShowsTheElementThatItSelects)
{
    auto array = setup("a", "A", 0);
    array.channel.layout = simulation::ValueLayout::numbers(3);
    hub.align({array});
    simulation::ResolvedClient bound;
    bound.uuid = "w";
    bound.observerType = "gauge";
    bound.title = "Third";
    bound.channel = hub.channels()[0].id;
    bound.valueIndex = 2;
    bound.dimensionChannel = 3;
    bound.updateRate = 7;
    bound.maxPoints = 11;
    bound.parameters["Minimum"] = -5.0;
    simulation::ResolvedClient unbound;
    unbound.uuid = "u";
    hub.setClients({bound, unbound});
    const HubFeed feed = feedOf();
    const auto scene = takeScene();
    ASSERT_EQ(scene->widgets.size(), 2U);
    const Widget& widget = scene->widgets[0];
    EXPECT_EQ(widget.type, "gauge");
    EXPECT_EQ(widget.title, "Third");
    EXPECT_EQ(widget.signal, "A: out[3]");
    EXPECT_EQ(widget.updateRate, 7U);
    EXPECT_EQ(widget.maxPoints, 11);
    EXPECT_EQ(widget.minimum, -5.0);
    EXPECT_FALSE(scene->widgets[1].channel);
    ASSERT_TRUE(widget.channel);
    EXPECT_FALSE(scene->channels.back().isListed) << "other viewers see the signal once";
    exchange->setWanted({*widget.channel});
    record(1.0, {1.0, 2.0, 3.0});
    exchange->take(delivery);
    EXPECT_EQ(delivery.values.all().at(0).latest, 3.0);
}

TEST_F(LiveFeed, AFrameIsMergedSoThatNoPeakIsLost)
{
    auto frame = setup("a", "A", 0);
    frame.channel.layout = simulation::ValueLayout::numbers(4);
    frame.channel.isFrameBased = true;
    hub.align({frame});
    const HubFeed feed = feedOf();
    exchange->setWanted({takeScene()->channels[0].id});
    record(1.0, {1.0, 9.0, -2.0, 3.0});
    exchange->take(delivery);
    const LiveValue value = delivery.values.all().at(0);
    EXPECT_EQ(value.latest, 3.0);
    EXPECT_EQ(value.maximum, 9.0);
    EXPECT_EQ(value.minimum, -2.0);
}

TEST_F(LiveFeed, TellsTheStateAndWhyTheRunEnded)
{
    hub.align({setup("a", "A", 0)});
    const HubFeed feed = feedOf();
    EXPECT_EQ(takeScene()->state, "ready");
    hub.setState(simulation::RunState::Paused);
    EXPECT_EQ(takeScene()->state, "paused");
    hub.setState(simulation::RunState::Ended, "the source failed");
    EXPECT_EQ(takeScene()->state, "the source failed");
}
