#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace reference_host {

/// The host's signature: the types of a method's inputs and outputs, in order.
class ZM_REFHOST_API MethodSignature final : public nvcos::COSMethodSignature {
public:
    MethodSignature();
    ~MethodSignature() override;

    void addInput(const nvcos::COSType* type) override;
    void addOutput(const nvcos::COSType* type) override;
    void setNumberOfOptionalInputs(int count) override;

    // The same for host code.
    void appendInput(const nvcos::COSType* type);
    void appendOutput(const nvcos::COSType* type);
    void makeInputsOptional(int count);

    /// Declares to the ledger whether the signature stays open, as those of registered methods do.
    void setMeantToLive(bool isMeant) const noexcept;

    const std::vector<const nvcos::COSType*>& inputs() const noexcept { return m_inputs; }
    const std::vector<const nvcos::COSType*>& outputs() const noexcept { return m_outputs; }
    std::size_t optionalInputs() const noexcept { return m_optionalInputs; }
    std::size_t requiredInputs() const noexcept { return m_inputs.size() - m_optionalInputs; }

private:
    std::vector<const nvcos::COSType*> m_inputs;
    std::vector<const nvcos::COSType*> m_outputs;
    std::size_t m_optionalInputs = 0;
    mutable bool m_isMeantToLive = false;
};

}  // namespace reference_host

namespace nvcos {
std::string describeArgument(const COSMethodSignature* signature);
}
