#ifndef ZM_LIVE_SCENE_HPP
#define ZM_LIVE_SCENE_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What viewers see besides values: plain data in UTF-8. A scene is made on the simulation's thread and never
// changed afterwards, so that the network thread reads it without a lock.

namespace live {

/// Names a channel of one server; never given twice, also not after a rename.
using ChannelId = std::uint32_t;

/// A stream of values that viewers can subscribe to.
struct LiveChannel {
    ChannelId id = 0;
    std::string topic;  ///< model, block path and port name; unique in the scene
    std::string uuid;   ///< of the signal
    std::string model;
    std::string blockPath;  ///< with the model name
    std::string portName;
    std::string signalName;   ///< the user's name for the signal; may be empty
    unsigned portNumber = 0;  ///< from 1; 0 for a chart item
    int decimation = 1;
    bool isListed = true;  ///< false: only widgets show it, and other viewers are not told of it

    bool operator==(const LiveChannel&) const = default;
};

/// A streaming client as the page shows it.
struct Widget {
    std::string uuid;
    std::string type;  ///< observer type: "gauge", "lamp", "display", "trend"; others are shown as displays
    std::string title;
    std::string path;                  ///< of the observer's block, with the model name
    std::string signal;                ///< what it shows, in words; empty when it is bound to no signal
    std::optional<ChannelId> channel;  ///< no value: unbound
    std::uint64_t updateRate = 1;      ///< a second; 0: every frame
    int decimation = 1;
    int maxPoints = 0;              ///< 0: as the page likes
    std::optional<double> minimum;  ///< of the scale
    std::optional<double> maximum;

    bool operator==(const Widget&) const = default;
};

/// An output port in the diagram's picture at which a channel's value is shown.
struct PortMark {
    ChannelId channel = 0;
    std::string node;      ///< title of the block's group in the picture
    std::string portName;  ///< as the picture shows it, before the mark of an observed port

    bool operator==(const PortMark&) const = default;
};

struct Scene {
    std::uint64_t version = 0;
    std::string model;
    std::string state;  ///< "ready", "running", "paused", "ended", or the error that ended the run
    std::vector<LiveChannel> channels;
    std::vector<Widget> widgets;
    std::vector<PortMark> marks;
    std::string picture;  ///< the diagram as SVG; empty when it could not be drawn
    std::uint64_t pictureVersion = 0;
};

/// A value on its way to a viewer: the latest one of a channel, and what was merged into it.
struct LiveValue {
    ChannelId channel = 0;
    std::int64_t time = 0;  ///< of the latest value, in nanoseconds
    double latest = 0.0;
    double minimum = 0.0;  ///< since the value before; NaN only when all merged values were
    double maximum = 0.0;
    std::uint64_t count = 0;  ///< values that this one is made of; 0: repeats one that was sent before

    static LiveValue of(ChannelId channel, std::int64_t time, double value) noexcept
    {
        return {channel, time, value, value, value, 1};
    }
    void merge(const LiveValue& later) noexcept;
};

}  // namespace live

#endif
