#ifndef ZM_STREAMOUT_WKS_RECORDING_CONTEXT_HPP
#define ZM_STREAMOUT_WKS_RECORDING_CONTEXT_HPP

#include "hmi_foundation/Export.hpp"

#include <string>

namespace streamout {

/// The settings under which one stream-out block records its signal into a variable of the host's
/// workspace. Made by the host when the recording block is set up and never changed. All text is kept
/// exactly as given; decimation and maximum points are not parsed here.
///
/// The order of the virtual operations is part of the interface. May be shared between threads.
class ZM_HMI_API WksRecordingContext {
public:
    WksRecordingContext(const std::u16string& variableName, const std::u16string& modelName,
                        const std::string& sourceID, const std::string& format, const std::string& decimation,
                        const std::string& maxPoints, bool fixedPtAsDouble);
    virtual ~WksRecordingContext();

    /// The identifier of the recorded source, UTF-8.
    virtual std::string getSourceID() const;

    /// The model that owns the recording block.
    virtual std::u16string getModelName() const;

    /// The workspace variable to record into.
    virtual std::u16string getVariableName() const;

    /// The storage format of the variable, such as "struct".
    virtual std::string getFormat() const;

    virtual std::string getDecimation() const;
    virtual std::string getMaxPoints() const;

    /// Whether fixed-point values are recorded as double.
    virtual bool getFixedPtAsDoubleFlag() const;

    /// True exactly for the formats "struct", "structwithtime" and "struct2D", letter for letter.
    virtual bool usingStructFormat() const;

private:
    std::u16string m_variableName;
    std::u16string m_modelName;
    std::string m_sourceID;
    std::string m_format;
    std::string m_decimation;
    std::string m_maxPoints;
    bool m_fixedPtAsDouble;
};

}  // namespace streamout

#endif
