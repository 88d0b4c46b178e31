#include "streamout/FileRecordingContext.hpp"

#include "host/Memory.hpp"
#include "host/Text.hpp"

#include <utility>

namespace streamout {

namespace {

template <class Element>
void makeRoom(std::vector<Element>& list, std::size_t count)
{
    list.reserve(list.size() + count);
}

}  // namespace

FileRecordingContext::FileRecordingContext(const std::u16string& filePath, const std::u16string& modelName,
                                           const std::string& loggingDomain, const std::u16string& blockPath,
                                           const FilePropertiesMap& properties)
{
    withHostMemoryErrors([&] {
        // An empty path names no file and has no native form.
        m_fullFilePath = filePath.empty() ? filePath : makeNativeForm(filePath, true);
        m_modelName = modelName;
        m_loggingDomain = loggingDomain;
        m_blockPath = blockPath;
        m_fileProperties = properties;
    });
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
    return withHostMemoryErrors([&] { return extractFileName(m_fullFilePath); });
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
    std::vector<std::pair<std::string, double>> numbers;
    std::vector<std::pair<std::string, std::u16string>> texts;
    for (const auto& [name, value] : properties) {
        if (const double* number = boost::get<double>(&value)) {
            numbers.emplace_back(name, *number);
        } else {
            texts.emplace_back(name, boost::get<std::u16string>(value));
        }
    }
    makeRoom(doubleNames, numbers.size());
    makeRoom(doubleValues, numbers.size());
    makeRoom(stringNames, texts.size());
    makeRoom(stringValues, texts.size());
    // Nothing below can fail, so that names and values stay in step.
    for (auto& [name, value] : numbers) {
        doubleNames.push_back(std::move(name));
        doubleValues.push_back(value);
    }
    for (auto& [name, value] : texts) {
        stringNames.push_back(std::move(name));
        stringValues.push_back(std::move(value));
    }
}

}  // namespace streamout
