#ifndef ZM_HMI_FOUNDATION_BINDINGS_HMICOSMETHOD_INFO_HPP
#define ZM_HMI_FOUNDATION_BINDINGS_HMICOSMETHOD_INFO_HPP

#include "host/ClassDescriptors.hpp"
#include "host/Memory.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace zm_hmi_foundation {

/// The names by which signatures and properties refer to the host's types.
namespace type_name {
inline constexpr const char* unicodeString = "unicodeString";
inline constexpr const char* asciiString = "asciiString";
inline constexpr const char* uint32Scalar = "uint32 scalar";
inline constexpr const char* int32Scalar = "int32 scalar";
inline constexpr const char* doubleScalar = "double scalar";
inline constexpr const char* logicalScalar = "logical scalar";
inline constexpr const char* any = "any";
}  // namespace type_name

/// The host's type of that name. The host answers for a name that it does not know.
const nvcos::COSType* getType(const char* name);

/// Base of the method descriptors: a name and a signature. A descriptor is made with its row of the
/// method table, handed to the host's class object, and the host's from then on; what remains for the
/// subclass is `invoke`. Input 0 of an instance method is the object.
class HMICOSMethodInfo : public nvcos::COSMethodInfo, public HostAllocated {
public:
    /// One row of a class's method table.
    struct Description {
        const char* name;
        std::vector<std::string> inputTypes;
        std::vector<std::string> outputTypes;
        int optionalInputs = 0;  ///< how many of the last inputs may be left out
    };

    const nvcos::COSMethodSignature* getSignature() const noexcept override { return m_signature.get(); }

    /// Makes a new signature in place of the one there was. A list may be null when its count is 0.
    void setInputOutput(const std::string* inputTypes, std::size_t inputCount, const std::string* outputTypes,
                        std::size_t outputCount);

    /// The last `count` inputs may be left out. REQUIRES: `setInputOutput` was called; this acts on the
    /// signature of that moment.
    void setNumberOfOptionalInputs(int count) const;

protected:
    /// A descriptor without a signature. The name may be null.
    explicit HMICOSMethodInfo(const char* name) : COSMethodInfo(name) {}
    explicit HMICOSMethodInfo(const Description& row);

private:
    std::unique_ptr<nvcos::COSMethodSignature> m_signature;
};

}  // namespace zm_hmi_foundation

#endif
