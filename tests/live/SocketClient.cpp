#include "tests/live/SocketClient.hpp"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace {

std::size_t byteOf(const std::string& bytes, std::size_t i)
{
    return static_cast<unsigned char>(bytes.at(i));
}

}  // namespace

int SocketClient::Message::closeCode() const
{
    return opcode == 8 && data.size() >= 2 ? static_cast<int>(byteOf(data, 0) * 256 + byteOf(data, 1)) : 0;
}

SocketClient::SocketClient(std::uint16_t port) : m_socket(::socket(AF_INET, SOCK_STREAM, 0)), m_port(port)
{
    const timeval limit{10, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(m_socket);
        throw std::runtime_error("cannot connect");
    }
}

SocketClient::~SocketClient()
{
    ::close(m_socket);
}

void SocketClient::send(const std::string& bytes) const
{
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const auto count = ::send(m_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

bool SocketClient::fill()
{
    std::array<char, 65536> bytes{};
    const auto count = ::recv(m_socket, bytes.data(), bytes.size(), 0);
    if (count <= 0) {
        return false;
    }
    m_buffer.append(bytes.data(), static_cast<std::size_t>(count));
    return true;
}

std::string SocketClient::response()
{
    std::size_t end = 0;
    while ((end = m_buffer.find("\r\n\r\n")) == std::string::npos) {
        if (!fill()) {
            return {};
        }
    }
    std::size_t length = end + 4;
    const std::size_t field = m_buffer.find("Content-Length: ");
    if (field < end) {
        length += std::stoul(m_buffer.substr(field + 16));
    }
    while (m_buffer.size() < length && fill()) {
    }
    std::string result = m_buffer.substr(0, length);
    m_buffer.erase(0, length);
    return result;
}

int SocketClient::get(const std::string& target, const std::string& headers)
{
    send("GET " + target + " HTTP/1.1\r\nHost: localhost:" + std::to_string(m_port) + "\r\n" + headers +
         "\r\n");
    const std::string answer = response();
    return answer.size() > 12 ? std::stoi(answer.substr(9, 3)) : 0;
}

int SocketClient::upgrade(const std::string& protocols, const std::string& headers)
{
    return get("/",
               "Connection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
               "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Protocol: " +
                   protocols + "\r\n" + headers);
}

void SocketClient::sendFrame(int opcode, const std::string& data) const
{
    std::string frame(1, static_cast<char>(0x80 | opcode));
    if (data.size() < 126) {
        frame += static_cast<char>(0x80 | data.size());
    } else {  // the shortest form is the only one that is allowed
        const bool isLong = data.size() > 0xffff;
        frame += static_cast<char>(0x80 | (isLong ? 127 : 126));
        for (int shift = isLong ? 56 : 8; shift >= 0; shift -= 8) {
            frame += static_cast<char>(data.size() >> shift & 0xff);
        }
    }
    send(frame + std::string(4, '\0') + data);  // a mask of zeros changes nothing
}

std::optional<SocketClient::Message> SocketClient::receive()
{
    for (;;) {
        std::size_t head = 2;
        while (m_buffer.size() < head && fill()) {
        }
        if (m_buffer.size() < head) {
            return std::nullopt;
        }
        std::size_t length = byteOf(m_buffer, 1) & 0x7f;
        const std::size_t extra = length == 126 ? 2 : length == 127 ? 8 : 0;
        head += extra;
        while (m_buffer.size() < head && fill()) {
        }
        if (extra != 0) {
            length = 0;
            for (std::size_t i = 2; i < head; ++i) {
                length = length * 256 + byteOf(m_buffer, i);
            }
        }
        while (m_buffer.size() < head + length) {
            if (!fill()) {
                return std::nullopt;
            }
        }
        Message message{static_cast<int>(byteOf(m_buffer, 0) & 0x0f), m_buffer.substr(head, length)};
        m_buffer.erase(0, head + length);
        if (message.opcode != 9) {
            return message;
        }
    }
}

bool SocketClient::isClosed()
{
    while (fill()) {
    }
    char byte = 0;
    return ::recv(m_socket, &byte, 1, MSG_DONTWAIT) == 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
}
