#ifndef ZM_RECORDER_RECORDING_BLOCK_HPP
#define ZM_RECORDER_RECORDING_BLOCK_HPP

#include "recorder/CsvFile.hpp"
#include "simulation/PortNames.hpp"
#include "streamout/FileRecordingContext.hpp"
#include "streamout/StreamOutBlockContext.hpp"

#include <cstdint>
#include <string>

namespace recorder {

using simulation::findPort;
using simulation::OutputPort;
using simulation::portName;
using simulation::PortSearch;

/// A block that records the signal of one output port while a simulation runs. `RecordingRun` calls
/// `prepare`, then `sample` for each point in time, then `finish`; after that it may be used for another
/// run. Of the points in time the first, and from there every n-th as the decimation says, is recorded.
///
/// REQUIRES: the port's model outlives the block. Main thread only, but for the identifier.
class RecordingBlock : public streamout::StreamOutBlockContext {
public:
    /// The target and the source: no two recordings of one port into one place run at a time.
    std::string getBlockId() const override { return m_target + " <- " + m_sourceID; }

    /// Where it records to, in words that are different for different places: file "…", variable "…".
    const std::string& target() const noexcept { return m_target; }

    /// Whether blocks may record into the same place, one run at a time.
    virtual bool sharesTarget() const noexcept = 0;

    const OutputPort& port() const noexcept { return m_port; }

    /// Reads the settings, which are host errors when they cannot be read, and takes its place in the
    /// files of the run.
    void prepare(CsvFiles& files);

    void sample(double time, double value);

    /// The run is over, or has failed; what was recorded until then counts. Files are closed by the run.
    virtual void finish() = 0;

protected:
    /// A number that is no output port of the block is a host error ("NoOutputPort").
    RecordingBlock(const OutputPort& port, std::string target);

    /// The ZID of the block whose port is recorded, ":" and the port's number from 1; UTF-8.
    static std::string sourceIdOf(const OutputPort& port);

    /// Begins anew. Returns the decimation and the maximum points.
    virtual streamout::RecordingLimits begin(CsvFiles& files) = 0;

    /// A point in time that the decimation has left; maximum points are the derived class's matter.
    virtual void record(double time, double value) = 0;

private:
    OutputPort m_port;
    std::string m_target;
    std::string m_sourceID;
    std::uint64_t m_decimation = 1;
    std::uint64_t m_seen = 0;
};

}  // namespace recorder

#endif
