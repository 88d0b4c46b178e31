#include "live/ValueExchange.hpp"

#include <gtest/gtest.h>

#include <thread>

using namespace live;

TEST(LiveExchange, MergesValuesByChannel)
{
    ValueExchange exchange;
    exchange.put(LiveValue::of(3, 1, 5.0));
    exchange.put(LiveValue::of(4, 1, 1.0));
    exchange.publish(1);
    exchange.put(LiveValue::of(3, 2, 7.0));
    exchange.put(LiveValue::of(3, 3, 6.0));
    exchange.publish(3);
    Delivery delivery;
    ASSERT_TRUE(exchange.take(delivery));
    ASSERT_EQ(delivery.values.all().size(), 2U);
    const LiveValue& value = delivery.values.all()[0];
    EXPECT_EQ(value.channel, 3U);
    EXPECT_EQ(value.latest, 6.0);
    EXPECT_EQ(value.minimum, 5.0);
    EXPECT_EQ(value.maximum, 7.0);
    EXPECT_EQ(value.time, 3);
    EXPECT_EQ(value.count, 3U);
    EXPECT_EQ(delivery.time, 3);
    EXPECT_FALSE(exchange.take(delivery));
    EXPECT_TRUE(delivery.values.empty());
}

TEST(LiveExchange, WakesOncePerDelivery)
{
    ValueExchange exchange;
    int woken = 0;
    exchange.onReady([&] { ++woken; });
    exchange.publish(1);
    exchange.publish(2);
    EXPECT_EQ(woken, 1);
    Delivery delivery;
    exchange.take(delivery);
    exchange.publish(3);
    EXPECT_EQ(woken, 2);
    exchange.close();
    exchange.take(delivery);
    exchange.publish(4);
    EXPECT_EQ(woken, 2);
}

TEST(LiveExchange, TellsWhatIsWantedOnce)
{
    ValueExchange exchange;
    std::vector<ChannelId> wanted;
    EXPECT_FALSE(exchange.takeWanted(wanted));
    exchange.setWanted({1, 2});
    EXPECT_TRUE(exchange.takeWanted(wanted));
    EXPECT_EQ(wanted, (std::vector<ChannelId>{1, 2}));
    EXPECT_FALSE(exchange.takeWanted(wanted));
}

TEST(LiveExchange, NoValueIsLostBetweenTwoThreads)
{
    constexpr std::int64_t count = 20'000;
    ValueExchange exchange;
    std::thread producer([&] {
        std::vector<ChannelId> wanted;
        for (std::int64_t i = 1; i <= count; ++i) {
            exchange.put(LiveValue::of(1, i, static_cast<double>(i)));
            exchange.publish(i);
            exchange.takeWanted(wanted);
        }
        exchange.flush();
    });
    std::uint64_t taken = 0;
    double latest = 0.0;
    Delivery delivery;
    while (taken < static_cast<std::uint64_t>(count)) {
        exchange.take(delivery);
        for (const LiveValue& value : delivery.values.all()) {
            taken += value.count;
            EXPECT_GT(value.latest, latest);
            latest = value.latest;
        }
        exchange.setWanted({1});
    }
    producer.join();
    EXPECT_EQ(taken, static_cast<std::uint64_t>(count));
    EXPECT_EQ(latest, static_cast<double>(count));
}
