#include "live/BrokerQueue.hpp"
#include "live/BrokerTopics.hpp"
#include "live/MqttPublisher.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace live;
using namespace std::chrono_literals;

namespace {

std::shared_ptr<Scene> sceneWith(std::vector<LiveChannel> channels)
{
    auto scene = std::make_shared<Scene>();
    scene->channels = std::move(channels);
    return scene;
}

LiveChannel channelOf(ChannelId id)
{
    LiveChannel channel;
    channel.id = id;
    return channel;
}

}  // namespace

TEST(LiveBrokerTopics, LevelsAreEscapedReversibly)
{
    const std::string all = std::string("a+b#c/d%e\x01\x7f", 11) + '\0' + "ünïcode 田";
    for (const std::string& name :
         {all, std::string(), std::string("%"), std::string("%2F"), std::string("plain")}) {
        const std::string level = levelOfName(name);
        EXPECT_EQ(level.find_first_of("+#/"), std::string::npos) << level;
        EXPECT_FALSE(level.empty());
        EXPECT_EQ(nameOfLevel(level), name);
    }
    EXPECT_EQ(levelOfName("a/b"), "a%2Fb");
    EXPECT_EQ(levelOfName("Lüftung"), "Lüftung");
}

TEST(LiveBrokerTopics, WhatNoNameGivesIsNoLevel)
{
    for (const char* level : {"", "%2", "%zz", "a/b", "%41", "%2f", "+"}) {
        EXPECT_EQ(nameOfLevel(level), std::nullopt) << level;
    }
}

TEST(LiveBrokerTopics, LevelsAreModelBlocksAndPort)
{
    LiveChannel channel;
    channel.topic = "plant/A/B#1:out/2";
    channel.blockPath = "plant/A/B#1";
    EXPECT_EQ(levelsOf(channel), "plant/A/B%231/out%2F2");
    EXPECT_EQ(payloadOf(LiveValue::of(1, 1'500'000'000, 2.5)), R"({"time":1.5,"value":2.5})");
}

TEST(LiveBrokerQueue, KeepsEveryValueInOrder)
{
    BrokerQueue queue(100);
    queue.setScene(sceneWith({channelOf(1), channelOf(2)}));
    std::vector<ChannelId> wanted;
    EXPECT_TRUE(queue.takeWanted(wanted));
    EXPECT_EQ(wanted, (std::vector<ChannelId>{1, 2}));
    EXPECT_FALSE(queue.takeWanted(wanted));
    queue.put(LiveValue::of(1, 1, 1.0));
    queue.put(LiveValue::of(1, 1, 2.0));
    queue.publish(1);
    std::vector<LiveValue> values;
    std::shared_ptr<const Scene> scene;
    EXPECT_TRUE(queue.take(values, scene));
    EXPECT_NE(scene, nullptr);
    ASSERT_EQ(values.size(), 2U);
    EXPECT_EQ(values[1].latest, 2.0);
    EXPECT_FALSE(queue.take(values, scene));
}

TEST(LiveBrokerQueue, DropsTheOldestBeyondTheLimit)
{
    BrokerQueue queue(10);
    for (int i = 0; i < 25; ++i) {
        queue.put(LiveValue::of(1, i, i));
        queue.publish(i);
    }
    EXPECT_EQ(queue.waiting(), 10U);
    EXPECT_EQ(queue.dropped(), 15U);
    std::vector<LiveValue> values;
    std::shared_ptr<const Scene> scene;
    EXPECT_TRUE(queue.take(values, scene));
    EXPECT_EQ(values.at(0).latest, 15.0);
}

TEST(LivePublisher, KeepsTryingAndBoundsWhatWaitsWhileTheBrokerIsAway)
{
    BrokerSettings settings;
    settings.host = "127.0.0.1";
    settings.port = 1;  // where no broker listens
    settings.prefix = "test";
    settings.maxWaiting = 100;
    settings.firstPause = 1ms;
    settings.longestPause = 2ms;
    MqttPublisher publisher(settings);
    publisher.sink()->setScene(sceneWith({channelOf(1)}));
    for (int i = 0; i < 1000; ++i) {
        publisher.sink()->put(LiveValue::of(1, i, i));
        publisher.sink()->flush();
    }
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (publisher.counts().error.empty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    const BrokerCounts counts = publisher.counts();
    EXPECT_FALSE(counts.error.empty());
    EXPECT_FALSE(counts.isConnected);
    EXPECT_EQ(counts.waiting, 100U);
    EXPECT_EQ(counts.dropped, 900U);
    publisher.stop();
}

TEST(LivePublisher, RefusesCertificatesThatItCannotRead)
{
    BrokerSettings settings;
    settings.host = "127.0.0.1";
    settings.prefix = "test";
    settings.useTls = true;
    settings.authorities = "/nowhere/authorities.pem";
    EXPECT_THROW(const MqttPublisher publisher(settings), std::runtime_error);
}
