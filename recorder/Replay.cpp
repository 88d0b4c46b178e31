#include "recorder/Replay.hpp"

#include "recorder/RecordingErrors.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <vector>

namespace recorder {

using reference_host::Model;

namespace {

using Values = std::vector<const std::vector<double>*>;

void requireModel(const RecordingBlock& block, const Model& model)
{
    const Model& blockModel = block.port().block->model();
    if (&blockModel != &model) {
        throw recordingError("OtherModel", {"The recording into " + block.target(),
                                            reference_host::utf8FromUtf16(blockModel.name()),
                                            reference_host::utf8FromUtf16(model.name())});
    }
}

/// For each block the values of its port.
Values valuesFor(const RecordingBlocks& blocks, const RecordedTable& table, const Model& model)
{
    const std::vector<OutputPort> ports = table.portsIn(model);
    Values values;
    for (const auto& block : blocks) {
        requireModel(*block, model);
        const OutputPort& port = block->port();
        if (port.index >= port.block->ports(reference_host::PortKind::Output).size()) {
            throw recordingError("NoOutputPort", {reference_host::utf8FromUtf16(port.block->path()),
                                                  std::uint64_t{port.index + 1}});
        }
        const auto found = std::find(ports.begin(), ports.end(), port);
        if (found == ports.end()) {
            throw recordingError("NoValues",
                                 {"The recording into " + block->target(), table.source(), portName(port)});
        }
        values.push_back(&table.columns()[static_cast<std::size_t>(found - ports.begin())].values);
    }
    return values;
}

}  // namespace

void replay(const Model& model, const RecordedTable& table, const RecordingBlocks& blocks,
            const StepFunction& step)
{
    const Values values = valuesFor(blocks, table, model);
    RecordingRun run(blocks);
    for (std::size_t row = 0; row < table.times().size(); ++row) {
        const double time = table.times()[row];
        for (std::size_t i = 0; i < values.size(); ++i) {
            run.sample(i, time, (*values[i])[row]);
        }
        run.endOfTime(time);
        if (step) {
            step(time);
        }
    }
    run.stop();
}

}  // namespace recorder
