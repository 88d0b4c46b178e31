#include "reference_host/classes/Registered.hpp"

#include "reference_host/classes/MethodSignature.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MemoryBlocks.hpp"

namespace reference_host {

namespace {

template <class Descriptor>
void setDescriptorMeantToLive(const Descriptor& descriptor, bool isMeant) noexcept
{
    static LedgerCounter& counter = Ledger::counter("class descriptors");
    counter.declareMeantToLive(isMeant ? 1 : -1);
    // A library's descriptor begins where its block of the host's memory does; host code has other memory.
    const auto block = openMemoryBlocks().find(dynamic_cast<const void*>(&descriptor));
    if (block != openMemoryBlocks().end()) {
        block->second.meantToLive = isMeant;
    }
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
