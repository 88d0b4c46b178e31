#ifndef ZM_RECORDER_FILE_RECORDING_BLOCK_HPP
#define ZM_RECORDER_FILE_RECORDING_BLOCK_HPP

#include "recorder/CsvRecordingContext.hpp"
#include "recorder/RecordingBlock.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace recorder {

/// Records a port's signal into a column of a CSV file as the simulation runs. Blocks of one run that
/// name the same file share it. Because the file is written as it goes, the maximum points are the first
/// so many; the cells after them stay empty.
class FileRecordingBlock : public RecordingBlock {
public:
    /// The file is taken relative to the folder that is current now; an empty path is a host error
    /// ("NoTarget").
    FileRecordingBlock(const OutputPort& port, const std::u16string& filePath,
                       const std::string& loggingDomain, const streamout::FilePropertiesMap& properties);

    /// Its settings; decimation and maximum points may be changed before a run.
    CsvRecordingContext& context() noexcept { return m_context; }

    bool sharesTarget() const noexcept override { return true; }
    void finish() override { m_file = nullptr; }

private:
    FileRecordingBlock(const OutputPort& port, CsvRecordingContext context);
    streamout::RecordingLimits begin(CsvFiles& files) override;
    void record(double time, double value) override;

    CsvRecordingContext m_context;
    CsvFile* m_file = nullptr;
    std::size_t m_column = 0;
    std::uint64_t m_pointsLeft = 0;
};

}  // namespace recorder

#endif
