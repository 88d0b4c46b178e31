#include "live/MqttPublisher.hpp"

#include "live/BrokerQueue.hpp"
#include "live/BrokerTopics.hpp"

#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace live {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int keepAliveSeconds = 30;
constexpr int waitForNetwork = 5;  // ms, after which new values are looked for
constexpr int atMostOnce = 0;
constexpr int atLeastOnce = 1;

void check(int code, const char* what)
{
    if (code != MOSQ_ERR_SUCCESS) {
        throw std::runtime_error(std::string(what) + ": " + mosquitto_strerror(code));
    }
}

struct Deleter {
    void operator()(mosquitto* client) const { mosquitto_destroy(client); }
};

/// Initialises the library once in the process; it may stay so to its end.
void initialiseLibrary()
{
    static const int code = mosquitto_lib_init();
    check(code, "cannot use MQTT");
}

const char* textOf(const std::filesystem::path& path)
{
    return path.empty() ? nullptr : path.c_str();
}

}  // namespace

class MqttPublisher::Impl {
public:
    explicit Impl(const BrokerSettings& settings)
        : m_settings(settings), m_queue(std::make_shared<BrokerQueue>(settings.maxWaiting))
    {
        initialiseLibrary();
        m_client.reset(mosquitto_new(nullptr, true, this));
        if (!m_client) {
            throw std::bad_alloc();
        }
        configure();
        sigset_t all;
        sigset_t former;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &former);  // the thread inherits it; signals are the script's
        m_thread = std::thread([this] { work(); });
        pthread_sigmask(SIG_SETMASK, &former, nullptr);
    }

    std::shared_ptr<BrokerQueue> queue() const { return m_queue; }

    BrokerCounts counts() const
    {
        const std::lock_guard lock(m_mutex);
        return {
            m_sent, m_queue->dropped() + m_lost, m_queue->waiting() + m_pending, m_connections, m_isConnected,
            m_error};
    }

    void stop()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_isStopping = true;
        }
        m_stopping.notify_all();
        m_thread.join();
    }

private:
    void configure()
    {
        mosquitto* client = m_client.get();
        const int version = m_settings.version == MqttVersion::V5 ? MQTT_PROTOCOL_V5 : MQTT_PROTOCOL_V311;
        check(mosquitto_int_option(client, MOSQ_OPT_PROTOCOL_VERSION, version), "MQTT version");
        if (!m_settings.user.empty()) {
            check(mosquitto_username_pw_set(client, m_settings.user.c_str(), m_settings.password.c_str()),
                  "user");
        }
        if (m_settings.useTls) {
            const char* folder = m_settings.authorities.empty() ? "/etc/ssl/certs" : nullptr;
            check(mosquitto_tls_set(client, textOf(m_settings.authorities), folder,
                                    textOf(m_settings.certificate), textOf(m_settings.key), nullptr),
                  "cannot use the certificates");
        }
        const std::string offline = "offline";
        check(mosquitto_will_set(client, topic("status").c_str(), static_cast<int>(offline.size()),
                                 offline.data(), atLeastOnce, true),
              "the topic prefix cannot be used");
        mosquitto_connect_v5_callback_set(
            client, [](mosquitto*, void* self, int code, int /*flags*/, const mosquitto_property*) {
                static_cast<Impl*>(self)->connected(code);
            });
    }

    std::string topic(const std::string& rest) const { return m_settings.prefix + '/' + rest; }

    // ---- the thread ----

    void work()
    {
        milliseconds pause = m_settings.firstPause;
        bool isFirst = true;
        while (!isStopping()) {
            const int code = isFirst ? mosquitto_connect_async(m_client.get(), m_settings.host.c_str(),
                                                               m_settings.port, keepAliveSeconds)
                                     : mosquitto_reconnect_async(m_client.get());
            isFirst = false;
            const bool wasConnected =
                code == MOSQ_ERR_SUCCESS ? converse() : failed(mosquitto_strerror(code));
            if (isStopping()) {
                break;
            }
            pause = wasConnected ? m_settings.firstPause : std::min(pause * 2, m_settings.longestPause);
            std::unique_lock lock(m_mutex);
            m_stopping.wait_for(lock, pause, [this] { return m_isStopping; });
        }
    }

    /// Works until the connection is lost, or everything is said after `stop`. Returns whether there was one.
    bool converse()
    {
        m_wasAccepted = false;
        m_refusal.clear();
        Clock::time_point end = Clock::time_point::max();
        for (;;) {
            if (isStopping() && end == Clock::time_point::max()) {
                end = Clock::now() + m_settings.closingTime;
            }
            const int code = mosquitto_loop(m_client.get(), waitForNetwork, 1);
            if (code != MOSQ_ERR_SUCCESS || !m_refusal.empty()) {
                mosquitto_disconnect(m_client.get());
                return failed(m_refusal.empty() ? mosquitto_strerror(code) : m_refusal.c_str());
            }
            const bool isIdle = m_wasAccepted && !sendWaiting();
            if (end != Clock::time_point::max() && (isIdle || Clock::now() >= end)) {
                sayGoodbye(end);
                return m_wasAccepted;
            }
        }
    }

    bool failed(const char* why)
    {
        const std::lock_guard lock(m_mutex);
        m_isConnected = false;
        m_error = why;
        return m_wasAccepted;
    }

    /// Inside mosquitto_loop.
    void connected(int code)
    {
        if (code != 0) {
            m_refusal = m_settings.version == MqttVersion::V5 ? mosquitto_reason_string(code)
                                                              : mosquitto_connack_string(code);
            return;
        }
        m_wasAccepted = true;
        m_described = 0;
        publish(topic("status"), "online", atLeastOnce, true);
        const std::lock_guard lock(m_mutex);
        m_isConnected = true;
        m_error.clear();
        ++m_connections;
    }

    /// Returns false when nothing waits any more.
    bool sendWaiting()
    {
        // While the socket is full, further messages would wait inside the library, without a limit.
        while (!mosquitto_want_write(m_client.get())) {
            if (m_described < m_channels.size()) {
                describe(m_channels[m_described++]);
            } else if (m_next < m_values.size()) {
                sendValue(m_values[m_next++]);
            } else if (!takeMore()) {
                return false;
            }
        }
        return true;
    }

    bool takeMore()
    {
        std::shared_ptr<const Scene> scene;
        m_next = 0;
        const bool hasMore = m_queue->take(m_values, scene);
        m_pending = m_values.size();
        if (scene) {
            setChannels(*scene);
        }
        return hasMore;
    }

    void setChannels(const Scene& scene)
    {
        std::map<ChannelId, std::string> former = std::exchange(m_levels, {});
        m_channels.clear();
        for (const LiveChannel& channel : scene.channels) {
            if (channel.isListed) {
                m_channels.push_back(channel);
                m_levels[channel.id] = levelsOf(channel);
                former.erase(channel.id);
            }
        }
        for (const auto& [id, levels] : former) {
            publish(topic("description/" + levels), "", atLeastOnce, true);  // removes the retained one
        }
        m_described = 0;
    }

    void describe(const LiveChannel& channel)
    {
        publish(topic("description/" + m_levels[channel.id]), descriptionOf(channel), atLeastOnce, true);
    }

    void sendValue(const LiveValue& value)
    {
        m_pending = m_values.size() - m_next;
        const auto levels = m_levels.find(value.channel);
        if (levels != m_levels.end() &&
            publish(topic("value/" + levels->second), payloadOf(value), atMostOnce, false)) {
            ++m_sent;
        } else {
            ++m_lost;
        }
    }

    bool publish(const std::string& name, const std::string& payload, int quality, bool isRetained)
    {
        return mosquitto_publish_v5(m_client.get(), nullptr, name.c_str(), static_cast<int>(payload.size()),
                                    payload.data(), quality, isRetained, nullptr) == MOSQ_ERR_SUCCESS;
    }

    void sayGoodbye(Clock::time_point end)
    {
        if (m_wasAccepted) {
            publish(topic("status"), "offline", atLeastOnce, true);
        }
        mosquitto_disconnect(m_client.get());
        while (mosquitto_want_write(m_client.get()) && Clock::now() < end + milliseconds(200) &&
               mosquitto_loop(m_client.get(), waitForNetwork, 1) == MOSQ_ERR_SUCCESS) {
        }
        const std::lock_guard lock(m_mutex);
        m_isConnected = false;
    }

    bool isStopping() const
    {
        const std::lock_guard lock(m_mutex);
        return m_isStopping;
    }

    BrokerSettings m_settings;
    std::shared_ptr<BrokerQueue> m_queue;
    std::unique_ptr<mosquitto, Deleter> m_client;

    // the thread only
    std::vector<LiveChannel> m_channels;
    std::map<ChannelId, std::string> m_levels;
    std::size_t m_described = 0;  // so many of m_channels, since the connection was made
    std::vector<LiveValue> m_values;
    std::size_t m_next = 0;  // of m_values
    bool m_wasAccepted = false;
    std::string m_refusal;

    std::atomic<std::uint64_t> m_sent = 0;
    std::atomic<std::uint64_t> m_lost = 0;
    std::atomic<std::uint64_t> m_pending = 0;
    mutable std::mutex m_mutex;
    std::condition_variable m_stopping;
    bool m_isStopping = false;
    bool m_isConnected = false;
    std::uint64_t m_connections = 0;
    std::string m_error;

    std::thread m_thread;  // last: it uses all the others
};

MqttPublisher::MqttPublisher(const BrokerSettings& settings)
    : m_impl(std::make_unique<Impl>(settings)), m_process(::getpid())
{
}

MqttPublisher::~MqttPublisher()
{
    stop();
}

std::shared_ptr<ValueSink> MqttPublisher::sink() const
{
    return m_impl->queue();
}

BrokerCounts MqttPublisher::counts() const
{
    return m_impl ? m_impl->counts() : m_lastCounts;
}

void MqttPublisher::stop()
{
    if (!m_impl) {
        return;
    }
    if (m_process != ::getpid()) {
        (void)m_impl.release();  // its thread is the parent's; nothing can end it here
        return;
    }
    m_impl->stop();
    m_lastCounts = m_impl->counts();
    m_impl.reset();
}

}  // namespace live
