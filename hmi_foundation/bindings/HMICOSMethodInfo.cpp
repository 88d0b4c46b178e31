#include "hmi_foundation/bindings/HMICOSMethodInfo.hpp"

#include <utility>

namespace zm_hmi_foundation {

const nvcos::COSType* getType(const char* name)
{
    return nvcos::COSTypeRepository::getType(nvcos::internal::makeInterned(name));
}

HMICOSMethodInfo::Description HMICOSMethodInfo::describe(const MethodRow& row)
{
    Description description{row.name, {}, {}, row.optionalInputs};
    for (std::size_t i = 0; i < row.inputCount(); ++i) {
        description.inputTypes.emplace_back(row.inputs[i].type);
    }
    if (row.outputType != nullptr) {
        description.outputTypes.emplace_back(row.outputType);
    }
    return description;
}

HMICOSMethodInfo::HMICOSMethodInfo(const Description& description) : COSMethodInfo(description.name)
{
    setInputOutput(description.inputTypes.data(), description.inputTypes.size(),
                   description.outputTypes.data(), description.outputTypes.size());
    if (description.optionalInputs > 0) {
        setNumberOfOptionalInputs(description.optionalInputs);
    }
}

// The new signature replaces the old one when it is complete.
void HMICOSMethodInfo::setInputOutput(const std::string* inputTypes, std::size_t inputCount,
                                      const std::string* outputTypes, std::size_t outputCount)
{
    std::unique_ptr<nvcos::COSMethodSignature> signature(nvcos::COSMethodSignature::createMethodSignature());
    for (std::size_t i = 0; i < inputCount; ++i) {
        signature->addInput(getType(inputTypes[i].c_str()));
    }
    for (std::size_t i = 0; i < outputCount; ++i) {
        signature->addOutput(getType(outputTypes[i].c_str()));
    }
    m_signature = std::move(signature);
}

void HMICOSMethodInfo::setNumberOfOptionalInputs(int count) const
{
    m_signature->setNumberOfOptionalInputs(count);
}

}  // namespace zm_hmi_foundation
