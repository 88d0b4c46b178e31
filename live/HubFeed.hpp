#ifndef ZM_LIVE_HUB_FEED_HPP
#define ZM_LIVE_HUB_FEED_HPP

#include "live/ValueSink.hpp"
#include "reference_host/model/Model.hpp"
#include "simulation/ValueHub.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace live {

/// Feeds the values of a run's hub into a sink: the scene when signals, clients or the diagram have
/// changed, and after each step the values that are wanted. Main thread only, as the hub.
class HubFeed final : public simulation::HubConsumer {
public:
    /// REQUIRES: the hub outlives the feed, or ends the subscription by being destroyed.
    HubFeed(std::shared_ptr<reference_host::Model> model, simulation::ValueHub& hub,
            std::shared_ptr<ValueSink> sink);

    void channelAdded(const simulation::Channel&) override { m_isStale = true; }
    void channelChanged(const simulation::Channel&) override { m_isStale = true; }
    void channelRemoved(simulation::ChannelId) override { m_isStale = true; }
    void clientsChanged(const std::vector<simulation::ResolvedClient>&) override { m_isStale = true; }
    void step(const simulation::StepTime& time, std::span<const simulation::ChannelSamples> samples) override;
    void runStateChanged(simulation::RunState state, const std::string& error) override;

private:
    /// A value of a hub's channel that is a channel for viewers.
    using Source = std::pair<simulation::ChannelId, std::size_t>;  // and which double of its samples
    struct Output {
        ChannelId channel = 0;
        std::size_t valueIndex = 0;
        std::size_t frameStride = 0;  ///< of a frame's elements; 0: the sample is no frame
    };

    void makeScene();
    bool mayDraw() const;
    void drawPicture();
    ChannelId channelFor(const Source& source, LiveChannel channel, Scene& scene);
    void addListedChannels(Scene& scene, const std::vector<simulation::Channel>& channels);
    void addWidgets(Scene& scene);
    void addMarks(Scene& scene, const std::vector<simulation::Channel>& channels) const;
    void select(const std::vector<ChannelId>& wanted);
    void putLatest(simulation::ChannelId channel, const Output& output);
    void put(const Output& output, double time, const double* sample, std::size_t width);

    std::shared_ptr<reference_host::Model> m_model;
    simulation::ValueHub& m_hub;
    std::shared_ptr<ValueSink> m_sink;
    bool m_isStale = true;
    bool m_pictureIsStale = true;
    std::uint64_t m_version = 0;
    std::string m_state = "ready";
    std::string m_picture;
    std::uint64_t m_pictureVersion = 0;
    std::chrono::steady_clock::time_point m_pictureTime{};

    ChannelId m_lastId = 0;
    std::map<Source, LiveChannel> m_channels;  // of the present scene
    std::map<Source, LiveChannel> m_former;    // of the one before, while a scene is made
    std::vector<ChannelId> m_wanted;
    std::unordered_map<simulation::ChannelId, std::vector<Output>> m_outputs;  // of wanted channels
    simulation::Subscription m_subscription;                                   // last: it calls this object
};

}  // namespace live

#endif
