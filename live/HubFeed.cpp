#include "live/HubFeed.hpp"

#include "host/Text.hpp"
#include "live/DiagramPicture.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <variant>

namespace live {

using simulation::Channel;
using simulation::ResolvedClient;
using simulation::RunState;

namespace {

// A picture takes Graphviz some tenths of a second, in which the run does not go on.
constexpr std::chrono::seconds pictureInterval{1};

std::int64_t nanoseconds(double seconds)
{
    constexpr double limit = 9.2e18;
    return static_cast<std::int64_t>(std::llround(std::clamp(seconds * 1e9, -limit, limit)));
}

std::string nameOf(const Channel& channel)
{
    std::string name = channel.portName.empty() ? std::to_string(channel.portNumber) : channel.portName;
    if (channel.chartItem && channel.chartItem->activity != "Self") {
        name += '.' + channel.chartItem->activity;
    }
    return name;
}

LiveChannel describe(const Channel& channel)
{
    LiveChannel result;
    result.topic = channel.blockPath + ':' + nameOf(channel);
    result.uuid = channel.uuid;
    result.model = channel.modelName;
    result.blockPath = channel.blockPath;
    result.portName = channel.portName;
    result.signalName = channel.signalName;
    result.portNumber = channel.portNumber;
    result.decimation = static_cast<int>(channel.decimation);
    result.isListed = !channel.isHidden;
    return result;
}

/// The path inside the model, and what the client selects of a bus or an array.
std::string signalText(const Channel& channel, const ResolvedClient& client)
{
    const std::string path = channel.blockPath.substr(channel.blockPath.find('/') + 1);
    std::string text = path + ": " + channel.label();
    if (!client.busLeafPath.empty()) {
        text += '.' + client.busLeafPath;
    }
    if (client.dimensionChannel > 1) {
        text += '[' + std::to_string(client.dimensionChannel) + ']';
    }
    return client.observesImaginaryPart ? text + " (imaginary part)" : text;
}

std::optional<double> numberParameter(const ResolvedClient& client, const char* name)
{
    const auto found = client.parameters.find(name);
    const bool isNumber = found != client.parameters.end() && std::holds_alternative<double>(found->second);
    return isNumber ? std::optional(std::get<double>(found->second)) : std::nullopt;
}

const char* stateText(RunState state)
{
    switch (state) {
        case RunState::Ready:
            return "ready";
        case RunState::Running:
            return "running";
        case RunState::Paused:
            return "paused";
        case RunState::Ended:
            break;
    }
    return "ended";
}

}  // namespace

HubFeed::HubFeed(std::shared_ptr<reference_host::Model> model, simulation::ValueHub& hub,
                 std::shared_ptr<ValueSink> sink)
    : m_model(std::move(model)),
      m_hub(hub),
      m_sink(std::move(sink)),
      m_state(stateText(hub.state())),
      m_subscription(hub.subscribe(*this))
{
    m_subscription.select({});
    makeScene();
}

void HubFeed::step(const simulation::StepTime& time, std::span<const simulation::ChannelSamples> samples)
{
    std::vector<ChannelId> wanted;
    const bool wantedChanged = m_sink->takeWanted(wanted);
    if (m_isStale || (m_pictureIsStale && mayDraw())) {
        makeScene();
    }
    for (const simulation::ChannelSamples& channel : samples) {
        const auto outputs = m_outputs.find(channel.channel);
        if (outputs == m_outputs.end() || channel.times.empty()) {
            continue;
        }
        const std::size_t width = channel.values.size() / channel.times.size();
        for (std::size_t i = 0; i < channel.times.size(); ++i) {
            for (const Output& output : outputs->second) {
                put(output, channel.times[i], channel.values.data() + i * width, width);
            }
        }
    }
    if (wantedChanged) {
        select(wanted);
    }
    m_sink->publish(std::max<std::int64_t>(time.nanoseconds, 0));
}

void HubFeed::runStateChanged(RunState state, const std::string& error)
{
    m_state = error.empty() ? stateText(state) : error;
    makeScene();
    m_sink->flush();
}

void HubFeed::put(const Output& output, double time, const double* sample, std::size_t width)
{
    const std::int64_t at = nanoseconds(time);
    if (output.frameStride == 0) {
        m_sink->put(LiveValue::of(output.channel, at, sample[output.valueIndex]));
        return;
    }
    for (std::size_t i = 0; i < width; i += output.frameStride) {  // elements follow each other in time
        m_sink->put(LiveValue::of(output.channel, at, sample[i]));
    }
}

void HubFeed::putLatest(simulation::ChannelId channel, const Output& output)
{
    const auto sample = m_hub.latest(channel);
    if (sample && output.valueIndex < sample->values.size()) {
        put(output, sample->time, sample->values.data(), sample->values.size());
    }
}

void HubFeed::select(const std::vector<ChannelId>& wanted)
{
    const std::set<ChannelId> former(m_wanted.begin(), m_wanted.end());
    const std::set<ChannelId> now(wanted.begin(), wanted.end());
    m_outputs.clear();
    for (const auto& [source, live] : m_channels) {
        const Channel* channel = now.contains(live.id) ? m_hub.find(source.first) : nullptr;
        if (channel == nullptr) {
            continue;
        }
        const bool isFrame =
            channel->isFrameBased && source.second == 0 && channel->layout.leaves.size() == 1;
        const std::size_t stride = !isFrame ? 0 : channel->layout.leaves.front().isComplex ? 2 : 1;
        const Output output{live.id, source.second, stride};
        m_outputs[source.first].push_back(output);
        if (!former.contains(live.id)) {
            putLatest(source.first, output);
        }
    }
    std::vector<simulation::ChannelId> selected;
    for (const auto& [channel, outputs] : m_outputs) {
        selected.push_back(channel);
    }
    m_wanted = wanted;
    m_subscription.select(std::move(selected));
}

// ---- the scene ----

void HubFeed::makeScene()
{
    const std::vector<Channel> channels = m_hub.channels();
    auto scene = std::make_shared<Scene>();
    m_pictureIsStale = m_pictureIsStale || m_isStale;
    m_isStale = false;
    if (m_pictureIsStale && mayDraw()) {
        drawPicture();
    }
    scene->version = ++m_version;
    scene->model = toUtf8(m_model->name());
    scene->state = m_state;
    m_former = std::exchange(m_channels, {});
    addListedChannels(*scene, channels);
    addWidgets(*scene);
    addMarks(*scene, channels);
    m_former.clear();
    scene->picture = m_picture;
    scene->pictureVersion = m_pictureVersion;
    m_sink->setScene(std::move(scene));
    select(m_wanted);
}

/// A channel keeps its id as long as viewers are told the same of it.
ChannelId HubFeed::channelFor(const Source& source, LiveChannel channel, Scene& scene)
{
    const auto present = m_channels.find(source);
    if (present != m_channels.end()) {
        return present->second.id;
    }
    const auto former = m_former.find(source);
    if (former != m_former.end()) {
        channel.id = former->second.id;
    }
    if (former == m_former.end() || former->second != channel) {
        channel.id = ++m_lastId;
    }
    scene.channels.push_back(channel);
    m_channels.emplace(source, std::move(channel));
    return scene.channels.back().id;
}

void HubFeed::addListedChannels(Scene& scene, const std::vector<Channel>& channels)
{
    std::map<std::string, int> uses;
    for (const Channel& channel : channels) {
        LiveChannel described = describe(channel);
        const int use = ++uses[described.topic];
        if (use > 1) {
            described.topic += " #" + std::to_string(use);
        }
        channelFor({channel.id, 0}, std::move(described), scene);
    }
}

void HubFeed::addWidgets(Scene& scene)
{
    for (const ResolvedClient& client : m_hub.clients()) {
        Widget widget;
        widget.uuid = client.uuid;
        widget.type = client.observerType;
        widget.title = client.title;
        widget.path = client.blockPath;
        widget.updateRate = client.updateRate;
        widget.decimation = client.decimation;
        widget.maxPoints = client.maxPoints;
        widget.minimum = numberParameter(client, "Minimum");
        widget.maximum = numberParameter(client, "Maximum");
        const Channel* channel = client.channel ? m_hub.find(*client.channel) : nullptr;
        if (channel != nullptr && channel->isBound && client.valueIndex) {
            LiveChannel described = describe(*channel);
            described.topic += " (" + signalText(*channel, client) + ')';
            described.isListed = false;
            widget.channel = channelFor({channel->id, *client.valueIndex}, std::move(described), scene);
            widget.signal = signalText(*channel, client);
        }
        scene.widgets.push_back(std::move(widget));
    }
}

void HubFeed::addMarks(Scene& scene, const std::vector<Channel>& channels) const
{
    for (const Channel& channel : channels) {
        const auto live = m_channels.find({channel.id, 0});
        if (live != m_channels.end() && channel.isBound && !channel.chartItem) {
            const std::string node = pictureNode(*m_model, channel.blockPath);
            if (!node.empty()) {
                scene.marks.push_back({live->second.id, node, channel.portName});
            }
        }
    }
}

/// Edits that follow each other quickly are drawn together.
bool HubFeed::mayDraw() const
{
    return m_pictureVersion == 0 || std::chrono::steady_clock::now() - m_pictureTime >= pictureInterval;
}

void HubFeed::drawPicture()
{
    std::string picture = m_sink->needsPicture() ? diagramPicture(*m_model) : std::string();
    m_pictureIsStale = false;
    m_pictureTime = std::chrono::steady_clock::now();
    if (picture != m_picture || m_pictureVersion == 0) {
        m_picture = std::move(picture);
        ++m_pictureVersion;
    }
}

}  // namespace live
