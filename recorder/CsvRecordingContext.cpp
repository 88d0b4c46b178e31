#include "recorder/CsvRecordingContext.hpp"

#include "host/Text.hpp"
#include "recorder/RecordingErrors.hpp"
#include "recorder/RecordingSettings.hpp"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace recorder {

namespace {

constexpr const char* headerProperty = "header";
constexpr const char* digitsProperty = "digits";

int parseDigits(const std::string& who, double digits)
{
    const bool isPossible = digits >= 1.0 && digits <= std::numeric_limits<double>::max_digits10;
    const int whole = isPossible ? static_cast<int>(digits) : 0;
    if (!isPossible || static_cast<double>(whole) != digits) {
        throw recordingError("InvalidDigits", {who, digits});
    }
    return whole;
}

/// For a property that does not exist, or exists as the other kind of value.
[[noreturn]] void refuseProperty(const std::string& who, const std::string& name)
{
    if (name == headerProperty) {
        throw recordingError("InvalidHeader", {who});
    }
    if (name == digitsProperty) {
        throw recordingError("InvalidDigits", {who, std::string("a text")});
    }
    throw recordingError("UnknownProperty", {who, name});
}

}  // namespace

CsvRecordingContext::CsvRecordingContext(const std::u16string& filePath, const std::u16string& modelName,
                                         const std::string& loggingDomain, const std::u16string& blockPath,
                                         const streamout::FilePropertiesMap& properties, std::string sourceID)
    : FileRecordingContext(filePath, modelName, loggingDomain, blockPath, properties),
      m_sourceID(std::move(sourceID))
{
}

std::string CsvRecordingContext::getSourceID() const
{
    return m_sourceID;
}

streamout::RecordingLimits CsvRecordingContext::readRecordingLimits() const
{
    return parseLimits(who(), getDecimation(), getMaxPoints());
}

CsvColumnSettings CsvRecordingContext::readColumnSettings() const
{
    std::vector<std::string> numberNames;
    std::vector<double> numbers;
    std::vector<std::string> textNames;
    std::vector<std::u16string> texts;
    getProperties(numberNames, numbers, textNames, texts);
    CsvColumnSettings settings;
    for (std::size_t i = 0; i < numberNames.size(); ++i) {
        if (numberNames[i] != digitsProperty) {
            refuseProperty(who(), numberNames[i]);
        }
        settings.digits = parseDigits(who(), numbers[i]);
    }
    for (std::size_t i = 0; i < textNames.size(); ++i) {
        if (textNames[i] != headerProperty) {
            refuseProperty(who(), textNames[i]);
        }
        settings.header = toUtf8(texts[i]);
    }
    return settings;
}

std::string CsvRecordingContext::who() const
{
    return "The recording into \"" + toUtf8(getFileName()) + "\"";
}

}  // namespace recorder
