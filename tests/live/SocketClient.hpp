#ifndef ZM_TESTS_LIVE_SOCKET_CLIENT_HPP
#define ZM_TESTS_LIVE_SOCKET_CLIENT_HPP

#include <cstdint>
#include <optional>
#include <string>

/// A client over a plain socket, which can do wrong what a library would do right. Calls time out after ten
/// seconds.
class SocketClient {
public:
    struct Message {
        int opcode = 0;  ///< 1 text, 2 binary, 8 close
        std::string data;
        int closeCode() const;
    };

    explicit SocketClient(std::uint16_t port);
    SocketClient(const SocketClient&) = delete;
    SocketClient& operator=(const SocketClient&) = delete;
    ~SocketClient();

    void send(const std::string& bytes) const;

    /// One HTTP response's head and, where it has a length, its body.
    std::string response();

    /// The status of a GET request; `headers` with their line ends.
    int get(const std::string& target, const std::string& headers = {});

    /// Asks for an upgrade and gives the response's status.
    int upgrade(const std::string& protocols = "foxglove.sdk.v1", const std::string& headers = {});

    void sendText(const std::string& text) const { sendFrame(1, text); }
    void sendFrame(int opcode, const std::string& data) const;

    /// The next message, pings left out; no value when the connection is closed.
    std::optional<Message> receive();

    /// True when the server has closed the connection and nothing more comes.
    bool isClosed();

private:
    bool fill();

    int m_socket = -1;
    std::uint16_t m_port;
    std::string m_buffer;
};

#endif
