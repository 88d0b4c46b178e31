#ifndef ZM_RECORDER_CSV_RECORDING_CONTEXT_HPP
#define ZM_RECORDER_CSV_RECORDING_CONTEXT_HPP

#include "streamout/FileRecordingContext.hpp"

#include <optional>
#include <string>

namespace recorder {

/// How a signal's column in a CSV file looks.
struct CsvColumnSettings {
    std::optional<std::string> header;  ///< UTF-8; no value: the name of the port
    std::optional<int> digits;          ///< significant ones; no value: as many as the number needs
};

/// The settings under which a block records its signal into a CSV file. Decimation and maximum points
/// are read as `parseLimits` says. Two further file properties exist: the text "header", and the number
/// "digits" (1 to 17). The text settings are read when they are asked for, and errors come then.
class CsvRecordingContext : public streamout::FileRecordingContext {
public:
    CsvRecordingContext(const std::u16string& filePath, const std::u16string& modelName,
                        const std::string& loggingDomain, const std::u16string& blockPath,
                        const streamout::FilePropertiesMap& properties, std::string sourceID);

    /// The ZID of the block whose port is recorded, ":" and the port's number from 1.
    std::string getSourceID() const override;

    streamout::RecordingLimits readRecordingLimits() const override;

    /// The further file properties. One that does not exist, or is not what it should be, is a host error.
    CsvColumnSettings readColumnSettings() const;

private:
    std::string who() const;

    std::string m_sourceID;
};

}  // namespace recorder

#endif
