#ifndef ZM_HMI_FOUNDATION_BINDINGS_HMICOSMETHOD_INFO_HPP
#define ZM_HMI_FOUNDATION_BINDINGS_HMICOSMETHOD_INFO_HPP

#include "hmi_foundation/bindings/MethodTable.hpp"
#include "host/ClassDescriptors.hpp"
#include "host/Memory.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace zm_hmi_foundation {

/// [borrowed] The host's type of that name. A name that the host does not know is a host error.
const nvcos::COSType* getType(const char* name);

/// Base of the method descriptors: a name and a signature. A descriptor is made from its row of the method
/// table and handed to the host's class object, which owns it from then on. Subclasses override `invoke`.
/// Input 0 of an instance method is the object.
class HMICOSMethodInfo : public nvcos::COSMethodInfo, public HostAllocated {
public:
    /// What a descriptor is made from.
    struct Description {
        const char* name;
        std::vector<std::string> inputTypes;
        std::vector<std::string> outputTypes;
        int optionalInputs = 0;  ///< how many of the last inputs may be left out
    };

    /// The part of a row that is registered with the host.
    static Description describe(const MethodRow& row);

    const nvcos::COSMethodSignature* getSignature() const noexcept override { return m_signature.get(); }

    /// Replaces the signature by a new one. A list may be null when its count is 0.
    void setInputOutput(const std::string* inputTypes, std::size_t inputCount, const std::string* outputTypes,
                        std::size_t outputCount);

    /// Lets callers leave out the last `count` inputs.
    /// REQUIRES: `setInputOutput` was called; this changes the signature that it made.
    void setNumberOfOptionalInputs(int count) const;

protected:
    /// A descriptor without a signature. The name may be null.
    explicit HMICOSMethodInfo(const char* name) : COSMethodInfo(name) {}
    explicit HMICOSMethodInfo(const Description& description);

private:
    std::unique_ptr<nvcos::COSMethodSignature> m_signature;
};

}  // namespace zm_hmi_foundation

#endif
