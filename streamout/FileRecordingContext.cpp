#include "streamout/FileRecordingContext.hpp"

#include "host/Text.hpp"

namespace streamout {

FileRecordingContext::FileRecordingContext(const std::u16string& filePath, const std::u16string& modelName,
                                           const std::string& loggingDomain, const std::u16string& blockPath,
                                           const FilePropertiesMap& properties)
    // An empty path names no file and has no native form.
    : m_fullFilePath(filePath.empty() ? filePath : makeNativeForm(filePath, true)),
      m_modelName(modelName),
      m_loggingDomain(loggingDomain),
      m_blockPath(blockPath),
      m_fileProperties(properties)
{
}

FileRecordingContext::~FileRecordingContext() = default;

std::string FileRecordingContext::getLoggingDomain() const
{
    return m_loggingDomain;
}

std::u16string FileRecordingContext::getBlockPath() const
{
    return m_blockPath;
}

std::u16string FileRecordingContext::getModelName() const
{
    return m_modelName;
}

std::u16string FileRecordingContext::getFileName() const
{
    return extractFileName(m_fullFilePath);
}

std::u16string FileRecordingContext::getFullFilePath() const
{
    return m_fullFilePath;
}

FilePropertiesMap FileRecordingContext::getFilePropertiesMap() const
{
    return m_fileProperties;
}

RecordingLimits FileRecordingContext::getRecordingLimits() const
{
    return readRecordingLimits();
}

void FileRecordingContext::setDecimation(const std::string& decimation)
{
    m_decimation = decimation;
}

std::string FileRecordingContext::getDecimation() const
{
    return m_decimation;
}

void FileRecordingContext::setMaxPoints(const std::string& maxPoints)
{
    m_maxPoints = maxPoints;
}

std::string FileRecordingContext::getMaxPoints() const
{
    return m_maxPoints;
}

void FileRecordingContext::getProperties(std::vector<std::string>& doubleNames,
                                         std::vector<double>& doubleValues,
                                         std::vector<std::string>& stringNames,
                                         std::vector<std::u16string>& stringValues) const
{
    const FilePropertiesMap properties = getFilePropertiesMap();
    for (const auto& [name, value] : properties) {
        if (const double* number = boost::get<double>(&value)) {
            doubleNames.push_back(name);
            doubleValues.push_back(*number);
        } else {
            stringNames.push_back(name);
            stringValues.push_back(boost::get<std::u16string>(value));
        }
    }
}

}  // namespace streamout
