// What it costs to serve live values: figures as counts and ratios within one run.
//
//     zm_live_bench hub | cost | latency | memory [SECONDS] | page FOLDER [SECONDS] |
//     mqtt PORT [SECONDS]

#include "live/HubFeed.hpp"
#include "live/LiveServer.hpp"
#include "live/MqttPublisher.hpp"
#include "reference_host/model/Model.hpp"
#include "simulation/ValueHub.hpp"
#include "tests/live/SocketClient.hpp"

#include <mosquitto.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <numeric>
#include <optional>
#include <string>
#include <thread>
#include <vector>

using namespace live;
using namespace std::chrono_literals;
using simulation::StepTime;
using simulation::ValueHub;

namespace {

using Clock = std::chrono::steady_clock;

double threadSeconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

double residentMegabytes()
{
    std::ifstream file("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    file >> total >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

/// A run's hub with so many signals, and values that change at each step.
class Signals {
public:
    Signals(std::size_t count, std::size_t maxPoints) : m_values(count)
    {
        std::vector<simulation::ChannelSetup> setups(count);
        for (std::size_t i = 0; i < count; ++i) {
            simulation::Channel& channel = setups[i].channel;
            channel.uuid = "uuid-" + std::to_string(i);
            channel.modelName = "bench";
            channel.blockPath = "bench/Block " + std::to_string(i);
            channel.portName = "out";
            channel.portNumber = 1;
            channel.maxPoints = maxPoints;
            channel.isBound = channel.hasSource = true;
            setups[i].valueOffset = i;
        }
        hub.align(std::move(setups));
        hub.setState(simulation::RunState::Running);
    }

    void step(double seconds)
    {
        std::fill(m_values.begin(), m_values.end(), std::sin(seconds));
        hub.record(StepTime::at(seconds, m_number++), m_values);
    }
    void stepWith(double seconds, double value)
    {
        std::fill(m_values.begin(), m_values.end(), value);
        hub.record(StepTime::at(seconds, m_number++), m_values);
    }
    std::uint64_t steps() const { return m_number; }
    std::size_t count() const { return m_values.size(); }

    ValueHub hub;

private:
    std::vector<double> m_values;
    std::uint64_t m_number = 0;
};

class Served {
public:
    explicit Served(Signals& signals, const std::string& pageFolder = {})
        : m_server(settingsWith(pageFolder), m_exchange), m_feed(m_model, signals.hub, m_exchange)
    {
    }
    LiveServer& server() { return m_server; }

private:
    static ServerSettings settingsWith(const std::string& pageFolder)
    {
        ServerSettings settings;
        settings.pageFolder = pageFolder;
        return settings;
    }

    std::shared_ptr<reference_host::Model> m_model = std::make_shared<reference_host::Model>(u"bench");
    std::shared_ptr<ValueExchange> m_exchange = std::make_shared<ValueExchange>();
    LiveServer m_server;
    HubFeed m_feed;
};

/// Subscribes to the first channels, up to the count.
void subscribe(SocketClient& client, std::size_t count)
{
    client.upgrade();
    for (auto message = client.receive(); message; message = client.receive()) {
        if (message->data.find("\"advertise\"") != std::string::npos) {
            break;
        }
    }
    std::string text = R"({"op":"subscribe","subscriptions":[)";
    for (std::size_t i = 1; i <= count; ++i) {
        text += (i == 1 ? "" : ",") + ("{\"id\":" + std::to_string(i)) +
                ",\"channelId\":" + std::to_string(i) + '}';
    }
    client.sendText(text + "]}");
}

// ---- hub ----

void benchHub()
{
    constexpr std::size_t count = 10'000;
    constexpr std::size_t points = 1'000;
    constexpr int steps = 1'000;
    std::vector<double> hubTimes;
    std::vector<double> plainTimes;
    std::vector<double> rings(count * points);
    std::vector<double> row(count);
    for (int run = 0; run < 5; ++run) {
        Signals signals(count, points);
        double begin = threadSeconds();
        for (int i = 0; i < steps; ++i) {
            signals.step(i * 0.01);
        }
        hubTimes.push_back(threadSeconds() - begin);
        begin = threadSeconds();
        for (std::size_t i = 0; i < steps; ++i) {
            std::fill(row.begin(), row.end(), std::sin(static_cast<double>(i) * 0.01));
            for (std::size_t j = 0; j < count; ++j) {
                rings[j * points + i % points] = row[j];
            }
        }
        plainTimes.push_back(threadSeconds() - begin);
    }
    const double samples = static_cast<double>(count) * steps;
    std::printf(
        "hub        %zu signals: %.1f million samples a second, %.2f times a plain write into rings\n", count,
        samples / median(hubTimes) / 1e6, median(hubTimes) / median(plainTimes));
}

// ---- cost ----

double costOfSteps(Signals& signals, int steps)
{
    const double begin = threadSeconds();
    for (int i = 0; i < steps; ++i) {
        signals.step(static_cast<double>(signals.steps()) * 0.01);
    }
    return threadSeconds() - begin;
}

void benchCost()
{
    constexpr std::size_t count = 10'000;
    constexpr std::size_t viewed = 100;
    constexpr int steps = 300;
    std::vector<double> without;
    std::vector<double> withViewer;
    std::vector<double> withStuck;
    Signals signals(count, 1'000);
    costOfSteps(signals, 1'000);  // fills the histories
    for (int run = 0; run < 20; ++run) {
        without.push_back(costOfSteps(signals, steps));
        {
            Served served(signals);
            SocketClient client(served.server().port());
            subscribe(client, viewed);
            std::thread reading([&client] {
                while (client.receive()) {
                }
            });
            costOfSteps(signals, 20);  // the subscriptions arrive
            withViewer.push_back(costOfSteps(signals, steps));
            served.server().stop();
            reading.join();
        }
        Served served(signals);
        SocketClient stuck(served.server().port());
        subscribe(stuck, viewed);
        costOfSteps(signals, 20);
        withStuck.push_back(costOfSteps(signals, steps));
    }
    const auto more = [&](const std::vector<double>& times) {
        return (median(times) / median(without) - 1) * 100;
    };
    std::printf(
        "cost       %zu signals, %zu viewed: with a viewer %+.1f %%, with a stuck one %+.1f %% CPU time of "
        "the "
        "simulation's thread\n",
        count, viewed, more(withViewer), more(withStuck));
}

// ---- latency ----

void benchLatency()
{
    constexpr int steps = 500;
    Signals signals(100, 100);
    Served served(signals);
    SocketClient client(served.server().port());
    subscribe(client, 1);
    std::vector<double> milliseconds;
    std::thread reading([&] {
        for (auto message = client.receive(); message; message = client.receive()) {
            const std::size_t at = message->data.find("\"value\":");
            if (message->opcode == 2 && message->data[0] == '\x01' && at != std::string::npos) {
                const double now = std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
                milliseconds.push_back((now - std::strtod(message->data.c_str() + at + 8, nullptr)) * 1e3);
            }
        }
    });
    for (int i = 0; i < steps; ++i) {
        std::this_thread::sleep_for(23ms);
        signals.stepWith(i, std::chrono::duration<double>(Clock::now().time_since_epoch()).count());
    }
    std::this_thread::sleep_for(100ms);
    served.server().stop();
    reading.join();
    std::sort(milliseconds.begin(), milliseconds.end());
    const std::size_t size = milliseconds.size();
    std::printf("latency    %zu messages: median %.2f ms, 99th percentile %.2f ms, maximum %.2f ms\n", size,
                milliseconds[size / 2], milliseconds[size * 99 / 100], milliseconds.back());
}

// ---- memory ----

void benchMemory(double seconds)
{
    constexpr std::size_t count = 10'000;
    Signals signals(count, 1'000);
    Served served(signals);
    const auto begin = Clock::now();
    std::atomic<bool> isOver = false;
    std::atomic<std::uint64_t> visits = 0;
    std::thread visitors([&] {
        while (!isOver) {
            SocketClient client(served.server().port());
            subscribe(client, 1000);
            for (int i = 0; i < 2000 && client.receive(); ++i) {
            }
            ++visits;
        }
    });
    costOfSteps(signals, 1'100);
    while (visits < 5) {
        costOfSteps(signals, 10);
    }
    const double full = residentMegabytes();
    double highest = full;
    while (std::chrono::duration<double>(Clock::now() - begin).count() < seconds) {
        costOfSteps(signals, 100);
        highest = std::max(highest, residentMegabytes());
    }
    isOver = true;
    const double end = residentMegabytes();
    for (int i = 0; i < 500; ++i) {
        costOfSteps(signals, 1);
    }
    served.server().stop();
    visitors.join();
    std::printf(
        "memory     %.0f s, %llu steps, %llu viewers came and went: %.1f MB when the histories were full, at "
        "most "
        "%.1f MB, %.1f MB at the end\n",
        seconds, static_cast<unsigned long long>(signals.steps()),
        static_cast<unsigned long long>(visits.load()), full, highest, end);
}

// ---- page ----

/// Serves so many trends of 5,000 points; a browser beside it counts the frames.
void servePage(const std::string& folder, std::size_t trends, double seconds)
{
    Signals signals(trends, 5'000);
    std::vector<simulation::ResolvedClient> clients(trends);
    for (std::size_t i = 0; i < trends; ++i) {
        clients[i].uuid = "trend-" + std::to_string(i);
        clients[i].observerType = "trend";
        clients[i].title = "Trend " + std::to_string(i + 1);
        clients[i].channel = signals.hub.channels()[i].id;
        clients[i].valueIndex = 0;
        clients[i].updateRate = 0;
        clients[i].maxPoints = 5'000;
    }
    signals.hub.setClients(std::move(clients));
    Served served(signals, folder);
    std::printf("%s\n", served.server().url().c_str());
    std::fflush(stdout);
    const auto begin = Clock::now();
    for (int i = 0; i * 0.004 < seconds; ++i) {
        std::this_thread::sleep_until(begin + i * 4ms);
        signals.step(i * 0.004);
    }
}

// ---- broker ----

class Subscriber {
public:
    explicit Subscriber(int port) : m_client(mosquitto_new(nullptr, true, this))
    {
        mosquitto_message_callback_set(
            m_client, [](mosquitto*, void* self, const mosquitto_message* message) {
                auto& subscriber = *static_cast<Subscriber*>(self);
                subscriber.values += std::strstr(message->topic, "/value/") != nullptr ? 1 : 0;
            });
        mosquitto_connect_callback_set(m_client, [](mosquitto* client, void*, int) {
            mosquitto_subscribe(client, nullptr, "bench/value/#", 0);
        });
        mosquitto_subscribe_callback_set(m_client, [](mosquitto*, void* self, int, int, const int*) {
            static_cast<Subscriber*>(self)->isReady = true;
        });
        mosquitto_connect(m_client, "127.0.0.1", port, 60);
        mosquitto_loop_start(m_client);
        while (!isReady) {
            std::this_thread::sleep_for(5ms);
        }
    }
    Subscriber(const Subscriber&) = delete;
    Subscriber& operator=(const Subscriber&) = delete;
    ~Subscriber()
    {
        mosquitto_disconnect(m_client);
        mosquitto_loop_stop(m_client, true);
        mosquitto_destroy(m_client);
    }

    std::atomic<std::uint64_t> values = 0;
    std::atomic<bool> isReady = false;

private:
    mosquitto* m_client;
};

void benchMqtt(int port, int seconds)
{
    constexpr std::size_t count = 10'000;
    BrokerSettings settings;
    settings.host = "127.0.0.1";
    settings.port = static_cast<std::uint16_t>(port);
    settings.prefix = "bench";
    MqttPublisher publisher(settings);
    Signals signals(count, 100);
    Subscriber subscriber(port);
    const auto model = std::make_shared<reference_host::Model>(u"bench");
    std::optional<HubFeed> feed;
    feed.emplace(model, signals.hub, publisher.sink());
    while (publisher.counts().connections == 0) {
        std::this_thread::sleep_for(5ms);
    }
    const auto begin = Clock::now();
    signals.step(0);  // the feed learns which channels are wanted, and all get this value
    for (int i = 1; i <= seconds * 10; ++i) {
        std::this_thread::sleep_until(begin + i * 100ms);
        signals.step(i * 0.1);
    }
    const std::uint64_t expected = (static_cast<std::uint64_t>(seconds) * 10 + 1) * count;
    const auto end = Clock::now() + 30s;
    while (subscriber.values < expected && Clock::now() < end) {
        std::this_thread::sleep_for(20ms);
    }
    const double took = std::chrono::duration<double>(Clock::now() - begin).count();
    feed.reset();
    publisher.stop();
    const BrokerCounts counts = publisher.counts();
    std::printf(
        "MQTT       %zu signals at 10 Hz for %d s: %llu values expected, %llu sent, %llu received "
        "after "
        "%.1f s, %llu dropped\n",
        count, seconds, static_cast<unsigned long long>(expected),
        static_cast<unsigned long long>(counts.sent),
        static_cast<unsigned long long>(subscriber.values.load()), took,
        static_cast<unsigned long long>(counts.dropped));
}

double argument(int count, char** arguments, int place, double otherwise)
{
    return count > place ? std::atof(arguments[place]) : otherwise;
}

}  // namespace

int main(int count, char** arguments)
{
    const std::string which = count > 1 ? arguments[1] : "";
    if (which == "hub") {
        benchHub();
    } else if (which == "cost") {
        benchCost();
    } else if (which == "latency") {
        benchLatency();
    } else if (which == "memory") {
        benchMemory(argument(count, arguments, 2, 60));
    } else if (which == "page" && count > 2) {
        servePage(arguments[2], 20, argument(count, arguments, 3, 60));
    } else if (which == "mqtt") {
        benchMqtt(static_cast<int>(argument(count, arguments, 2, 1883)),
                  static_cast<int>(argument(count, arguments, 3, 10)));
    } else {
        std::fprintf(stderr,
                     "which figure: hub, cost, latency, memory [SECONDS], page FOLDER [SECONDS], mqtt PORT "
                     "[SECONDS]?\n");
        return 2;
    }
    return 0;
}
