#ifndef ZM_RECORDER_VARIABLE_RECORDING_BLOCK_HPP
#define ZM_RECORDER_VARIABLE_RECORDING_BLOCK_HPP

#include "recorder/RecordedVariable.hpp"
#include "recorder/RecordingBlock.hpp"

#include <cstdint>
#include <functional>
#include <limits>
#include <string>

namespace recorder {

/// Where variables go: the host's workspace takes a value under a name, in place of what it had there.
using Workspace = std::function<void(const std::u16string& name, reference_host::OwnedValue value)>;

/// Records a port's signal into a variable of the host's workspace, which is set when the run is over. The
/// maximum points are the last so many. See `makeVariable` for its shapes.
class VariableRecordingBlock : public RecordingBlock {
public:
    /// The context's texts are read as `parseLimits` says, when a run begins. A context without a variable
    /// name is a host error ("NoTarget").
    VariableRecordingBlock(const OutputPort& port, const streamout::WksRecordingContext& context,
                           Workspace workspace);

    /// The context for a port's recording.
    static streamout::WksRecordingContext makeContext(const OutputPort& port,
                                                      const std::u16string& variableName,
                                                      const std::string& format,
                                                      const std::string& decimation,
                                                      const std::string& maxPoints);

    const streamout::WksRecordingContext& context() const noexcept { return m_context; }

    /// What was recorded in the run that is under way, in the shape of the variable; none recorded, no rows.
    reference_host::OwnedValue value() const { return makeVariable(m_signal, m_context); }

    bool sharesTarget() const noexcept override { return false; }
    void finish() override;

private:
    streamout::RecordingLimits begin(CsvFiles& files) override;
    void record(double time, double value) override;

    streamout::WksRecordingContext m_context;
    Workspace m_workspace;
    RecordedSignal m_signal;
    std::uint64_t m_maxPoints = std::numeric_limits<std::uint64_t>::max();
};

}  // namespace recorder

#endif
