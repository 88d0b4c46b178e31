#include "live/LiveServer.hpp"

#include "live/AccessRules.hpp"
#include "live/ServerConnections.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <new>
#include <random>
#include <set>
#include <stdexcept>
#include <thread>
#include <unordered_map>

namespace live {

namespace {

using Clock = Viewer::Clock;
using std::chrono::milliseconds;

// The simulation's thread wakes this one at most so often: a wake-up costs it a system call.
constexpr milliseconds deliveryInterval{4};
constexpr milliseconds housekeepingInterval{250};
constexpr milliseconds acceptPause{100};  // when there are no file descriptors left
constexpr milliseconds goodbyeTime{500};  // for viewers to answer that the server goes away

std::string randomText()
{
    std::random_device device;
    return std::to_string(device()) + '-' + std::to_string(device());
}

net::ip::tcp::endpoint endpointOf(const ServerSettings& settings)
{
    boost::system::error_code error;
    const std::string name = settings.address == "localhost" ? "127.0.0.1" : settings.address;
    const auto address = net::ip::make_address(name, error);
    if (error) {
        throw std::invalid_argument('"' + settings.address + "\" is not an IP address");
    }
    return {address, settings.port};
}

/// Threads inherit the signals that are blocked. The script's thread is to get them, for Ctrl-C.
class WithoutSignals {
public:
    WithoutSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_former);
    }
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;
    ~WithoutSignals() { pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }

private:
    sigset_t m_former{};
};

}  // namespace

class LiveServer::Impl final : public ConnectionOwner {
public:
    Impl(const ServerSettings& settings, std::shared_ptr<ValueExchange> exchange)
        : m_settings(settings),
          m_exchange(std::move(exchange)),
          m_rules(settings.address, !settings.certificate.empty(), settings.origins, settings.token),
          m_page(settings.pageFolder),
          m_session(randomText()),
          m_acceptor(m_io),
          m_deliveryTimer(m_io),
          m_housekeepingTimer(m_io),
          m_acceptTimer(m_io)
    {
        if (!settings.certificate.empty()) {
            m_tls = makeTlsContext(settings.certificate, settings.key);
        }
        listen();
        m_exchange->onReady([this] { net::post(m_io, [this] { deliverSoon(); }); });
        net::post(m_io, [this] {
            accept();
            keepHouse();
            deliver();
        });
        const WithoutSignals blocked;
        m_thread = std::thread([this] { work(); });
    }

    std::uint16_t port() const { return m_acceptorPort; }

    void stop()
    {
        m_exchange->close();
        net::post(m_io, [this] { sayGoodbye(); });
        m_thread.join();
        m_viewers.clear();  // before the context that their sockets belong to
    }

    /// In the child of a fork.
    void closeListener() const { ::close(m_listener); }

    ServerCounts counts() const noexcept
    {
        return {m_viewerCount, m_connectionCount, m_messageCount, m_mergedCount, m_disconnectionCount};
    }

    // ---- for connections ----

    const ServerSettings& settings() const override { return m_settings; }
    const AccessRules& rules() const override { return m_rules; }
    Answer answer(std::string_view path) const override { return m_page.answer(path, m_scene.get()); }
    bool isFull() const override { return m_viewers.size() >= m_settings.maxViewers; }
    void connectionEnded() override { --m_openConnections; }
    void messageSent() override { ++m_messageCount; }
    void disconnected() override { ++m_disconnectionCount; }

    std::unique_ptr<Viewer> makeViewer(Viewer::Kind kind) override
    {
        auto viewer = std::make_unique<Viewer>(kind, m_settings.viewer, m_settings.name, m_session);
        if (m_scene) {
            viewer->sceneChanged(m_scene);
        }
        return viewer;
    }

    void viewerArrived(const std::shared_ptr<ViewerLink>& viewer) override
    {
        m_viewers.insert(viewer);
        m_viewerCount = m_viewers.size();
    }

    void viewerLeft(const std::shared_ptr<ViewerLink>& viewer) override
    {
        if (m_viewers.erase(viewer) != 0) {
            m_mergedOfGone += viewer->viewer().mergedCount();
            m_viewerCount = m_viewers.size();
            updateWanted();
            if (m_isStopping && m_viewers.empty()) {
                m_io.stop();
            }
        }
    }

    void subscriptionsChanged(Viewer& viewer) override
    {
        updateWanted();
        for (const ChannelId channel : viewer.takeNewSubscriptions()) {
            const auto known = m_latest.find(channel);
            if (known != m_latest.end()) {
                viewer.offer(known->second);
            }
        }
    }

private:
    void work()
    {
        while (!m_io.stopped()) {
            try {
                m_io.run();
            } catch (const std::bad_alloc&) {
                // The connection that needed the memory is gone; the others are served.
            }
        }
    }

    void listen()
    {
        const auto endpoint = endpointOf(m_settings);
        boost::system::error_code error;
        m_acceptor.open(endpoint.protocol(), error);
        if (!error) {
            ::fcntl(m_acceptor.native_handle(), F_SETFD, FD_CLOEXEC);
            m_acceptor.set_option(net::socket_base::reuse_address(true), error);
        }
        if (!error) {
            m_acceptor.bind(endpoint, error);
        }
        if (!error) {
            m_acceptor.listen(net::socket_base::max_listen_connections, error);
        }
        if (error) {
            throw std::runtime_error("cannot listen on " + m_settings.address + " port " +
                                     std::to_string(m_settings.port) + ": " + error.message());
        }
        m_acceptorPort = m_acceptor.local_endpoint().port();
        m_listener = m_acceptor.native_handle();
        m_rules.setPort(m_acceptorPort);
    }

    void accept()
    {
        m_acceptor.async_accept([this](const boost::system::error_code& error, Socket socket) {
            if (error == net::error::operation_aborted) {
                return;
            }
            if (error) {
                m_acceptTimer.expires_after(acceptPause);
                m_acceptTimer.async_wait([this](const boost::system::error_code& aborted) {
                    if (!aborted) {
                        accept();
                    }
                });
                return;
            }
            if (m_openConnections < m_settings.maxConnections) {
                ++m_openConnections;
                ++m_connectionCount;
                startConnection(std::move(socket), m_tls.get(), *this);
            }
            accept();
        });
    }

    void deliverSoon()
    {
        const auto earliest = m_lastDelivery + deliveryInterval;
        if (Clock::now() >= earliest) {
            deliver();
            return;
        }
        m_deliveryTimer.expires_at(earliest);
        m_deliveryTimer.async_wait([this](const boost::system::error_code& aborted) {
            if (!aborted) {
                deliver();
            }
        });
    }

    void deliver()
    {
        m_lastDelivery = Clock::now();
        if (!m_exchange->take(m_delivery)) {
            return;
        }
        if (m_delivery.scene) {
            m_scene = m_delivery.scene;
        }
        for (const LiveValue& value : m_delivery.values.all()) {
            m_latest[value.channel] = {value.channel, value.time,   value.latest,
                                       value.latest,  value.latest, 0};
        }
        const auto viewers = m_viewers;  // one that overflows leaves the set
        for (const auto& link : viewers) {
            if (m_delivery.scene) {
                link->viewer().sceneChanged(m_scene);
            }
            for (const LiveValue& value : m_delivery.values.all()) {
                link->viewer().offer(value);
            }
            if (m_delivery.hasTime) {
                link->viewer().offerTime(m_delivery.time);
            }
            link->send();
        }
        if (m_delivery.scene) {
            updateWanted();
        }
    }

    void updateWanted()
    {
        std::set<ChannelId> wanted;
        for (const auto& link : m_viewers) {
            const auto channels = link->viewer().subscribedChannels();
            wanted.insert(channels.begin(), channels.end());
        }
        if (wanted != m_wanted) {
            std::erase_if(m_latest, [&wanted](const auto& entry) { return !wanted.contains(entry.first); });
            m_exchange->setWanted({wanted.begin(), wanted.end()});
            m_wanted = std::move(wanted);
        }
    }

    /// Closes what is stuck, again and again.
    void keepHouse()
    {
        std::uint64_t merged = m_mergedOfGone;
        const auto viewers = m_viewers;
        for (const auto& link : viewers) {
            merged += link->viewer().mergedCount();
            link->closeIfStuck();
        }
        m_mergedCount = merged;
        m_housekeepingTimer.expires_after(housekeepingInterval);
        m_housekeepingTimer.async_wait([this](const boost::system::error_code& aborted) {
            if (!aborted) {
                keepHouse();
            }
        });
    }

    void sayGoodbye()
    {
        m_isStopping = true;
        boost::system::error_code ignored;
        m_acceptor.close(ignored);
        m_deliveryTimer.cancel();
        m_acceptTimer.cancel();
        const auto viewers = m_viewers;
        for (const auto& link : viewers) {
            link->close({1001, "the server ends"});
        }
        m_housekeepingTimer.expires_after(m_viewers.empty() ? milliseconds(0) : goodbyeTime);
        m_housekeepingTimer.async_wait([this](const boost::system::error_code&) { m_io.stop(); });
    }

    ServerSettings m_settings;
    std::shared_ptr<ValueExchange> m_exchange;
    AccessRules m_rules;
    PageFiles m_page;
    std::string m_session;
    std::shared_ptr<TlsContext> m_tls;
    std::shared_ptr<const Scene> m_scene;
    std::set<std::shared_ptr<ViewerLink>> m_viewers;
    std::size_t m_openConnections = 0;

    net::io_context m_io{1};
    net::ip::tcp::acceptor m_acceptor;
    net::steady_timer m_deliveryTimer;
    net::steady_timer m_housekeepingTimer;
    net::steady_timer m_acceptTimer;
    std::uint16_t m_acceptorPort = 0;
    int m_listener = -1;
    bool m_isStopping = false;

    Delivery m_delivery;
    Clock::time_point m_lastDelivery{};
    std::unordered_map<ChannelId, LiveValue> m_latest;  // of wanted channels
    std::set<ChannelId> m_wanted;

    std::atomic<std::uint64_t> m_viewerCount = 0;
    std::atomic<std::uint64_t> m_connectionCount = 0;
    std::atomic<std::uint64_t> m_messageCount = 0;
    std::atomic<std::uint64_t> m_mergedCount = 0;
    std::atomic<std::uint64_t> m_disconnectionCount = 0;
    std::uint64_t m_mergedOfGone = 0;

    std::thread m_thread;  // last: it uses all the others
};

LiveServer::LiveServer(const ServerSettings& settings, std::shared_ptr<ValueExchange> exchange)
    : m_impl(std::make_unique<Impl>(settings, std::move(exchange))),
      m_port(m_impl->port()),
      m_process(::getpid())
{
    const bool isV6 = settings.address.find(':') != std::string::npos;
    m_url = std::string(settings.certificate.empty() ? "http://" : "https://") + (isV6 ? "[" : "") +
            settings.address + (isV6 ? "]:" : ":") + std::to_string(m_port) + '/' +
            (settings.token.empty() ? "" : "#token=" + settings.token);
}

LiveServer::~LiveServer()
{
    stop();
}

ServerCounts LiveServer::counts() const noexcept
{
    return m_impl ? m_impl->counts() : m_lastCounts;
}

void LiveServer::stop()
{
    if (!m_impl) {
        return;
    }
    if (m_process != ::getpid()) {
        m_impl->closeListener();
        (void)m_impl.release();  // its thread is the parent's; nothing can end it here
        return;
    }
    m_impl->stop();
    m_lastCounts = m_impl->counts();
    m_impl.reset();
}

}  // namespace live
