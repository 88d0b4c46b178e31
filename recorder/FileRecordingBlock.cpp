#include "recorder/FileRecordingBlock.hpp"

#include "host/Text.hpp"
#include "recorder/RecordingErrors.hpp"

#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

namespace recorder {

namespace {

std::filesystem::path pathFrom(const std::u16string& text)
{
    return {toUtf8(text)};  // this platform's paths are bytes, and ours UTF-8
}

/// Links are followed, so that two names of one file are one target.
std::u16string absolutePath(const OutputPort& port, const std::u16string& filePath)
{
    if (filePath.empty()) {
        throw recordingError("NoTarget", {portName(port), std::string("file")});
    }
    const std::filesystem::path absolute = std::filesystem::absolute(pathFrom(filePath));
    std::error_code unresolved;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(absolute, unresolved);
    return toUtf16((unresolved ? absolute : resolved).c_str());
}

}  // namespace

FileRecordingBlock::FileRecordingBlock(const OutputPort& port, const std::u16string& filePath,
                                       const std::string& loggingDomain,
                                       const streamout::FilePropertiesMap& properties)
    : FileRecordingBlock(
          port, CsvRecordingContext(absolutePath(port, filePath), port.block->model().name(), loggingDomain,
                                    port.block->path(), properties, sourceIdOf(port)))
{
}

FileRecordingBlock::FileRecordingBlock(const OutputPort& port, CsvRecordingContext context)
    : RecordingBlock(port, "file \"" + toUtf8(context.getFullFilePath()) + '"'), m_context(std::move(context))
{
}

streamout::RecordingLimits FileRecordingBlock::begin(CsvFiles& files)
{
    const streamout::RecordingLimits limits = m_context.getRecordingLimits();
    const CsvColumnSettings settings = m_context.readColumnSettings();
    m_pointsLeft = limits.maxPoints.value_or(std::numeric_limits<std::uint64_t>::max());
    m_file = &files.file(pathFrom(m_context.getFullFilePath()));
    m_column = m_file->addColumn(settings.header.value_or(portName(port())), settings.digits);
    return limits;
}

void FileRecordingBlock::record(double /*time*/, double value)
{
    if (m_pointsLeft > 0) {
        --m_pointsLeft;
        m_file->put(m_column, value);
    }
}

}  // namespace recorder
