#ifndef ZM_LIVE_LIVE_SERVER_HPP
#define ZM_LIVE_LIVE_SERVER_HPP

#include "live/ValueExchange.hpp"
#include "live/Viewer.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace live {

struct ServerSettings {
    std::string address = "127.0.0.1";  ///< an IP address; other than loopback only with a token
    std::uint16_t port = 0;             ///< 0: a free one
    std::vector<std::string> origins;   ///< web pages that may connect, such as "https://viewer.example"
    std::string token;
    std::filesystem::path certificate;  ///< PEM, with the chain; empty: no TLS
    std::filesystem::path key;          ///< PEM; empty: in the certificate's file
    std::filesystem::path pageFolder;
    std::string name = "simulation";

    ViewerLimits viewer;
    std::size_t maxViewers = 64;
    std::size_t maxConnections = 256;  ///< viewers and requests for pages together
    std::size_t maxMessageBytes = 64 * 1024;
    std::chrono::milliseconds requestTimeout{10'000};  ///< for a request's head, and between two requests
    std::chrono::milliseconds idleTimeout{60'000};     ///< of a viewer that does not answer pings
    std::chrono::milliseconds stuckTimeout{30'000};    ///< of a viewer that does not read
};

struct ServerCounts {
    std::uint64_t viewers = 0;       ///< connected now
    std::uint64_t connections = 0;   ///< since the start
    std::uint64_t messages = 0;      ///< sent to viewers
    std::uint64_t mergedValues = 0;  ///< that were not sent as a message of their own
    std::uint64_t disconnections =
        0;  ///< of viewers that were stuck, or sent what the protocol does not allow
};

/// Serves the values of an exchange to viewers, by the Foxglove WebSocket protocol, and a web page on the
/// same port. Works in a thread of its own, which never calls the host or the library. Read-only: no message
/// changes anything outside the server.
///
/// The functions may be called from one thread at a time. In the child of a fork, where the server's thread
/// does not exist, `stop` and the destructor do nothing but close the child's copy of the listening socket.
class LiveServer {
public:
    /// Listens when it returns. Throws std::invalid_argument for settings that are not allowed, and
    /// std::runtime_error, with address and port, when it cannot listen there or read the certificate.
    LiveServer(const ServerSettings& settings, std::shared_ptr<ValueExchange> exchange);
    LiveServer(const LiveServer&) = delete;
    LiveServer& operator=(const LiveServer&) = delete;
    ~LiveServer();

    std::uint16_t port() const noexcept { return m_port; }

    /// Where a browser finds the page, with the token if there is one.
    const std::string& url() const noexcept { return m_url; }

    ServerCounts counts() const noexcept;

    /// Disconnects all and ends the thread. May be called twice.
    void stop();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
    std::uint16_t m_port = 0;
    std::string m_url;
    ServerCounts m_lastCounts;
    int m_process = 0;  // the id of the one that started the thread
};

}  // namespace live

#endif
