#include "host/Calls.hpp"
#include "python/Bindings.hpp"
#include "python/DiagramReferences.hpp"
#include "python/Edge.hpp"
#include "python/ScriptSource.hpp"
#include "recorder/RecordingRun.hpp"
#include "recorder/Replay.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "simulation/ProgressLine.hpp"
#include "simulation/Run.hpp"
#include "simulation/SimulationErrors.hpp"
#include "simulation/TableSource.hpp"

#include <pybind11/complex.h>
#include <pybind11/functional.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <complex>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace zmhost {

using reference_host::Model;
using simulation::Channel;
using simulation::ResolvedClient;
using simulation::Run;
using simulation::RunState;

namespace {

/// A run with what a script has attached to it, all of which ends before the run does.
class ScriptRun : public Run {
public:
    using Run::Run;
    ~ScriptRun() override
    {
        recordings.reset();
        progressSubscription.end();
    }

    std::unique_ptr<recorder::RecordingRun> recordings;
    std::unique_ptr<simulation::ProgressLine> progress;
    simulation::Subscription progressSubscription;
};

/// Numbers that others read in place, such as numpy: one number a sample, or a row of them.
struct Numbers {
    std::vector<double> data;
    std::size_t samples = 0;
    std::size_t elements = 1;
    bool isComplex = false;

    py::buffer_info buffer()
    {
        const py::ssize_t size = isComplex ? sizeof(std::complex<double>) : sizeof(double);
        std::vector<py::ssize_t> shape{static_cast<py::ssize_t>(samples)};
        std::vector<py::ssize_t> strides{size * static_cast<py::ssize_t>(elements)};
        if (elements != 1) {
            shape.push_back(static_cast<py::ssize_t>(elements));
            strides.push_back(size);
        }
        return {data.data(),
                size,
                isComplex ? py::format_descriptor<std::complex<double>>::format()
                          : py::format_descriptor<double>::format(),
                static_cast<py::ssize_t>(shape.size()),
                shape,
                strides};
    }
};

/// Lets Ctrl-C through.
void checkSignals()
{
    if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
    }
}

/// Other threads of the script run while the simulation waits.
void sleepWithoutLock(simulation::Waiting::Clock::duration time)
{
    const py::gil_scoped_release release;
    std::this_thread::sleep_for(time);
}

void warnScript(const std::string& message)
{
    zmsvReportAsWarning(
        zmsvCreateDiagnostic(zmsvMessageId(simulation::simulationCatalog, "HistoriesShortened"), message));
}

/// A source until a run takes it.
struct NewSource {
    std::unique_ptr<simulation::Source> source;
};
using SourceHandle = std::shared_ptr<NewSource>;

SourceHandle makeTableSource(const std::shared_ptr<Model>& model, const recorder::RecordedTable& table,
                             bool isLooped)
{
    return atEdge([&] {
        auto source = std::make_shared<NewSource>();
        source->source = recorder::makeSource(*model, table, isLooped);
        return source;
    });
}

SourceHandle makeScriptSource(const std::shared_ptr<Model>& model, const std::optional<BlockReference>& block,
                              const py::function& function, bool takesInputs, bool allowsNaN)
{
    auto source = std::make_shared<NewSource>();
    source->source = std::make_unique<ScriptSource>(model, block, function, takesInputs, allowsNaN);
    return source;
}

std::shared_ptr<Run> makeRun(const std::shared_ptr<Model>& model, const std::vector<SourceHandle>& sources,
                             double start, std::optional<double> step, std::optional<double> stop,
                             std::optional<double> pace, std::size_t historyBytes,
                             const recorder::RecordingBlocks& recordings,
                             const std::optional<py::function>& progress)
{
    if (std::find(recordings.begin(), recordings.end(), nullptr) != recordings.end()) {
        throw py::type_error("None is no recording");
    }
    return atEdge([&] {
        simulation::RunOptions options;
        options.start = start;
        options.step = step;
        options.stop = stop;
        options.pace = pace;
        options.limits.historyBytes = historyBytes;
        options.waiting.sleep = sleepWithoutLock;
        options.checkpoint = checkSignals;
        options.warn = warnScript;
        Run::Sources owned;
        for (const SourceHandle& source : sources) {
            owned.push_back(std::move(source->source));
        }
        const auto run = std::make_shared<ScriptRun>(model, std::move(owned), std::move(options));
        if (!recordings.empty()) {
            auto recording = std::make_unique<recorder::RecordingRun>(recordings);
            recording->follow(*run);
            run->recordings = std::move(recording);
        }
        if (progress) {
            run->progress = std::make_unique<simulation::ProgressLine>(
                [write = *progress](const std::string& text) { write(text); }, run->lastTime());
            run->progressSubscription = run->hub().subscribe(*run->progress);
            run->progressSubscription.select({});
        }
        return std::shared_ptr<Run>(run);
    });
}

double nextTime(Run& run)
{
    const bool goesOn = atEdge([&] { return run.next(); });
    if (!goesOn) {
        throw py::stop_iteration();
    }
    return run.time()->seconds;
}

const char* stateName(const Run& run)
{
    switch (run.state()) {
        case RunState::Ready:
            return "ready";
        case RunState::Running:
            return "running";
        case RunState::Paused:
            return "paused";
        default:
            return "ended";
    }
}

std::optional<Channel> channelOf(Run& run, const std::string& uuid)
{
    const Channel* channel = run.hub().findByUuid(uuid);
    return channel != nullptr ? std::optional(*channel) : std::nullopt;
}

std::optional<Channel> channelOfPort(Run& run, const PortReference& port)
{
    const std::string path = reference_host::utf8FromUtf16(port.block->path());
    for (Channel& channel : run.hub().channels()) {
        if (channel.blockPath == path && channel.portNumber == port.index + 1) {
            return std::move(channel);
        }
    }
    return std::nullopt;
}

py::object latestOfChannel(Run& run, simulation::ChannelId id)
{
    const auto sample = run.hub().latest(id);
    return sample ? valueToPython(run.hub().find(id)->layout, sample->values.data()) : py::none();
}

py::object latestOfPort(Run& run, const PortReference& port)
{
    const auto sample = run.latest({port.block.block, port.index});
    return sample ? valueToPython(sample->layout, sample->values.data()) : py::none();
}

/// The times, and the values of one leaf.
std::pair<Numbers, Numbers> historyOf(Run& run, simulation::ChannelId id, const std::string& leafPath)
{
    simulation::History history = run.hub().history(id);
    const auto& leaves = history.layout.leaves;
    const auto leaf =
        std::find_if(leaves.begin(), leaves.end(), [&](const auto& each) { return each.path == leafPath; });
    if (leaf == leaves.end()) {
        std::string names;
        for (const auto& each : leaves) {
            names += (names.empty() ? "" : ", ") + each.path;
        }
        throw py::value_error("the signal has no leaf \"" + leafPath + "\"; it has: " + names);
    }
    const std::size_t samples = history.times.size();
    const std::size_t width = leaf->elementCount * (leaf->isComplex ? 2 : 1);
    Numbers values{{}, samples, leaf->elementCount, leaf->isComplex};
    if (width == history.layout.width) {
        values.data = std::move(history.values);
    } else {
        values.data.reserve(samples * width);
        for (std::size_t i = 0; i < samples; ++i) {
            const auto first =
                history.values.begin() + static_cast<std::ptrdiff_t>(i * history.layout.width + leaf->offset);
            values.data.insert(values.data.end(), first, first + static_cast<std::ptrdiff_t>(width));
        }
    }
    return {Numbers{std::move(history.times), samples}, std::move(values)};
}

void bindPlainData(py::module_& module)
{
    py::class_<Channel>(module, "Channel", "An instrumented signal as a run has it.")
        .def_readonly("id", &Channel::id)
        .def_readonly("uuid", &Channel::uuid)
        .def_property_readonly("label", &Channel::label, "The signal's name, else the port's.")
        .def_readonly("block_path", &Channel::blockPath)
        .def_readonly("port_name", &Channel::portName)
        .def_readonly("port_number", &Channel::portNumber, "From 1; 0 for a chart item.")
        .def_readonly("decimation", &Channel::decimation)
        .def_readonly("max_points", &Channel::maxPoints)
        .def_readonly("is_hidden", &Channel::isHidden)
        .def_readonly("is_bound", &Channel::isBound, "Whether the diagram has the port.")
        .def_readonly("has_source", &Channel::hasSource, "Whether a source gives its values.")
        .def("__repr__", [](const Channel& self) {
            return py::str("<channel {}: port {} {!r} of {!r}>")
                .format(self.id, self.portNumber, self.portName, self.blockPath);
        });
    py::class_<ResolvedClient>(module, "Client", "A streaming client, resolved for a run.")
        .def_readonly("uuid", &ResolvedClient::uuid)
        .def_readonly("observer_type", &ResolvedClient::observerType)
        .def_readonly("title", &ResolvedClient::title)
        .def_readonly("channel", &ResolvedClient::channel, "The number of its channel; None when unbound.")
        .def_readonly("signal_uuid", &ResolvedClient::signalUuid)
        .def_readonly("port_number", &ResolvedClient::portNumber)
        .def_readonly("aligned_path", &ResolvedClient::alignedPath)
        .def_readonly("update_rate", &ResolvedClient::updateRate);
    py::class_<Numbers>(module, "Numbers", py::buffer_protocol(), "Numbers that numpy takes without a copy.")
        .def_buffer(&Numbers::buffer)
        .def("__len__", [](const Numbers& self) { return self.samples; });
}

void bindRun(py::module_& module)
{
    py::class_<Run, std::shared_ptr<Run>>(module, "Run", "A simulation of a model, step by step.")
        .def("__iter__", [](const std::shared_ptr<Run>& self) { return self; })
        .def("__next__", nextTime)
        .def("__enter__", [](const std::shared_ptr<Run>& self) { return self; })
        .def("__exit__", [](Run& self, const py::args&) { atEdge([&] { self.stop(); }); })
        .def(
            "step", [](Run& self) { return atEdge([&] { return self.step(); }); },
            "Does one step, also while the run pauses; False when there is none left.")
        .def(
            "finish", [](Run& self) { atEdge([&] { self.runOn(); }); }, "Steps until the run ends or pauses.")
        .def(
            "pause", [](Run& self) { atEdge([&] { self.pause(); }); },
            "Ends a loop over the run after this step; the run can go on.")
        .def("resume", [](Run& self) { atEdge([&] { self.resume(); }); })
        .def(
            "stop", [](Run& self) { atEdge([&] { self.stop(); }); }, "Ends the run.")
        .def_property_readonly("model", &Run::model)
        .def_property_readonly("state", stateName, "\"ready\", \"running\", \"paused\" or \"ended\".")
        .def_property_readonly("error", &Run::error, "Why the run ended early; empty when it did not.")
        .def_property_readonly(
            "time",
            [](const Run& self) { return self.time() ? std::optional(self.time()->seconds) : std::nullopt; },
            "The time of the last step; None before the first.")
        .def_property("pace", &Run::pace,
                      [](Run& self, std::optional<double> pace) { atEdge([&] { self.setPace(pace); }); })
        .def_property_readonly("channels", [](Run& self) { return self.hub().channels(); })
        .def_property_readonly("clients", [](Run& self) { return self.hub().clients(); })
        .def("channel_of_uuid", channelOf, py::arg("uuid"))
        .def("channel_of_port", channelOfPort, py::arg("port"))
        .def("latest_of_channel", latestOfChannel, py::arg("channel"))
        .def("latest_of_port", latestOfPort, py::arg("port"))
        .def("history_of_channel", historyOf, py::arg("channel"), py::arg("leaf"))
        .def("__repr__", [](const Run& self) {
            return py::str("<run of {!r}, {}{}>")
                .format(reference_host::utf8FromUtf16(self.model()->name()), stateName(self),
                        self.time() ? std::string(py::str(" at {:g} s").format(self.time()->seconds)) : "");
        });
}

}  // namespace

void bindSimulation(py::module_& module)
{
    bindPlainData(module);
    py::class_<NewSource, SourceHandle>(module, "RunSource", "What computes output ports; for one run.");
    bindRun(module);
    module.def("table_source", makeTableSource, py::arg("model"), py::arg("table"), py::arg("loop"));
    module.def("script_source", makeScriptSource, py::arg("model"), py::arg("block"), py::arg("function"),
               py::arg("takes_inputs"), py::arg("allow_nan"));
    module.def("make_run", makeRun, py::arg("model").none(false), py::arg("sources"), py::arg("start"),
               py::arg("step"), py::arg("stop"), py::arg("pace"), py::arg("history_bytes"),
               py::arg("recordings"), py::arg("progress"));
}

}  // namespace zmhost
