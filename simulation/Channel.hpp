#ifndef ZM_SIMULATION_CHANNEL_HPP
#define ZM_SIMULATION_CHANNEL_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What the value hub tells about signals and clients: plain data, UTF-8, free of host values. A copy may be
// handed to another thread.

namespace simulation {

/// Names a channel of one hub; never given twice.
using ChannelId = std::uint32_t;

/// One leaf of a value: a number, or an array of numbers in column-major order. A complex number takes two
/// doubles, first the real part.
struct ValueLeaf {
    std::string path;              ///< inside the bus, parts joined by "."; empty for a value that is no bus
    std::size_t offset = 0;        ///< of the leaf's first double in the sample
    std::size_t elementCount = 1;  ///< numbers, not doubles
    bool isComplex = false;

    bool operator==(const ValueLeaf&) const = default;
};

/// How a sample of a channel is laid out: `width` doubles, leaf after leaf. The default is one real number.
struct ValueLayout {
    std::vector<ValueLeaf> leaves = {ValueLeaf{}};
    std::size_t width = 1;

    static ValueLayout numbers(std::size_t elementCount, bool isComplex = false);
    void addLeaf(std::string path, std::size_t elementCount, bool isComplex);

    /// Which double of a sample a client shows: the element `dimensionChannel` (from 1; 0 counts as 1) of the
    /// leaf at `leafPath`, real or imaginary part. An empty path is the first leaf. No value where there is
    /// no such leaf or element, or no imaginary part.
    std::optional<std::size_t> find(std::string_view leafPath, std::uint64_t dimensionChannel,
                                    bool imaginaryPart) const;

    bool operator==(const ValueLayout&) const = default;
};

/// An item of a state chart whose activity or data a signal observes.
struct ChartItem {
    std::uint32_t object = 0;  ///< KZID: the number inside the chart; 0 is the chart
    std::string activity;

    bool operator==(const ChartItem&) const = default;
};

/// An instrumented signal as the hub knows it.
struct Channel {
    ChannelId id = 0;
    std::string uuid;       ///< of the signal; two signals may have the same one
    std::string modelName;  ///< as it is now
    std::string blockPath;  ///< with the model name, as it is now
    std::string subPath;
    std::string portName;    ///< of the port, or of the chart object; empty when it is gone
    std::string signalName;  ///< the user's name for the signal; may be empty
    std::string domainType;
    unsigned portNumber = 0;             ///< from 1; 0 for a chart item
    std::optional<ChartItem> chartItem;  ///< for a signal on a chart
    std::uint32_t decimation = 1;        ///< every n-th sample of the port is one of the channel
    std::size_t maxPoints = 0;           ///< samples that the history keeps, before the memory limit
    bool isBuffered = false;             ///< samples are delivered in blocks
    bool isFrameBased = false;           ///< a sample is a frame: its elements follow each other in time
    bool isHidden = false;               ///< not to be shown in signal viewers
    bool isBound = false;                ///< the diagram has the port or chart object
    bool hasSource = false;              ///< a source of the run gives its values
    bool isProbe = false;                ///< not of a signal: see `Run::probe`
    ValueLayout layout;

    /// The signal's name, else the port's.
    const std::string& label() const noexcept { return signalName.empty() ? portName : signalName; }

    bool operator==(const Channel&) const = default;
};

/// A streaming client of the model, resolved through its own methods when it or the diagram last changed.
struct ResolvedClient {
    std::string uuid;
    std::string observerType;
    std::string title;      ///< the text parameter "Title", else the name of the observer's block
    std::string blockPath;  ///< of the observer, with the model name; empty when it has none
    std::string signalUuid;
    std::optional<ChannelId> channel;       ///< no value: the client is bound to no signal of the run
    std::optional<std::size_t> valueIndex;  ///< which double of the channel's samples it shows
    std::vector<std::string> alignedPath;   ///< the observer's path, then that of the observed block
    std::string subPath;
    int portNumber = 0;  ///< the aligned port, from 1
    int decimation = 1;
    int maxPoints = 0;
    std::uint64_t updateRate = 1;  ///< updates a second; 0: as often as possible
    std::uint64_t dimensionChannel = 1;
    bool observesImaginaryPart = false;
    std::string busLeafPath;
    std::map<std::string, std::variant<double, std::string>> parameters;  ///< numbers and texts of its own

    bool operator==(const ResolvedClient&) const = default;
};

}  // namespace simulation

#endif
