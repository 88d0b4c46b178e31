#ifndef ZM_REFERENCE_HOST_CLASSES_REGISTERED_HPP
#define ZM_REFERENCE_HOST_CLASSES_REGISTERED_HPP

#include "host/ClassDescriptors.hpp"

#include <memory>

namespace reference_host {

/// Tells the ledger that a descriptor with its memory and its signature is, or no longer is, meant to live.
void setMeantToLive(const nvcos::COSNamespaceInfo& descriptor, bool isMeant) noexcept;
void setMeantToLive(const nvcos::COSClassInfo& descriptor, bool isMeant) noexcept;
void setMeantToLive(const nvcos::COSPropInfo& descriptor, bool isMeant) noexcept;
void setMeantToLive(const nvcos::COSMethodInfo& descriptor, bool isMeant) noexcept;

struct RegisteredDeleter {
    template <class Descriptor>
    void operator()(Descriptor* descriptor) const noexcept
    {
        setMeantToLive(*descriptor, false);
        delete descriptor;
    }
};

/// Owns a descriptor that is registered. It is meant to live for as long as it is; what is left of it
/// afterwards is open.
template <class Descriptor>
using Registered = std::unique_ptr<Descriptor, RegisteredDeleter>;

/// Becomes the owner; null owns nothing.
template <class Descriptor>
Registered<Descriptor> registered(Descriptor* descriptor) noexcept
{
    if (descriptor != nullptr) {
        setMeantToLive(*descriptor, true);
    }
    return Registered<Descriptor>(descriptor);
}

}  // namespace reference_host

#endif
