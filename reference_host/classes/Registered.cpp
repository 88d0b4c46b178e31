#include "reference_host/classes/Registered.hpp"

#include "reference_host/classes/MethodSignature.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MemoryBlocks.hpp"

namespace reference_host {

namespace {

/// Looked up at load, because the lookup may allocate and its user must not fail.
LedgerCounter& descriptors = Ledger::counter("class descriptors");

template <class Descriptor>
void setDescriptorMeantToLive(const Descriptor& descriptor, bool isMeant) noexcept
{
    descriptors.declareMeantToLive(isMeant ? 1 : -1);
    // A library's descriptor is at the start of its block; a descriptor of host code is not in a block.
    setBlockMeantToLive(dynamic_cast<const void*>(&descriptor), isMeant);
}

}  // namespace

void setMeantToLive(const nvcos::COSNamespaceInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
}

void setMeantToLive(const nvcos::COSClassInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
}

void setMeantToLive(const nvcos::COSPropInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
}

void setMeantToLive(const nvcos::COSMethodInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
    if (const auto* signature = dynamic_cast<const MethodSignature*>(descriptor.getSignature())) {
        signature->setMeantToLive(isMeant);
    }
}

}  // namespace reference_host
