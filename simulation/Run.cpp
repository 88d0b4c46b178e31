#include "simulation/Run.hpp"

#include "reference_host/model/EditHistory.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/support/ChangeCount.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "simulation/ObservedSignals.hpp"
#include "simulation/PortGraph.hpp"
#include "simulation/PortValues.hpp"
#include "simulation/SimulationErrors.hpp"
#include "simulation/SourceOrder.hpp"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace simulation {

namespace rh = reference_host;
using rh::ChangeCount;

namespace {

/// The inputs of one source, as they are connected now.
class ConnectedInputs : public InputValues {
public:
    explicit ConnectedInputs(const PortValues& values) : m_values(values) {}

    void connect(std::vector<const PortValues::Entry*> entries) { m_entries = std::move(entries); }
    const std::vector<const PortValues::Entry*>& entries() const noexcept { return m_entries; }

    const double* values(std::size_t input) const override
    {
        const PortValues::Entry* entry = input < m_entries.size() ? m_entries[input] : nullptr;
        if (entry == nullptr) {
            return nullptr;
        }
        const double* const first = m_values.all().data() + entry->offset;
        return std::isnan(*first) ? nullptr : first;  // nothing came yet
    }
    const ValueLayout& layout(std::size_t input) const override { return m_entries[input]->port.layout; }

private:
    const PortValues& m_values;
    std::vector<const PortValues::Entry*> m_entries;
};

void requireFinite(const char* which, const std::optional<double>& time)
{
    if (time && !std::isfinite(*time)) {
        throw simulationError("InvalidTime", {std::string(which), *time});
    }
}

struct SourceState {
    std::unique_ptr<Source> source;
    std::uint64_t revision = 0;
    bool isStarted = false;
    std::unique_ptr<ConnectedInputs> inputs;
};

struct Probe {
    std::string key;  // as the UUID of its channel, which no signal has
    Place place;
};

}  // namespace

class Run::Impl {
public:
    Impl(std::shared_ptr<rh::Model> model, Sources sources, RunOptions options);
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl();

    bool step();
    void end(RunState state, const std::string& error);
    void refresh();
    ChannelId probe(const Place& place);
    std::optional<Sample> latest(const OutputPort& port) const;
    std::optional<double> lastTime() const;

    std::shared_ptr<rh::Model> model;
    ValueHub hub;
    Pacer pacer;
    std::string error;
    std::optional<StepTime> time;

private:
    std::string nameOf(std::size_t source) const { return m_sources[source].source->name(); }
    void takePorts(std::size_t source);
    void connectInputs();
    void requireOpen() const;
    void align();
    void resolve(const nvArray* clients);
    ChannelSetup setupOf(Channel channel, const std::optional<Place>& place, const PortGraph& graph) const;
    const PortValues::Entry* originOf(const Place& place, const PortGraph& graph) const;
    std::optional<double> nextTime() const;
    void doStep(double seconds);
    void advance(std::size_t source, double seconds);

    std::vector<SourceState> m_sources;
    std::vector<std::size_t> m_order;
    RunOptions m_options;
    PortValues m_values;
    std::vector<Probe> m_probes;
    std::uint64_t m_listener = 0;
    bool m_wasOpen;
    bool m_hasTimes = false;
    bool m_isStale = true;  // places, layouts or probes changed
    bool m_isStepping = false;
    std::uint64_t m_steps = 0;
    // What the channels and clients were made from.
    std::uint64_t m_diagrams = 0;
    std::uint64_t m_objects = 0;
    std::vector<ObservedSignal> m_signals;
    std::vector<std::string> m_clients;
};

Run::Impl::Impl(std::shared_ptr<rh::Model> runModel, Sources sources, RunOptions options)
    : model(std::move(runModel)),
      hub(options.limits),
      pacer(options.pace, options.waiting),
      m_options(std::move(options)),
      m_values(sources.size())
{
    if (model == nullptr) {
        throw simulationError("NoModel", {});
    }
    if (sources.empty()) {
        throw simulationError("NoSources", {});
    }
    m_wasOpen = rh::OpenModels::find(model->name()) == model;
    for (std::unique_ptr<Source>& source : sources) {
        m_hasTimes = m_hasTimes || source->hasTimes();
        m_sources.push_back({std::move(source), 0, false, std::make_unique<ConnectedInputs>(m_values)});
    }
    requireFinite("start", m_options.start);
    requireFinite("stop", m_options.stop);
    if (m_options.step && !(std::isfinite(*m_options.step) && *m_options.step > 0.0)) {
        throw simulationError("InvalidStep", {*m_options.step});
    }
    if (!m_hasTimes && !m_options.step) {
        throw simulationError("NoTimes", {});
    }
    if (m_options.warn) {
        hub.onShortened(m_options.warn);
    }
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        takePorts(i);
    }
    refresh();
    m_listener = model->history().addListener([this](const rh::DiagramChange& change) {
        m_values.follow(change);
        for (Probe& probe : m_probes) {
            followEdit(probe.place, change);
        }
        m_isStale = true;
    });
}

Run::Impl::~Impl()
{
    model->history().removeListener(m_listener);
}

void Run::Impl::takePorts(std::size_t source)
{
    SourceState& state = m_sources[source];
    state.revision = state.source->revision();
    m_values.set(source, state.source->ports(), *model, [this](std::size_t each) { return nameOf(each); });
    m_isStale = true;
}

void Run::Impl::requireOpen() const
{
    if (m_wasOpen && rh::OpenModels::find(model->name()) != model) {
        throw simulationError("ModelClosed", {rh::utf8FromUtf16(model->name())});
    }
}

void Run::Impl::refresh()
{
    const bool diagramChanged = m_diagrams != ChangeCount::ofDiagrams();
    if (!m_isStale && !diagramChanged && m_objects == ChangeCount::ofObjects()) {
        return;
    }
    requireOpen();
    m_diagrams = ChangeCount::ofDiagrams();
    std::vector<ObservedSignal> signals;
    rh::OwnedValue clients;
    if (m_options.withSignals) {
        signals = readObservedSignals(*model);
        clients = rh::modelClients(*model);
    }
    std::vector<std::string> records = clientRecords(clients.get());
    const bool signalsChanged = m_isStale || diagramChanged || signals != m_signals;
    if (signalsChanged) {
        m_signals = std::move(signals);
        connectInputs();
        align();
    }
    if (signalsChanged || records != m_clients) {
        m_clients = std::move(records);
        hub.setClients(resolveClients(*model, clients.get(), hub.channels()));
    }
    m_isStale = false;
    m_objects = ChangeCount::ofObjects();  // after our own calls
}

void Run::Impl::connectInputs()
{
    const PortGraph graph(*model);
    const auto isComputed = [this](const OutputPort& port) { return m_values.isComputed(port); };
    std::vector<std::vector<std::size_t>> readFrom(m_sources.size());
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        std::vector<const PortValues::Entry*> entries;
        for (const InputPort& input : m_sources[i].source->inputs()) {
            const auto origin = graph.originOfInput(*input.block, input.index, isComputed);
            entries.push_back(origin ? m_values.find({origin->block, origin->index, {}}) : nullptr);
            if (entries.back() != nullptr) {
                readFrom[i].push_back(entries.back()->source);
            }
        }
        m_sources[i].inputs->connect(std::move(entries));
    }
    m_order = orderOfSources(readFrom);
}

const PortValues::Entry* Run::Impl::originOf(const Place& place, const PortGraph& graph) const
{
    if (place.item) {
        return m_values.find(place);
    }
    const auto origin = graph.originOfOutput(
        {place.block, place.port}, [this](const OutputPort& port) { return m_values.isComputed(port); });
    return origin ? m_values.find({origin->block, origin->index, {}}) : nullptr;
}

ChannelSetup Run::Impl::setupOf(Channel channel, const std::optional<Place>& place,
                                const PortGraph& graph) const
{
    ChannelSetup setup{std::move(channel), std::nullopt};
    if (const PortValues::Entry* entry = place ? originOf(*place, graph) : nullptr) {
        setup.channel.layout = entry->port.layout;
        setup.valueOffset = entry->offset;
    }
    return setup;
}

void Run::Impl::align()
{
    const PortGraph graph(*model);
    std::vector<ChannelSetup> setups;
    setups.reserve(m_signals.size() + m_probes.size());
    for (const ObservedSignal& signal : m_signals) {
        setups.push_back(setupOf(signal.channel, signal.place, graph));
    }
    for (const Probe& probe : m_probes) {
        Channel channel;
        channel.uuid = probe.key;
        channel.maxPoints = 1;
        channel.isProbe = true;
        setups.push_back(setupOf(std::move(channel), probe.place, graph));
    }
    hub.align(std::move(setups));
}

ChannelId Run::Impl::probe(const Place& place)
{
    m_probes.push_back({"probe " + std::to_string(m_probes.size() + 1), place});
    m_isStale = true;
    refresh();
    return hub.findByUuid(m_probes.back().key)->id;
}

std::optional<Sample> Run::Impl::latest(const OutputPort& port) const
{
    const PortValues::Entry* entry = originOf({port.block, port.index, {}}, PortGraph(*model));
    if (entry == nullptr || !time) {
        return std::nullopt;
    }
    const auto values = m_values.all().subspan(entry->offset, entry->port.layout.width);
    return Sample{time->seconds, {values.begin(), values.end()}, entry->port.layout};
}

std::optional<double> Run::Impl::lastTime() const
{
    std::optional<double> last = m_options.stop;
    for (const SourceState& state : m_sources) {
        if (!m_options.step && state.source->hasTimes()) {
            const auto own = state.source->lastTime();
            if (!own) {
                return m_options.stop;
            }
            last = m_options.stop ? std::min(*m_options.stop, *own) : std::max(last.value_or(*own), *own);
        }
    }
    return last;
}

/// No value at the end. The run's own clock ticks at multiples of the step, so that errors do not add up.
std::optional<double> Run::Impl::nextTime() const
{
    std::optional<double> next;
    if (m_options.step) {
        next = m_options.start + static_cast<double>(m_steps) * *m_options.step;
    }
    bool anyLeft = false;
    for (const SourceState& state : m_sources) {
        const std::optional<double> own = state.source->hasTimes() ? state.source->nextTime() : std::nullopt;
        anyLeft = anyLeft || own.has_value();
        if (own && !m_options.step) {
            next = next ? std::min(*next, *own) : own;
        }
    }
    // A stop that is a multiple of the step is reached, whatever the rounding.
    constexpr double tolerance = 1e-9;
    const double slack = m_options.step ? tolerance * *m_options.step : 0.0;
    const bool isOver = m_hasTimes && !anyLeft && !m_options.stop;
    return !next || isOver || (m_options.stop && *next > *m_options.stop + slack) ? std::nullopt : next;
}

bool Run::Impl::step()
{
    if (m_isStepping) {
        throw simulationError("StepInsideStep", {});
    }
    if (hub.state() == RunState::Ended) {
        return false;
    }
    m_isStepping = true;
    try {
        const std::optional<double> next = nextTime();
        if (next) {
            doStep(*next);
        }
        m_isStepping = false;
        if (!next) {
            end(RunState::Ended, {});
        }
        return next.has_value();
    } catch (const std::exception& failure) {
        m_isStepping = false;
        end(RunState::Ended, failure.what());
        throw;
    } catch (...) {  // an interrupt of the script language, say
        m_isStepping = false;
        end(RunState::Ended, "interrupted");
        throw;
    }
}

void Run::Impl::doStep(double seconds)
{
    if (m_options.checkpoint) {
        m_options.checkpoint();
    }
    pacer.waitFor(seconds, [this] {
        if (m_options.checkpoint) {
            m_options.checkpoint();
        }
        hub.tellWaiting();
    });
    if (hub.state() == RunState::Ended) {
        return;  // stopped while it waited
    }
    requireOpen();
    refresh();
    if (time && seconds < time->seconds) {
        throw simulationError("TimeRunsBack", {std::string("The run"), seconds, time->seconds});
    }
    const std::vector<std::size_t> order = m_order;
    for (const std::size_t source : order) {
        advance(source, seconds);
    }
    if (hub.state() == RunState::Ended) {
        return;  // a source has stopped the run
    }
    requireOpen();  // a source may be a script
    refresh();
    time = StepTime::at(seconds, m_steps++);
    if (hub.state() == RunState::Ready) {
        hub.setState(RunState::Running);
    }
    hub.record(*time, m_values.all());
}

void Run::Impl::advance(std::size_t source, double seconds)
{
    SourceState& state = m_sources[source];
    if (!state.isStarted) {
        state.isStarted = true;
        state.source->start(seconds);
    }
    const bool hasOwnTimes = state.source->hasTimes() && !m_options.step;
    if (hasOwnTimes && state.source->nextTime() != seconds) {
        return;  // its last values are valid until its next time
    }
    state.source->advance(seconds, *state.inputs);
    if (state.source->revision() != state.revision) {
        takePorts(source);
        connectInputs();
    }
    state.source->write(m_values.of(source));
    if (const PortValues::Entry* entry = m_values.findNaN(source)) {
        throw simulationError("NotANumber", {nameOf(source), placeName(entry->port.place), seconds});
    }
}

/// Tells sources and consumers, all of them; the first failure is thrown unless one is under way already.
void Run::Impl::end(RunState state, const std::string& why)
{
    error = why;
    for (SourceState& each : m_sources) {
        if (each.isStarted) {
            each.source->stop();
            each.isStarted = false;
        }
    }
    try {
        hub.setState(state, why);
    } catch (...) {  // whatever it is: the error that ended the run comes first
        if (why.empty()) {
            throw;
        }
    }
}

Run::Run(std::shared_ptr<rh::Model> model, Sources sources, RunOptions options)
    : m_impl(std::make_unique<Impl>(std::move(model), std::move(sources), std::move(options)))
{
}

Run::~Run()
{
    try {
        stop();
    } catch (const std::exception&) {
        return;  // a consumer that fails at the end; nobody is left to tell
    }
}

const std::shared_ptr<rh::Model>& Run::model() const noexcept
{
    return m_impl->model;
}

ValueHub& Run::hub() noexcept
{
    return m_impl->hub;
}

bool Run::step()
{
    return m_impl->step();
}

bool Run::next()
{
    return state() != RunState::Paused && step();
}

void Run::runOn()
{
    while (next()) {
    }
}

void Run::pause()
{
    if (state() == RunState::Running || state() == RunState::Ready) {
        m_impl->hub.setState(RunState::Paused);
    }
}

void Run::resume()
{
    if (state() == RunState::Paused) {
        m_impl->pacer.restart();
        m_impl->hub.setState(RunState::Running);
    }
}

void Run::stop()
{
    if (state() != RunState::Ended) {
        m_impl->end(RunState::Ended, {});
    }
}

RunState Run::state() const noexcept
{
    return m_impl->hub.state();
}

const std::string& Run::error() const noexcept
{
    return m_impl->error;
}

std::optional<StepTime> Run::time() const noexcept
{
    return m_impl->time;
}

std::optional<double> Run::lastTime() const
{
    return m_impl->lastTime();
}

std::optional<double> Run::pace() const noexcept
{
    return m_impl->pacer.factor();
}

void Run::setPace(std::optional<double> pace)
{
    m_impl->pacer.setFactor(pace);
}

std::optional<Sample> Run::latest(const OutputPort& port) const
{
    return m_impl->latest(port);
}

ChannelId Run::probe(const Place& place)
{
    return m_impl->probe(place);
}

void Run::refresh()
{
    m_impl->refresh();
}

}  // namespace simulation
