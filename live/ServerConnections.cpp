#include "live/ServerConnections.hpp"

#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/beast/websocket/ssl.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace live {

namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
namespace ssl = net::ssl;

class TlsContext {
public:
    ssl::context context{ssl::context::tls_server};
};

namespace {

using Clock = Viewer::Clock;
using Error = boost::system::error_code;
using Request = http::request<http::empty_body>;
using Response = http::response<http::string_body>;
using PlainStream = beast::tcp_stream;
// Not beast::ssl_stream: clang finds two equal teardown functions for it.
using TlsStream = ssl::stream<beast::tcp_stream>;

constexpr unsigned headLimit = 8 * 1024;

std::string text(beast::string_view view)
{
    return {view.data(), view.size()};
}

RequestHead headOf(const Request& request)
{
    return {text(request.method_string()), text(request.target()), text(request[http::field::host]),
            text(request[http::field::origin]), text(request[http::field::authorization])};
}

/// The sub-protocol to speak, of those that the viewer offers; empty when there is none.
std::string subProtocol(const Request& request)
{
    for (const char* ours : {"foxglove.sdk.v1", "foxglove.websocket.v1"}) {
        for (const auto& field : http::token_list(request[http::field::sec_websocket_protocol])) {
            if (field == ours) {
                return ours;
            }
        }
    }
    return {};
}

/// Ends the count of a connection, whether it is still HTTP's or a viewer's by then.
class OpenConnection {
public:
    explicit OpenConnection(ConnectionOwner& owner) : m_owner(&owner) {}
    OpenConnection(OpenConnection&& other) noexcept : m_owner(std::exchange(other.m_owner, nullptr)) {}
    OpenConnection(const OpenConnection&) = delete;
    OpenConnection& operator=(const OpenConnection&) = delete;
    OpenConnection& operator=(OpenConnection&&) = delete;
    ~OpenConnection()
    {
        if (m_owner != nullptr) {
            m_owner->connectionEnded();
        }
    }
    ConnectionOwner& owner() const { return *m_owner; }

private:
    ConnectionOwner* m_owner;
};

// ---- a viewer ----

template <class Stream>
class ViewerConnection final : public ViewerLink,
                               public std::enable_shared_from_this<ViewerConnection<Stream>> {
public:
    ViewerConnection(Stream&& stream, OpenConnection connection, Viewer::Kind kind)
        : m_connection(std::move(connection)),
          m_socket(std::move(stream)),
          m_timer(m_socket.get_executor()),
          m_viewer(m_connection.owner().makeViewer(kind))
    {
    }

    void start(Request request)
    {
        const ServerSettings& settings = owner().settings();
        beast::get_lowest_layer(m_socket).expires_never();
        // A closed connection is noticed at the latest after the idle timeout, by pings.
        m_socket.set_option(
            websocket::stream_base::timeout{settings.requestTimeout, settings.idleTimeout, true});
        m_socket.set_option(websocket::stream_base::decorator(
            [protocol = subProtocol(request)](websocket::response_type& response) {
                response.set(http::field::sec_websocket_protocol, protocol);
            }));
        m_socket.read_message_max(settings.maxMessageBytes);
        owner().viewerArrived(this->shared_from_this());
        m_request = std::move(request);
        m_socket.async_accept(m_request, [self = this->shared_from_this()](const Error& error) {
            if (error) {
                self->leave();
                return;
            }
            self->m_isOpen = true;
            self->read();
            self->send();
        });
    }

    Viewer& viewer() override { return *m_viewer; }

    void send() override
    {
        if (!m_isOpen || m_isClosing) {
            return;
        }
        if (m_viewer->isOverflowing()) {
            owner().disconnected();
            abort();
            return;
        }
        if (m_writingSince) {
            return;
        }
        const Clock::time_point now = Clock::now();
        if (auto frame = m_viewer->next(now)) {
            write(std::move(*frame), now);
        } else if (const auto due = m_viewer->due()) {
            m_timer.expires_at(*due);
            m_timer.async_wait([self = this->shared_from_this()](const Error& aborted) {
                if (!aborted) {
                    self->send();
                }
            });
        }
    }

    void close(const Closing& why) override
    {
        if (!m_isOpen || std::exchange(m_isClosing, true)) {
            return;
        }
        m_timer.cancel();
        websocket::close_reason reason(why.code);
        reason.reason.assign(why.reason.data(), std::min<std::size_t>(why.reason.size(), 120));
        m_socket.async_close(reason, [self = this->shared_from_this()](const Error&) { self->leave(); });
    }

    void closeIfStuck() override
    {
        if (m_writingSince && Clock::now() - *m_writingSince > owner().settings().stuckTimeout) {
            owner().disconnected();
            abort();
        }
    }

private:
    ConnectionOwner& owner() { return m_connection.owner(); }

    void read()
    {
        m_socket.async_read(m_buffer, [self = this->shared_from_this()](const Error& error, std::size_t) {
            if (error) {
                self->readFailed(error);
                return;
            }
            self->received();
        });
    }

    void received()
    {
        const auto data = m_buffer.data();
        const std::string_view message(static_cast<const char*>(data.data()), data.size());
        const std::uint64_t former = m_viewer->subscriptionVersion();
        const std::optional<Closing> closing =
            m_socket.got_text() ? m_viewer->receiveText(message) : Viewer::receiveBinary();
        m_buffer.consume(m_buffer.size());
        if (m_viewer->subscriptionVersion() != former) {
            owner().subscriptionsChanged(*m_viewer);
        }
        if (closing) {
            owner().disconnected();
            close(*closing);
        }
        send();
        read();  // also while closing, for the viewer's own close message
    }

    void readFailed(const Error& error)
    {
        // Beast has told the viewer already, with the code that fits.
        const Error closed = websocket::error::closed;
        if (error.category() == closed.category() && error != closed) {
            owner().disconnected();
        }
        if (!m_isClosing) {
            leave();
        }
    }

    void write(Frame frame, Clock::time_point now)
    {
        m_frame = std::move(frame.data);
        m_writingSince = now;
        m_socket.binary(frame.isBinary);
        m_socket.async_write(net::buffer(m_frame),
                             [self = this->shared_from_this()](const Error& error, std::size_t) {
                                 self->m_writingSince.reset();
                                 if (error) {
                                     self->leave();
                                     return;
                                 }
                                 self->owner().messageSent();
                                 self->send();
                             });
    }

    /// Ends the connection without a word: the viewer does not read.
    void abort()
    {
        m_isClosing = true;
        beast::get_lowest_layer(m_socket).close();
        leave();
    }

    void leave()
    {
        m_isOpen = false;
        m_timer.cancel();
        owner().viewerLeft(this->shared_from_this());
    }

    OpenConnection m_connection;
    websocket::stream<Stream> m_socket;
    net::steady_timer m_timer;
    std::unique_ptr<Viewer> m_viewer;
    beast::flat_buffer m_buffer;
    Request m_request;
    std::string m_frame;
    std::optional<Clock::time_point> m_writingSince;
    bool m_isOpen = false;
    bool m_isClosing = false;
};

// ---- requests ----

void setCommonHeaders(Response& response)
{
    response.set(http::field::cache_control, "no-store");
    response.set("X-Content-Type-Options", "nosniff");
    response.set("X-Frame-Options", "DENY");
    response.set("Referrer-Policy", "no-referrer");
    response.set("Cross-Origin-Resource-Policy", "same-origin");
    response.set(
        "Content-Security-Policy",
        "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
        "base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
}

template <class Stream>
class HttpConnection : public std::enable_shared_from_this<HttpConnection<Stream>> {
public:
    template <class... Arguments>
    explicit HttpConnection(ConnectionOwner& owner, Arguments&&... arguments)
        : m_connection(owner), m_stream(std::forward<Arguments>(arguments)...)
    {
    }

    void start()
    {
        limitTime();
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            m_stream.async_handshake(ssl::stream_base::server,
                                     [self = this->shared_from_this()](const Error& error) {
                                         if (!error) {
                                             self->read();
                                         }
                                     });
        } else {
            read();
        }
    }

private:
    ConnectionOwner& owner() { return m_connection.owner(); }
    void limitTime() { beast::get_lowest_layer(m_stream).expires_after(owner().settings().requestTimeout); }

    void read()
    {
        m_parser.emplace();
        m_parser->header_limit(headLimit);
        m_parser->body_limit(0);
        limitTime();
        http::async_read(m_stream, m_buffer, *m_parser,
                         [self = this->shared_from_this()](const Error& error, std::size_t) {
                             if (!error) {
                                 self->handle(self->m_parser->release());
                             } else if (isMalformed(error)) {
                                 self->refuse({400, "this is no request that the server understands"});
                             }
                         });
    }

    static bool isMalformed(const Error& error)
    {
        const Error end = http::error::end_of_stream;
        return error.category() == end.category() && error != end;
    }

    void handle(Request request)
    {
        const bool isUpgrade = websocket::is_upgrade(request);
        const RequestHead head = headOf(request);
        const std::string_view path = pathOf(head.target);
        m_isHead = request.method() == http::verb::head;
        m_keepAlive = request.keep_alive();
        if (const auto refusal = owner().rules().refuse(head, isUpgrade || PageFiles::isConfidential(path))) {
            refuse(*refusal);
        } else if (isUpgrade) {
            upgrade(std::move(request), path == "/page" ? Viewer::Kind::Page : Viewer::Kind::Standard);
        } else {
            respond(owner().answer(path));
        }
    }

    void upgrade(Request request, Viewer::Kind kind)
    {
        if (subProtocol(request).empty()) {
            refuse({400, "the sub-protocol must be foxglove.sdk.v1 or foxglove.websocket.v1"});
        } else if (owner().isFull()) {
            refuse({503, "there are too many viewers"});
        } else {
            std::make_shared<ViewerConnection<Stream>>(std::move(m_stream), std::move(m_connection), kind)
                ->start(std::move(request));
        }
    }

    void refuse(const Refusal& refusal)
    {
        m_keepAlive = false;
        respond({refusal.status, "text/plain; charset=utf-8", refusal.reason + '\n'});
    }

    void respond(Answer answer)
    {
        m_response = Response(static_cast<http::status>(answer.status), 11);
        m_response.set(http::field::content_type, answer.type);
        setCommonHeaders(m_response);
        m_response.keep_alive(m_keepAlive);
        const std::size_t size = answer.body.size();
        if (!m_isHead) {
            m_response.body() = std::move(answer.body);
        }
        m_response.content_length(size);
        limitTime();
        http::async_write(m_stream, m_response,
                          [self = this->shared_from_this()](const Error& error, std::size_t) {
                              if (!error && self->m_keepAlive) {
                                  self->read();
                              } else {
                                  self->finish();
                              }
                          });
    }

    void finish()
    {
        Error ignored;
        beast::get_lowest_layer(m_stream).socket().shutdown(Socket::shutdown_send, ignored);
    }

    OpenConnection m_connection;
    Stream m_stream;
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::empty_body>> m_parser;
    Response m_response;
    bool m_isHead = false;
    bool m_keepAlive = false;
};

}  // namespace

std::shared_ptr<TlsContext> makeTlsContext(const std::filesystem::path& certificate,
                                           const std::filesystem::path& key)
{
    auto tls = std::make_shared<TlsContext>();
    try {
        tls->context.set_options(ssl::context::default_workarounds | ssl::context::no_tlsv1 |
                                 ssl::context::no_tlsv1_1);
        tls->context.use_certificate_chain_file(certificate.string());
        tls->context.use_private_key_file((key.empty() ? certificate : key).string(), ssl::context::pem);
    } catch (const boost::system::system_error& error) {
        throw std::runtime_error("cannot use the certificate " + certificate.string() + ": " +
                                 error.code().message());
    }
    return tls;
}

void startConnection(Socket socket, TlsContext* tls, ConnectionOwner& owner)
{
    Error ignored;
    socket.set_option(net::ip::tcp::no_delay(true), ignored);
    if (tls != nullptr) {
        std::make_shared<HttpConnection<TlsStream>>(owner, std::move(socket), tls->context)->start();
    } else {
        std::make_shared<HttpConnection<PlainStream>>(owner, std::move(socket))->start();
    }
}

}  // namespace live
