#ifndef ZM_LIVE_SERVER_CONNECTIONS_HPP
#define ZM_LIVE_SERVER_CONNECTIONS_HPP

#include "live/AccessRules.hpp"
#include "live/LiveServer.hpp"
#include "live/PageFiles.hpp"
#include "live/Viewer.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include <filesystem>
#include <memory>
#include <string_view>

// Inside the server: connections and what they need of it. Only sources of this room that use Boost.Asio
// include this header. Network thread only.

namespace live {

namespace net = boost::asio;

using Socket = net::ip::tcp::socket;
class TlsContext;

/// A connected viewer.
class ViewerLink {
public:
    virtual ~ViewerLink() = default;
    virtual Viewer& viewer() = 0;

    /// Sends what waits, as far as the network takes it; to be called whenever something new waits.
    virtual void send() = 0;

    virtual void close(const Closing& why) = 0;

    /// Ends the connection when a message could not be sent for too long.
    virtual void closeIfStuck() = 0;
};

/// The server as its connections see it.
class ConnectionOwner {
public:
    virtual ~ConnectionOwner() = default;
    virtual const ServerSettings& settings() const = 0;
    virtual const AccessRules& rules() const = 0;
    virtual Answer answer(std::string_view path) const = 0;
    virtual bool isFull() const = 0;
    virtual std::unique_ptr<Viewer> makeViewer(Viewer::Kind kind) = 0;
    virtual void viewerArrived(const std::shared_ptr<ViewerLink>& viewer) = 0;
    virtual void viewerLeft(const std::shared_ptr<ViewerLink>& viewer) = 0;
    virtual void subscriptionsChanged(Viewer& viewer) = 0;
    virtual void connectionEnded() = 0;
    virtual void messageSent() = 0;
    virtual void disconnected() = 0;
};

/// Throws std::runtime_error when a file cannot be read or is not what it should be.
std::shared_ptr<TlsContext> makeTlsContext(const std::filesystem::path& certificate,
                                           const std::filesystem::path& key);

/// Reads requests from the socket, answers them, and makes it a viewer's when one asks for it. With `tls`,
/// after a handshake. Calls `connectionEnded` when it is closed.
void startConnection(Socket socket, TlsContext* tls, ConnectionOwner& owner);

}  // namespace live

#endif
