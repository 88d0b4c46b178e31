#include "streamout/WksRecordingContext.hpp"

namespace streamout {

WksRecordingContext::WksRecordingContext(const std::u16string& variableName, const std::u16string& modelName,
                                         const std::string& sourceID, const std::string& format,
                                         const std::string& decimation, const std::string& maxPoints,
                                         bool fixedPtAsDouble)
    : m_variableName(variableName),
      m_modelName(modelName),
      m_sourceID(sourceID),
      m_format(format),
      m_decimation(decimation),
      m_maxPoints(maxPoints),
      m_fixedPtAsDouble(fixedPtAsDouble)
{
}

WksRecordingContext::~WksRecordingContext() = default;

std::string WksRecordingContext::getSourceID() const
{
    return m_sourceID;
}

std::u16string WksRecordingContext::getModelName() const
{
    return m_modelName;
}

std::u16string WksRecordingContext::getVariableName() const
{
    return m_variableName;
}

std::string WksRecordingContext::getFormat() const
{
    return m_format;
}

std::string WksRecordingContext::getDecimation() const
{
    return m_decimation;
}

std::string WksRecordingContext::getMaxPoints() const
{
    return m_maxPoints;
}

bool WksRecordingContext::getFixedPtAsDoubleFlag() const
{
    return m_fixedPtAsDouble;
}

bool WksRecordingContext::usingStructFormat() const
{
    return m_format == "struct" || m_format == "structwithtime" || m_format == "struct2D";
}

}  // namespace streamout
