#include "hmi_foundation/bindings/HMIBasePI.hpp"

#include "hmi_foundation/bindings/HMICOSMethodInfo.hpp"

namespace zm_hmi_foundation {

HMIBasePI::HMIBasePI(const nvcos::COSClass* owner, const char* name, const char* typeName,
                     nvcos::COSPropAccess access, ValueKind kind)
    : m_owner(owner), m_name(name), m_typeName(typeName), m_access(access), m_kind(kind)
{
}

const nvcos::COSType* HMIBasePI::getType() const
{
    return zm_hmi_foundation::getType(m_typeName);
}

void HMIBasePI::releaseValue(nvcos::COSInterface* /*instance*/, nvcos::COSValue value)
{
    if (m_kind == ValueKind::NewArray) {
        nvDestroyArray(std::get<nvArray*>(value));
    }
}

void* HMIBasePI::getInstanceData(const nvcos::COSInterface* instance) const
{
    return m_owner->getInstanceData(instance);
}

}  // namespace zm_hmi_foundation
