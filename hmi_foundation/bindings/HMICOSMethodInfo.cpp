#include "hmi_foundation/bindings/HMICOSMethodInfo.hpp"

namespace zm_hmi_foundation {

const nvcos::COSType* getType(const char* name)
{
    return nvcos::COSTypeRepository::getType(nvcos::internal::makeInterned(name));
}

HMICOSMethodInfo::HMICOSMethodInfo(const Description& row) : COSMethodInfo(row.name)
{
    setInputOutput(row.inputTypes.data(), row.inputTypes.size(), row.outputTypes.data(),
                   row.outputTypes.size());
    if (row.optionalInputs > 0) {
        setNumberOfOptionalInputs(row.optionalInputs);
    }
}

void HMICOSMethodInfo::setInputOutput(const std::string* inputTypes, std::size_t inputCount,
                                      const std::string* outputTypes, std::size_t outputCount)
{
    m_signature.reset(nvcos::COSMethodSignature::createMethodSignature());
    for (std::size_t i = 0; i < inputCount; ++i) {
        m_signature->addInput(getType(inputTypes[i].c_str()));
    }
    for (std::size_t i = 0; i < outputCount; ++i) {
        m_signature->addOutput(getType(outputTypes[i].c_str()));
    }
}

void HMICOSMethodInfo::setNumberOfOptionalInputs(int count) const
{
    m_signature->setNumberOfOptionalInputs(count);
}

}  // namespace zm_hmi_foundation
