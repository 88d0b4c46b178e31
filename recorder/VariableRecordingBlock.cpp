#include "recorder/VariableRecordingBlock.hpp"

#include "host/Text.hpp"
#include "recorder/RecordingErrors.hpp"
#include "recorder/RecordingSettings.hpp"

#include <utility>

namespace recorder {

using reference_host::PortKind;

namespace {

std::string targetOf(const OutputPort& port, const streamout::WksRecordingContext& context)
{
    const std::u16string name = context.getVariableName();
    if (name.empty()) {
        throw recordingError("NoTarget", {portName(port), std::string("variable")});
    }
    return "variable \"" + toUtf8(name) + '"';
}

}  // namespace

VariableRecordingBlock::VariableRecordingBlock(const OutputPort& port,
                                               const streamout::WksRecordingContext& context,
                                               Workspace workspace)
    : RecordingBlock(port, targetOf(port, context)), m_context(context), m_workspace(std::move(workspace))
{
}

streamout::WksRecordingContext VariableRecordingBlock::makeContext(const OutputPort& port,
                                                                   const std::u16string& variableName,
                                                                   const std::string& format,
                                                                   const std::string& decimation,
                                                                   const std::string& maxPoints)
{
    return {variableName, port.block->model().name(), sourceIdOf(port), format, decimation, maxPoints, true};
}

streamout::RecordingLimits VariableRecordingBlock::begin(CsvFiles& /*files*/)
{
    const streamout::RecordingLimits limits =
        parseLimits("The recording into " + target(), m_context.getDecimation(), m_context.getMaxPoints());
    m_maxPoints = limits.maxPoints.value_or(std::numeric_limits<std::uint64_t>::max());
    m_signal = {{}, port().block->path(), port().block->ports(PortKind::Output)[port().index].name};
    return limits;
}

void VariableRecordingBlock::record(double time, double value)
{
    if (m_signal.samples.size() == m_maxPoints) {
        m_signal.samples.pop_front();
    }
    m_signal.samples.push_back({time, value});
}

void VariableRecordingBlock::finish()
{
    const RecordedSignal signal = std::exchange(m_signal, {});
    m_workspace(m_context.getVariableName(), makeVariable(signal, m_context));
}

}  // namespace recorder
