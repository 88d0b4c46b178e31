#include "live/LiveServer.hpp"
#include "tests/live/SocketClient.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <thread>

using namespace live;
using namespace std::chrono_literals;
using Json = nlohmann::json;

namespace {

std::shared_ptr<const Scene> sceneOf(ChannelId count, std::uint64_t version = 1)
{
    auto scene = std::make_shared<Scene>();
    scene->version = version;
    scene->model = "plant";
    for (ChannelId i = 1; i <= count; ++i) {
        LiveChannel channel;
        channel.id = i;
        channel.topic = "plant/block:" + std::to_string(i);
        scene->channels.push_back(channel);
    }
    return scene;
}

class LiveServerTest : public ::testing::Test {
protected:
    std::shared_ptr<ValueExchange> exchange = std::make_shared<ValueExchange>();

    std::unique_ptr<LiveServer> serve(ServerSettings settings = {}) const
    {
        auto server = std::make_unique<LiveServer>(settings, exchange);
        exchange->setScene(sceneOf(3));
        return server;
    }

    /// Waits, without sleeping for a time that is only guessed, until the server has that many viewers.
    static void awaitViewers(const LiveServer& server, std::uint64_t count)
    {
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (server.counts().viewers != count && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        EXPECT_EQ(server.counts().viewers, count);
    }

    /// Reads up to the advertisement.
    static Json advertisement(SocketClient& client)
    {
        for (auto message = client.receive(); message; message = client.receive()) {
            if (message->opcode == 1 && Json::parse(message->data)["op"] == "advertise") {
                return Json::parse(message->data);
            }
        }
        return {};
    }

    static void subscribe(SocketClient& client, ChannelId channel)
    {
        EXPECT_FALSE(advertisement(client).empty());
        client.sendText(R"({"op":"subscribe","subscriptions":[{"id":1,"channelId":)" +
                        std::to_string(channel) + "}]}");
    }

    void awaitWanted(std::vector<ChannelId> expected) const
    {
        std::vector<ChannelId> wanted;
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (!(exchange->takeWanted(wanted) && wanted == expected)) {
            ASSERT_LT(std::chrono::steady_clock::now(), end);
            std::this_thread::yield();
        }
    }
};

Json firstValue(SocketClient& client)
{
    for (auto message = client.receive(); message; message = client.receive()) {
        if (message->opcode == 2 && message->data[0] == '\x01') {
            return Json::parse(message->data.substr(13));
        }
    }
    return "closed";
}

int closeCode(SocketClient& client)
{
    for (auto message = client.receive(); message; message = client.receive()) {
        if (message->opcode == 8) {
            return message->closeCode();
        }
    }
    return 0;
}

}  // namespace

TEST_F(LiveServerTest, AViewerSubscribesAndReceives)
{
    const auto server = serve();
    SocketClient client(server->port());
    ASSERT_EQ(client.upgrade("foxglove.websocket.v1, foxglove.sdk.v1"), 101);
    const auto info = client.receive();
    ASSERT_TRUE(info);
    EXPECT_EQ(Json::parse(info->data)["op"], "serverInfo");
    subscribe(client, 2);
    awaitWanted({2});
    exchange->put(LiveValue::of(2, 1000, 4.25));
    exchange->publish(1000);
    EXPECT_EQ(firstValue(client)["value"], 4.25);
}

TEST_F(LiveServerTest, ASecondViewerGetsTheLatestValueAtOnce)
{
    const auto server = serve();
    SocketClient first(server->port());
    SocketClient second(server->port());
    ASSERT_EQ(first.upgrade(), 101);
    ASSERT_EQ(second.upgrade(), 101);
    subscribe(first, 2);
    awaitWanted({2});
    exchange->put(LiveValue::of(2, 1000, 4.25));
    exchange->publish(1000);
    EXPECT_EQ(firstValue(first)["value"], 4.25);
    subscribe(second, 2);
    EXPECT_EQ(firstValue(second)["value"], 4.25) << "although the simulation makes no further step";
}

TEST_F(LiveServerTest, SpeaksBothSubProtocolsAndNoOther)
{
    const auto server = serve();
    for (const auto& [offered, status] : {std::pair("foxglove.sdk.v1", 101),
                                          std::pair("foxglove.websocket.v1", 101), std::pair("other", 400)}) {
        SocketClient client(server->port());
        EXPECT_EQ(client.upgrade(offered), status) << offered;
    }
}

TEST_F(LiveServerTest, RubbishClosesThatConnectionOnly)
{
    const auto server = serve();
    SocketClient good(server->port());
    ASSERT_EQ(good.upgrade(), 101);
    subscribe(good, 1);
    awaitWanted({1});
    const auto codeAfter = [&](int opcode, const std::string& data) {
        SocketClient bad(server->port());
        EXPECT_EQ(bad.upgrade(), 101);
        bad.sendFrame(opcode, data);
        return closeCode(bad);
    };
    EXPECT_EQ(codeAfter(1, "rubbish"), 1002);
    EXPECT_EQ(codeAfter(2, "\x01"), 1003);
    EXPECT_EQ(codeAfter(1, "\xff\xfe"), 1007);
    EXPECT_EQ(codeAfter(1, std::string(70'000, ' ')), 1009);
    EXPECT_EQ(codeAfter(5, ""), 1002) << "an operation code that WebSocket reserves";
    exchange->put(LiveValue::of(1, 1, 8.0));
    exchange->publish(1);
    EXPECT_EQ(firstValue(good)["value"], 8.0);
}

TEST_F(LiveServerTest, RefusesForeignPagesAndHosts)
{
    const auto server = serve();
    SocketClient foreign(server->port());
    EXPECT_EQ(foreign.upgrade("foxglove.sdk.v1", "Origin: https://evil.example\r\n"), 403);
    SocketClient rebound(server->port());
    rebound.send("GET /scene.json HTTP/1.1\r\nHost: evil.example\r\n\r\n");
    EXPECT_NE(rebound.response().find(" 421 "), std::string::npos);
    SocketClient malformed(server->port());
    malformed.send("rubbish\r\n\r\n");
    EXPECT_NE(malformed.response().find(" 400 "), std::string::npos);
    SocketClient large(server->port());
    EXPECT_EQ(large.get("/" + std::string(9000, 'x')), 400);
}

TEST_F(LiveServerTest, NeedsTheTokenWhereThereIsOne)
{
    ServerSettings settings;
    settings.token = "s3cret";
    const auto server = serve(settings);
    EXPECT_NE(server->url().find("/#token=s3cret"), std::string::npos);
    SocketClient client(server->port());
    EXPECT_EQ(client.get("/scene.json"), 401);
    SocketClient knowing(server->port());
    EXPECT_EQ(knowing.get("/scene.json?token=s3cret"), 200);
    settings = {};
    settings.address = "0.0.0.0";
    EXPECT_THROW(LiveServer(settings, exchange), std::invalid_argument);
}

TEST_F(LiveServerTest, ServesSixtyFourViewersAndRefusesTheNext)
{
    const auto server = serve();
    std::vector<std::unique_ptr<SocketClient>> clients;
    for (int i = 0; i < 64; ++i) {
        clients.push_back(std::make_unique<SocketClient>(server->port()));
        ASSERT_EQ(clients.back()->upgrade(), 101) << i;
    }
    SocketClient tooMany(server->port());
    EXPECT_EQ(tooMany.upgrade(), 503);
    clients.clear();
    awaitViewers(*server, 0);
    SocketClient again(server->port());
    EXPECT_EQ(again.upgrade(), 101);
}

TEST_F(LiveServerTest, SurvivesTenThousandConnections)
{
    const auto server = serve();
    for (int i = 0; i < 10'000; ++i) {
        const SocketClient client(server->port());
        if (i % 3 == 0) {
            client.send("GET / HTTP/1.1\r\n");
        }
    }
    SocketClient client(server->port());
    EXPECT_EQ(client.get("/scene.json"), 200);
}

TEST_F(LiveServerTest, DisconnectsAViewerThatNeverReads)
{
    ServerSettings settings;
    settings.stuckTimeout = 200ms;
    const auto server = serve(settings);
    SocketClient stuck(server->port());
    ASSERT_EQ(stuck.upgrade(), 101);
    awaitViewers(*server, 1);
    std::uint64_t version = 2;
    while (server->counts().viewers == 1 &&
           version < 1'000'000) {  // control messages, which are never dropped
        exchange->setScene(sceneOf(version % 2 == 0 ? 2000 : 0, version));
        ++version;
    }
    awaitViewers(*server, 0);
    EXPECT_EQ(server->counts().disconnections, 1U);
}

TEST_F(LiveServerTest, SaysWhereItCannotListen)
{
    const auto server = serve();
    ServerSettings settings;
    settings.port = server->port();
    try {
        const LiveServer second(settings, std::make_shared<ValueExchange>());
        FAIL() << "two servers on one port";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find(std::to_string(server->port())), std::string::npos);
    }
}

TEST_F(LiveServerTest, SaysGoodbyeWhenItStops)
{
    auto server = serve();
    SocketClient client(server->port());
    ASSERT_EQ(client.upgrade(), 101);
    awaitViewers(*server, 1);
    std::thread stopping([&server] { server->stop(); });
    EXPECT_EQ(closeCode(client), 1001);
    client.sendFrame(8, "");
    stopping.join();
    server->stop();
    exchange->publish(1);
}

TEST_F(LiveServerTest, AForkedChildLeavesTheServerAlone)
{
    auto server = serve();
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        server->stop();
        server.reset();
        ::_exit(0);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    SocketClient client(server->port());
    EXPECT_EQ(client.upgrade(), 101);
}
