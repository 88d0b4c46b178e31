#ifndef ZM_HMI_FOUNDATION_BINDINGS_HMIBASE_PI_HPP
#define ZM_HMI_FOUNDATION_BINDINGS_HMIBASE_PI_HPP

#include "host/ClassDescriptors.hpp"
#include "host/Memory.hpp"

#include <cstdint>

namespace zm_hmi_foundation {

/// The kind of value that `getValue` returns. Only a `NewArray` is destroyed by `releaseValue`.
enum class ValueKind : std::int32_t {
    Count = 0,
    NewArray = 1,  ///< a host value made by `getValue`, freed by `releaseValue`
    Text = 2
};

/// Base of the property descriptors. A descriptor describes one property of one class; the host owns it once
/// it is added to that class.
class HMIBasePI : public nvcos::COSPropInfo, public HostAllocated {
public:
    const char* getName() const noexcept override { return m_name; }
    const nvcos::COSType* getType() const override;
    int getAccess() const noexcept override { return static_cast<int>(m_access); }
    double getVersion() const noexcept override { return 1.0; }
    void releaseValue(nvcos::COSInterface* instance, nvcos::COSValue value) override;

protected:
    HMIBasePI(const nvcos::COSClass* owner, const char* name, const char* typeName,
              nvcos::COSPropAccess access, ValueKind kind);

    /// The native object behind an instance of the owning class.
    void* getInstanceData(const nvcos::COSInterface* instance) const;

private:
    const nvcos::COSClass* m_owner;
    const char* m_name;
    const char* m_typeName;
    nvcos::COSPropAccess m_access;
    ValueKind m_kind;
};

/// Base of the properties that scripts only read. Host code may assign them; that changes nothing.
class ReadOnlyPI : public HMIBasePI {
public:
    void setValue(nvcos::COSInterface* /*instance*/, nvcos::COSValue /*value*/) override {}

protected:
    ReadOnlyPI(const nvcos::COSClass* owner, const char* name, const char* typeName, ValueKind kind)
        : HMIBasePI(owner, name, typeName, nvcos::COSPropAccess::ScriptReadOnly, kind)
    {
    }
};

}  // namespace zm_hmi_foundation

#endif
