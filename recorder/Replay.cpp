#include "recorder/Replay.hpp"

#include "recorder/RecordingErrors.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "simulation/TableSource.hpp"

#include <algorithm>
#include <utility>
#include <vector>

namespace recorder {

using reference_host::Model;

namespace {

/// Every block's port must have a column.
void requireValues(const RecordingBlocks& blocks, const RecordedTable& table,
                   const std::vector<OutputPort>& ports, const Model& model)
{
    for (const auto& block : blocks) {
        requireModel(*block, model);
        const OutputPort& port = block->port();
        if (port.index >= port.block->ports(reference_host::PortKind::Output).size()) {
            throw recordingError("NoOutputPort", {reference_host::utf8FromUtf16(port.block->path()),
                                                  std::uint64_t{port.index + 1}});
        }
        if (std::find(ports.begin(), ports.end(), port) == ports.end()) {
            throw recordingError("NoValues",
                                 {"The recording into " + block->target(), table.source(), portName(port)});
        }
    }
}

/// Not owned: the caller's model outlives the replay.
std::shared_ptr<Model> borrowed(const Model& model)
{
    return {std::shared_ptr<Model>(), &model.root().model()};
}

}  // namespace

std::unique_ptr<simulation::Source> makeSource(const Model& model, const RecordedTable& table, bool isLooped)
{
    const std::vector<OutputPort> ports = table.portsIn(model);
    simulation::Table rows{table.source(), table.times(), {}, {}};
    for (const OutputPort& port : ports) {
        rows.places.push_back({port.block, port.index, {}});
    }
    rows.values.reserve(rows.times.size() * ports.size());
    for (std::size_t row = 0; row < rows.times.size(); ++row) {
        for (const RecordedTable::Column& column : table.columns()) {
            rows.values.push_back(column.values[row]);
        }
    }
    return std::make_unique<simulation::TableSource>(
        std::make_shared<const simulation::Table>(std::move(rows)), isLooped);
}

void replay(const Model& model, const RecordedTable& table, const RecordingBlocks& blocks,
            const StepFunction& step)
{
    requireValues(blocks, table, table.portsIn(model), model);
    simulation::Run::Sources sources;
    sources.push_back(makeSource(model, table, false));
    simulation::RunOptions options;
    options.withSignals = false;
    simulation::Run run(borrowed(model), std::move(sources), std::move(options));
    RecordingRun recordings(blocks);
    recordings.follow(run);
    while (run.next()) {
        if (step) {
            step(run.time()->seconds);
        }
    }
}

}  // namespace recorder
