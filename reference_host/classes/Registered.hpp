#ifndef ZM_REFERENCE_HOST_CLASSES_REGISTERED_HPP
#define ZM_REFERENCE_HOST_CLASSES_REGISTERED_HPP

#include "host/ClassDescriptors.hpp"

#include <memory>

namespace reference_host {

/// Declares to the ledger whether a descriptor, with its memory and its signature, is meant to live.
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

/// Owns a registered descriptor. While it is registered the ledger does not list it.
template <class Descriptor>
using Registered = std::unique_ptr<Descriptor, RegisteredDeleter>;

/// Takes ownership; null is allowed.
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
