#ifndef ZM_RECORDER_RECORDING_RUN_HPP
#define ZM_RECORDER_RECORDING_RUN_HPP

#include "recorder/RecordingBlock.hpp"
#include "simulation/Run.hpp"
#include "streamout/StreamOutBlockRegistry.hpp"

#include <chrono>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace recorder {

using RecordingBlocks = std::vector<std::shared_ptr<RecordingBlock>>;

/// The host's registry of the recording blocks that are active now.
streamout::StreamOutBlockRegistry& activeBlocks();

/// Refuses a block of another model ("OtherModel").
void requireModel(const RecordingBlock& block, const reference_host::Model& model);

/// Recording blocks at work: they are in `activeBlocks` from the end of the constructor until `stop`. They
/// get the values of a simulation (`follow`), or those that the caller gives (`sample`, `endOfTime`). Files
/// are flushed at least once a second.
class RecordingRun : public simulation::HubConsumer {
public:
    /// Starts the blocks. A setting that cannot be read, a place that another block records into, a block
    /// given twice and a file that cannot be made are host errors; no block is active then, no file has
    /// been touched but for the last reason, and no variable set.
    explicit RecordingRun(RecordingBlocks blocks);

    /// Stops what `stop` has not, when something else has failed; that is the error to report then.
    ~RecordingRun() override;

    /// Records the values of the blocks' ports, instrumented or not, until the run ends; its end is `stop`. A
    /// block of another model than the run's is a host error ("OtherModel"). REQUIRES: the run outlives this.
    void follow(simulation::Run& run);

    /// The value of block i's port, in the order in which the blocks were given.
    void sample(std::size_t block, double time, double value) { m_blocks[block]->sample(time, value); }
    void endOfTime(double time);

    /// Unregisters the blocks, closes files and sets variables. When one of them fails the others are
    /// stopped all the same; then the first failure is thrown.
    void stop();

    void step(const simulation::StepTime& time, std::span<const simulation::ChannelSamples> samples) override;
    void waiting() override { flushWhenDue(); }
    void runStateChanged(simulation::RunState state, const std::string& error) override;

private:
    void flushWhenDue();
    void registerAll();
    void unregisterAll() noexcept;

    RecordingBlocks m_blocks;
    std::size_t m_registered = 0;  // so many of them, from the first
    CsvFiles m_files;
    bool m_isRunning = false;
    std::unordered_map<simulation::ChannelId, std::vector<std::size_t>> m_blocksOf;
    simulation::Subscription m_subscription;
    std::chrono::steady_clock::time_point m_flushed = std::chrono::steady_clock::now();
};

}  // namespace recorder

#endif
