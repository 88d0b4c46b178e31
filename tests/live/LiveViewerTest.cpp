#include "live/Viewer.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstring>
#include <limits>

using namespace live;
using namespace std::chrono_literals;
using Json = nlohmann::json;

namespace {

LiveChannel channelNamed(ChannelId id, const std::string& topic, bool isListed = true)
{
    LiveChannel channel;
    channel.id = id;
    channel.topic = topic;
    channel.isListed = isListed;
    return channel;
}

std::shared_ptr<Scene> sceneWith(std::vector<LiveChannel> channels)
{
    auto scene = std::make_shared<Scene>();
    scene->version = 7;
    scene->channels = std::move(channels);
    return scene;
}

class LiveViewer : public ::testing::Test {
protected:
    Viewer viewer{Viewer::Kind::Standard, limits(), "test", "session"};
    Viewer::Clock::time_point now = Viewer::Clock::time_point{} + 1h;

    static ViewerLimits limits()
    {
        ViewerLimits limits;
        limits.waitingControls = 16;
        limits.subscriptions = 3;
        return limits;
    }

    std::vector<Frame> frames()
    {
        std::vector<Frame> result;
        while (auto frame = viewer.next(now)) {
            result.push_back(std::move(*frame));
        }
        return result;
    }

    Json nextText()
    {
        const auto frame = viewer.next(now);
        return frame && !frame->isBinary ? Json::parse(frame->data) : Json("no text");
    }

    void watch(ChannelId channel)
    {
        viewer.sceneChanged(sceneWith({channelNamed(channel, "m/a:x")}));
        const std::string id = std::to_string(channel);
        EXPECT_FALSE(
            viewer.receiveText(R"({"op":"subscribe","subscriptions":[{"id":9,"channelId":)" + id + "}]}"));
        frames();
    }
};

Json payloadOf(const Frame& frame)
{
    return Json::parse(frame.data.substr(13));
}

}  // namespace

TEST_F(LiveViewer, GetsServerInfoFirst)
{
    const Json info = nextText();
    EXPECT_EQ(info["op"], "serverInfo");
    EXPECT_EQ(info["name"], "test");
    EXPECT_EQ(info["sessionId"], "session");
    EXPECT_EQ(info["capabilities"], Json::array({"time"}));
}

TEST_F(LiveViewer, IsToldWhatComesAndGoes)
{
    nextText();
    viewer.sceneChanged(sceneWith({channelNamed(1, "m/a:x"), channelNamed(2, "m/a:y")}));
    Json message = nextText();
    EXPECT_EQ(message["op"], "advertise");
    ASSERT_EQ(message["channels"].size(), 2U);
    EXPECT_EQ(message["channels"][0]["topic"], "m/a:x");
    EXPECT_EQ(message["channels"][0]["encoding"], "json");
    EXPECT_EQ(message["channels"][0]["schemaEncoding"], "jsonschema");
    EXPECT_TRUE(
        Json::parse(message["channels"][0]["schema"].get<std::string>())["properties"].contains("max"));

    viewer.sceneChanged(sceneWith({channelNamed(2, "m/a:y"), channelNamed(3, "m/b:x")}));
    message = nextText();
    EXPECT_EQ(message["op"], "unadvertise");
    EXPECT_EQ(message["channelIds"], Json::array({1}));
    message = nextText();
    EXPECT_EQ(message["channels"].size(), 1U);
    EXPECT_EQ(message["channels"][0]["id"], 3);
    EXPECT_TRUE(frames().empty());
}

TEST_F(LiveViewer, OnlyThePageSeesUnlistedChannelsAndScenes)
{
    const auto scene = sceneWith({channelNamed(1, "hidden", false)});
    viewer.sceneChanged(scene);
    EXPECT_EQ(frames().size(), 1U);
    Viewer page(Viewer::Kind::Page, limits(), "test", "session");
    page.sceneChanged(scene);
    page.next(now);
    EXPECT_EQ(Json::parse(page.next(now)->data)["op"], "advertise");
    const Json told = Json::parse(page.next(now)->data);
    EXPECT_EQ(told["op"], "scene");
    EXPECT_EQ(told["version"], 7);
}

TEST_F(LiveViewer, AValueIsABinaryMessageWithTimeAndExtremes)
{
    watch(5);
    viewer.offer(LiveValue::of(5, 1'500'000'000, 20.5));
    const auto sent = frames();
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_TRUE(sent[0].isBinary);
    EXPECT_EQ(sent[0].data[0], '\x01');
    std::uint32_t subscription = 0;
    std::uint64_t time = 0;
    std::memcpy(&subscription, sent[0].data.data() + 1, 4);
    std::memcpy(&time, sent[0].data.data() + 5, 8);
    EXPECT_EQ(subscription, 9U);
    EXPECT_EQ(time, 1'500'000'000U);
    EXPECT_EQ(sent[0].data.substr(13), R"({"value":20.5,"min":20.5,"max":20.5})");
}

TEST_F(LiveViewer, AfterAStallTheViewerGetsThePresentWithTheExtremes)
{
    watch(5);
    for (int i = 0; i < 1000; ++i) {
        viewer.offer(LiveValue::of(5, i, i == 500 ? 99.0 : i == 600 ? -3.0 : 1.0));
    }
    viewer.offer(LiveValue::of(5, 1000, 2.0));
    const auto sent = frames();
    ASSERT_EQ(sent.size(), 2U) << "the status and one value";
    EXPECT_EQ(Json::parse(sent[0].data)["id"], "merged");
    EXPECT_EQ(payloadOf(sent[1]), Json::parse(R"({"value":2,"min":-3,"max":99})"));
    EXPECT_EQ(viewer.mergedCount(), 1000U);
}

TEST_F(LiveViewer, GetsAtMostSixtyMessagesASecondForASignal)
{
    watch(5);
    std::size_t sent = 0;
    for (int i = 0; i < 1000; ++i) {  // a value each millisecond
        viewer.offer(LiveValue::of(5, i, i));
        for (const Frame& frame : frames()) {
            sent += frame.isBinary ? 1 : 0;
        }
        now += 1ms;
    }
    EXPECT_LE(sent, 60U);
    EXPECT_GE(sent, 55U);
}

TEST_F(LiveViewer, IsToldOfMergedValuesAtMostEveryFiveSeconds)
{
    watch(5);
    int told = 0;
    for (int i = 0; i < 1100; ++i) {  // eleven seconds
        viewer.offer(LiveValue::of(5, i, i));
        viewer.offer(LiveValue::of(5, i, i));
        for (const Frame& frame : frames()) {
            told += frame.isBinary ? 0 : 1;
        }
        now += 10ms;
    }
    EXPECT_EQ(told, 3);
}

TEST_F(LiveViewer, NaNAndInfinityAreNull)
{
    EXPECT_EQ(number(std::nan("")), "null");
    EXPECT_EQ(number(-std::numeric_limits<double>::infinity()), "null");
    watch(5);
    viewer.offer(LiveValue::of(5, 0, std::nan("")));
    viewer.offer(LiveValue::of(5, 1, 4.0));
    viewer.offer(LiveValue::of(5, 2, std::nan("")));
    EXPECT_EQ(payloadOf(frames().back()), Json::parse(R"({"value":null,"min":4,"max":4})"));
}

TEST_F(LiveViewer, TimeIsSentAsTheProtocolHasIt)
{
    watch(5);
    viewer.offerTime(258);
    viewer.offerTime(259);
    const auto sent = frames();
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0].data, std::string("\x02\x03\x01\0\0\0\0\0\0", 9));
}

TEST_F(LiveViewer, NothingIsSentAfterUnsubscribing)
{
    watch(5);
    viewer.offer(LiveValue::of(5, 0, 1.0));
    EXPECT_FALSE(viewer.receiveText(R"({"op":"unsubscribe","subscriptionIds":[9]})"));
    viewer.offer(LiveValue::of(5, 1, 1.0));
    EXPECT_TRUE(frames().empty());
    EXPECT_TRUE(viewer.subscribedChannels().empty());
    EXPECT_FALSE(viewer.due());
}

TEST_F(LiveViewer, AWithdrawnChannelHasNoSubscription)
{
    watch(5);
    viewer.offer(LiveValue::of(5, 0, 1.0));
    viewer.sceneChanged(sceneWith({}));
    EXPECT_TRUE(viewer.subscribedChannels().empty());
    const auto sent = frames();
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(Json::parse(sent[0].data)["op"], "unadvertise");
}

TEST_F(LiveViewer, WrongSubscriptionsAreAnsweredAndNotFatal)
{
    watch(5);
    for (const char* wrong :
         {R"({"op":"subscribe","subscriptions":[{"id":9,"channelId":5}]})",
          R"({"op":"subscribe","subscriptions":[{"id":10,"channelId":5}]})",
          R"({"op":"subscribe","subscriptions":[{"id":10,"channelId":6}]})",
          R"({"op":"unsubscribe","subscriptionIds":[77]})", R"({"op":"setParameters","parameters":[]})"}) {
        EXPECT_FALSE(viewer.receiveText(wrong)) << wrong;
        const Json answer = nextText();
        EXPECT_EQ(answer["op"], "status") << wrong;
        EXPECT_EQ(answer["level"], 2) << wrong;
    }
}

TEST_F(LiveViewer, MalformedMessagesCloseWithProtocolError)
{
    const std::string deep(60'000, '[');
    for (const std::string& wrong :
         {std::string("{"), std::string("[]"), std::string("{\"op\":1}"), std::string("{\"op\":\"dance\"}"),
          std::string(R"({"op":"subscribe"})"), std::string(R"({"op":"subscribe","subscriptions":[1]})"),
          std::string(R"({"op":"subscribe","subscriptions":[{"id":-1,"channelId":5}]})"),
          std::string(R"({"op":"subscribe","subscriptions":[{"id":1,"channelId":4294967296}]})"), deep}) {
        const auto closing = viewer.receiveText(wrong);
        ASSERT_TRUE(closing) << wrong.substr(0, 80);
        EXPECT_EQ(closing->code, 1002);
    }
    EXPECT_EQ(Viewer::receiveBinary().code, 1003);
}

TEST_F(LiveViewer, TooManySubscriptionsCloseTheConnection)
{
    viewer.sceneChanged(
        sceneWith({channelNamed(1, "a"), channelNamed(2, "b"), channelNamed(3, "c"), channelNamed(4, "d")}));
    const auto closing = viewer.receiveText(
        R"({"op":"subscribe","subscriptions":[{"id":1,"channelId":1},{"id":2,"channelId":2},{"id":3,"channelId":3},{"id":4,"channelId":4}]})");
    ASSERT_TRUE(closing);
    EXPECT_EQ(closing->code, 1008);
}

TEST_F(LiveViewer, OverflowsWhenControlMessagesAreNotTaken)
{
    for (ChannelId i = 0; !viewer.isOverflowing(); ++i) {
        ASSERT_LT(i, 20U);
        viewer.sceneChanged(sceneWith({channelNamed(i, "a")}));
    }
    EXPECT_GE(frames().size(), 16U) << "none was dropped";
}
