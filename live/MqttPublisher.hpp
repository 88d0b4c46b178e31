#ifndef ZM_LIVE_MQTT_PUBLISHER_HPP
#define ZM_LIVE_MQTT_PUBLISHER_HPP

#include "live/ValueSink.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace live {

enum class MqttVersion { V311, V5 };

struct BrokerSettings {
    std::string host;
    std::uint16_t port = 1883;
    std::string prefix;  ///< of all topics, without a slash at the end
    MqttVersion version = MqttVersion::V5;
    std::string user;  ///< empty: no user and password are sent
    std::string password;
    bool useTls = false;
    std::filesystem::path authorities;  ///< PEM; empty: those of the system
    std::filesystem::path certificate;  ///< of this client, PEM; empty for none
    std::filesystem::path key;
    std::size_t maxWaiting = 500'000;           ///< values; more are dropped, the oldest first
    std::chrono::milliseconds firstPause{500};  ///< before the second attempt to connect; doubled each time
    std::chrono::milliseconds longestPause{30'000};
    std::chrono::milliseconds closingTime{2'000};  ///< for what waits when the publisher is stopped
};

struct BrokerCounts {
    std::uint64_t sent = 0;         ///< values
    std::uint64_t dropped = 0;      ///< values
    std::uint64_t waiting = 0;      ///< values
    std::uint64_t connections = 0;  ///< that were made since the start
    bool isConnected = false;
    std::string error;  ///< why the last connection ended or was not made; empty when there is none
};

/// Publishes values on an MQTT broker, in a thread of its own, which never calls the host or the library.
/// Away from the broker it connects again and again, with growing pauses.
class MqttPublisher {
public:
    /// Does not wait for the connection. Throws std::runtime_error when settings, such as certificate files,
    /// cannot be used.
    explicit MqttPublisher(const BrokerSettings& settings);
    MqttPublisher(const MqttPublisher&) = delete;
    MqttPublisher& operator=(const MqttPublisher&) = delete;
    ~MqttPublisher();

    /// What is to be published goes in here. REQUIRES: not stopped.
    std::shared_ptr<ValueSink> sink() const;

    BrokerCounts counts() const;

    /// Publishes what waits, as far as `closingTime` allows, says "offline" and disconnects. In the child of
    /// a fork, where the thread does not exist, does nothing.
    void stop();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
    BrokerCounts m_lastCounts;
    int m_process = 0;
};

}  // namespace live

#endif
