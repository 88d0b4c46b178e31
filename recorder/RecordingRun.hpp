#ifndef ZM_RECORDER_RECORDING_RUN_HPP
#define ZM_RECORDER_RECORDING_RUN_HPP

#include "recorder/RecordingBlock.hpp"
#include "streamout/StreamOutBlockRegistry.hpp"

#include <cstddef>
#include <memory>
#include <vector>

namespace recorder {

using RecordingBlocks = std::vector<std::shared_ptr<RecordingBlock>>;

/// The host's registry of the recording blocks that are active now.
streamout::StreamOutBlockRegistry& activeBlocks();

/// Recording blocks at work: they are in `activeBlocks` from the end of the constructor until `stop`.
class RecordingRun {
public:
    /// Starts the blocks. A setting that cannot be read, a place that another block records into, a block
    /// given twice and a file that cannot be made are host errors; no block is active then, no file has
    /// been touched but for the last reason, and no variable set.
    explicit RecordingRun(RecordingBlocks blocks);
    RecordingRun(const RecordingRun&) = delete;
    RecordingRun& operator=(const RecordingRun&) = delete;

    /// Stops what `stop` has not, when something else has failed; that is the error to report then.
    ~RecordingRun();

    /// The value of block i's port, in the order in which the blocks were given.
    void sample(std::size_t block, double time, double value) { m_blocks[block]->sample(time, value); }
    void endOfTime(double time) { m_files.endRow(time); }

    /// Unregisters the blocks, closes files and sets variables. When one of them fails the others are
    /// stopped all the same; then the first failure is thrown.
    void stop();

private:
    void registerAll();
    void unregisterAll() noexcept;

    RecordingBlocks m_blocks;
    std::size_t m_registered = 0;  // so many of them, from the first
    CsvFiles m_files;
    bool m_isRunning = false;
};

}  // namespace recorder

#endif
