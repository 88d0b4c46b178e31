#ifndef ZM_STREAMOUT_FILE_RECORDING_CONTEXT_HPP
#define ZM_STREAMOUT_FILE_RECORDING_CONTEXT_HPP

#include "hmi_foundation/Export.hpp"

#include <boost/variant.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace streamout {

/// A further setting of the file that is recorded into: a number or a text.
using FileProperty = boost::variant<double, std::u16string>;
using FilePropertiesMap = std::unordered_map<std::string, FileProperty>;

/// How much of a signal is recorded: the numbers that the decimation and maximum-points texts express.
struct RecordingLimits {
    /// Every n-th sample is recorded, from the first; 1 records all.
    std::uint64_t decimation = 1;
    /// At most so many samples are recorded; no value: as many as come.
    std::optional<std::uint64_t> maxPoints;
};

/// The settings under which one stream-out block records its signal into a file. Made by the host when
/// the recording block is set up; afterwards only the decimation and the maximum points change. All
/// text is kept exactly as given, except that the path takes its native form; nothing is parsed here.
///
/// The recording framework derives from it, one class a file format, and says what is recorded and how
/// the format reads the text settings.
///
/// The order of the virtual operations is part of the interface. Not synchronised: reading from
/// several threads is safe as long as none of them calls `setDecimation` or `setMaxPoints`.
class ZM_HMI_API FileRecordingContext {
public:
    /// `filePath` is kept as `makeNativeForm(filePath, true)` gives it, an empty one stays empty.
    /// Decimation and maximum points start empty. Throws what `makeNativeForm` throws.
    FileRecordingContext(const std::u16string& filePath, const std::u16string& modelName,
                         const std::string& loggingDomain, const std::u16string& blockPath,
                         const FilePropertiesMap& properties);
    virtual ~FileRecordingContext();

    /// The identifier of the recorded source, UTF-8.
    virtual std::string getSourceID() const = 0;

    virtual std::string getLoggingDomain() const;

    /// The path of the recording block.
    virtual std::u16string getBlockPath() const;

    /// The model that owns the recording block.
    virtual std::u16string getModelName() const;

    /// The last component of the full path; empty when the path is. Throws what `extractFileName` throws.
    virtual std::u16string getFileName() const;

    virtual std::u16string getFullFilePath() const;

    /// A copy of the further file properties, by name: hold it while walking it.
    virtual FilePropertiesMap getFilePropertiesMap() const;

    /// Reads the text settings as the derived class's format does, which also decides how a text that
    /// it cannot read is reported.
    virtual RecordingLimits readRecordingLimits() const = 0;

    /// What `readRecordingLimits` gives, for recording code.
    virtual RecordingLimits getRecordingLimits() const;

    virtual void setDecimation(const std::string& decimation);
    virtual std::string getDecimation() const;
    virtual void setMaxPoints(const std::string& maxPoints);
    virtual std::string getMaxPoints() const;

    /// Appends the properties that `getFilePropertiesMap` gives to the lists, numbers and texts apart,
    /// in the map's own order. The i-th appended name belongs to the i-th appended value. After a failure the
    /// lists are as they were.
    void getProperties(std::vector<std::string>& doubleNames, std::vector<double>& doubleValues,
                       std::vector<std::string>& stringNames,
                       std::vector<std::u16string>& stringValues) const;

private:
    std::u16string m_fullFilePath;
    std::u16string m_modelName;
    std::string m_loggingDomain;
    std::u16string m_blockPath;
    FilePropertiesMap m_fileProperties;
    std::string m_decimation;
    std::string m_maxPoints;
};

}  // namespace streamout

#endif
