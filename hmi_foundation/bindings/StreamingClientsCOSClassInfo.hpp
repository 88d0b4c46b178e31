#ifndef ZM_HMI_FOUNDATION_BINDINGS_STREAMING_CLIENTS_COSCLASS_INFO_HPP
#define ZM_HMI_FOUNDATION_BINDINGS_STREAMING_CLIENTS_COSCLASS_INFO_HPP

#include "host/ClassDescriptors.hpp"
#include "host/Memory.hpp"

namespace zm_hmi_foundation {

/// The host class "Zelmar.HMI.StreamingClients": every instance has one `zm_hmi::StreamingClients` behind
/// it, made and ended with it. Its methods are thin bindings; all real work is the collection's.
class StreamingClientsCOSClassInfo final : public nvcos::COSClassInfo, public HostAllocated {
public:
    const char* getClassName() const noexcept override { return "StreamingClients"; }

    /// Registers the properties, then the methods. What was registered before a failure stays.
    void initializeClass(nvcos::COSClass* cosClass, const nvcos::COSClient* client) override;
    void* allocateInstance(nvcos::COSInterface* instance) override;
    void deallocateInstance(nvcos::COSInterface* instance, void* data) override;
};

}  // namespace zm_hmi_foundation

#endif
