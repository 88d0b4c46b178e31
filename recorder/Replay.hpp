#ifndef ZM_RECORDER_REPLAY_HPP
#define ZM_RECORDER_REPLAY_HPP

#include "recorder/RecordedTable.hpp"
#include "recorder/RecordingRun.hpp"

#include <functional>
#include <memory>

namespace recorder {

/// Is called when all blocks have recorded a point in time. What it throws ends the replay and reaches
/// its caller.
using StepFunction = std::function<void(double time)>;

/// The table as a source of a simulation. Every column must name an output port of the model; see `portsIn`.
std::unique_ptr<simulation::Source> makeSource(const reference_host::Model& model, const RecordedTable& table,
                                               bool isLooped);

/// Replays a table over a diagram as its running simulation: for each row in turn the ports that columns
/// name have the row's values, and the blocks record theirs. Every column must name an output port of
/// the model, and every block's port must have a column; otherwise that is a host error and nothing has
/// begun. When the replay ends early, through an error or what `step` throws, the blocks are stopped
/// first and files and variables hold what was recorded until then.
void replay(const reference_host::Model& model, const RecordedTable& table, const RecordingBlocks& blocks,
            const StepFunction& step = {});

}  // namespace recorder

#endif
