#include "recorder/RecordingBlock.hpp"

#include "recorder/RecordingErrors.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <utility>

namespace recorder {

using reference_host::PortKind;

RecordingBlock::RecordingBlock(const OutputPort& port, std::string target)
    : m_port(port), m_target(std::move(target)), m_sourceID(sourceIdOf(port))
{
}

std::string RecordingBlock::sourceIdOf(const OutputPort& port)
{
    const std::uint64_t number = std::uint64_t{port.index} + 1;
    if (port.index >= port.block->ports(PortKind::Output).size()) {
        throw recordingError("NoOutputPort", {reference_host::utf8FromUtf16(port.block->path()), number});
    }
    return port.block->zid() + ':' + std::to_string(number);
}

void RecordingBlock::prepare(CsvFiles& files)
{
    m_decimation = begin(files).decimation;
    m_seen = 0;
}

void RecordingBlock::sample(double time, double value)
{
    if (m_seen++ % m_decimation == 0) {
        record(time, value);
    }
}

}  // namespace recorder
