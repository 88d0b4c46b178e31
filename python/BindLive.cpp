#include "live/HubFeed.hpp"
#include "live/LiveServer.hpp"
#include "live/MqttPublisher.hpp"
#include "python/Bindings.hpp"
#include "python/Edge.hpp"
#include "simulation/Run.hpp"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace py = pybind11;

namespace zmhost {

using simulation::Run;

namespace {

/// A run's server, from its making to `close`.
class RunServer {
public:
    RunServer(std::shared_ptr<Run> run, const live::ServerSettings& settings)
        : m_run(std::move(run)),
          m_exchange(std::make_shared<live::ValueExchange>()),
          m_server(std::make_unique<live::LiveServer>(settings, m_exchange))
    {
        m_feed.emplace(m_run->model(), m_run->hub(), m_exchange);
    }

    void close()
    {
        m_feed.reset();
        m_server->stop();
        m_run.reset();
    }

    bool isOpen() const { return m_run != nullptr; }
    std::uint16_t port() const { return m_server->port(); }
    const std::string& url() const { return m_server->url(); }
    live::ServerCounts counts() const { return m_server->counts(); }

private:
    std::shared_ptr<Run> m_run;
    std::shared_ptr<live::ValueExchange> m_exchange;
    std::unique_ptr<live::LiveServer> m_server;
    std::optional<live::HubFeed> m_feed;
};

class RunPublisher {
public:
    RunPublisher(std::shared_ptr<Run> run, const live::BrokerSettings& settings)
        : m_run(std::move(run)), m_publisher(std::make_unique<live::MqttPublisher>(settings))
    {
        m_feed.emplace(m_run->model(), m_run->hub(), m_publisher->sink());
    }

    void close()
    {
        m_feed.reset();
        {
            const py::gil_scoped_release others;  // it may take seconds
            m_publisher->stop();
        }
        m_run.reset();
    }

    bool isOpen() const { return m_run != nullptr; }
    live::BrokerCounts counts() const { return m_publisher->counts(); }

private:
    std::shared_ptr<Run> m_run;
    std::unique_ptr<live::MqttPublisher> m_publisher;
    std::optional<live::HubFeed> m_feed;
};

std::unique_ptr<RunServer> makeServer(const std::shared_ptr<Run>& run, const std::string& address,
                                      std::uint16_t port, const std::vector<std::string>& origins,
                                      const std::string& token, const std::filesystem::path& certificate,
                                      const std::filesystem::path& key, const std::filesystem::path& page,
                                      double stuckSeconds)
{
    live::ServerSettings settings;
    settings.address = address;
    settings.port = port;
    settings.origins = origins;
    settings.token = token;
    settings.certificate = certificate;
    settings.key = key;
    settings.pageFolder = page;
    settings.stuckTimeout = std::chrono::milliseconds(static_cast<std::int64_t>(stuckSeconds * 1000));
    return atEdge([&] { return std::make_unique<RunServer>(run, settings); });
}

std::unique_ptr<RunPublisher> makePublisher(const std::shared_ptr<Run>& run, const std::string& host,
                                            std::uint16_t port, const std::string& prefix, bool isVersion5,
                                            const std::string& user, const std::string& password, bool useTls,
                                            const std::filesystem::path& authorities,
                                            const std::filesystem::path& certificate,
                                            const std::filesystem::path& key, std::size_t maxWaiting,
                                            double firstPause)
{
    live::BrokerSettings settings;
    settings.host = host;
    settings.port = port;
    settings.prefix = prefix;
    settings.version = isVersion5 ? live::MqttVersion::V5 : live::MqttVersion::V311;
    settings.user = user;
    settings.password = password;
    settings.useTls = useTls;
    settings.authorities = authorities;
    settings.certificate = certificate;
    settings.key = key;
    settings.maxWaiting = maxWaiting;
    settings.firstPause = std::chrono::milliseconds(static_cast<std::int64_t>(firstPause * 1000));
    return atEdge([&] { return std::make_unique<RunPublisher>(run, settings); });
}

py::dict countsOf(const RunServer& server)
{
    const live::ServerCounts counts = server.counts();
    py::dict result;
    result["viewers"] = counts.viewers;
    result["connections"] = counts.connections;
    result["messages"] = counts.messages;
    result["merged"] = counts.mergedValues;
    result["disconnections"] = counts.disconnections;
    return result;
}

}  // namespace

void bindLive(py::module_& module)
{
    py::class_<RunServer>(module, "LiveServer", "Serves a run's values to browsers and viewers.")
        .def(py::init(&makeServer), py::arg("run").none(false), py::arg("address"), py::arg("port"),
             py::arg("origins"), py::arg("token"), py::arg("certificate"), py::arg("key"), py::arg("page"),
             py::arg("stuck_seconds"))
        .def("close", &RunServer::close, "Disconnects all viewers and ends the server.")
        .def_property_readonly("is_open", &RunServer::isOpen)
        .def_property_readonly("port", &RunServer::port)
        .def_property_readonly("url", &RunServer::url, "Where a browser finds the page.")
        .def_property_readonly("counts", &countsOf,
                               "viewers, connections, messages, merged values and disconnections so far.");
    py::class_<RunPublisher>(module, "Publisher", "Publishes a run's values on a broker.")
        .def(py::init(&makePublisher), py::arg("run").none(false), py::arg("host"), py::arg("port"),
             py::arg("prefix"), py::arg("is_version_5"), py::arg("user"), py::arg("password"),
             py::arg("use_tls"), py::arg("authorities"), py::arg("certificate"), py::arg("key"),
             py::arg("max_waiting"), py::arg("first_pause"))
        .def("close", &RunPublisher::close, "Publishes what waits, for two seconds at most, and disconnects.")
        .def_property_readonly("is_open", &RunPublisher::isOpen)
        .def_property_readonly("is_connected",
                               [](const RunPublisher& self) { return self.counts().isConnected; })
        .def_property_readonly("connections",
                               [](const RunPublisher& self) { return self.counts().connections; })
        .def_property_readonly("sent", [](const RunPublisher& self) { return self.counts().sent; })
        .def_property_readonly("dropped", [](const RunPublisher& self) { return self.counts().dropped; })
        .def_property_readonly("waiting", [](const RunPublisher& self) { return self.counts().waiting; })
        .def_property_readonly(
            "error", [](const RunPublisher& self) { return self.counts().error; },
            "Why there is no connection; empty when there is one.");
}

}  // namespace zmhost
