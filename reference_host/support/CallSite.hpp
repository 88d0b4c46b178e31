#pragma once

#include "reference_host/Export.hpp"

#include <string>

namespace reference_host {

/// Where something was made: the boundary operation and the code that called it.
struct CallSite {
    const char* operation = nullptr;  ///< null outside every boundary operation
    const void* caller = nullptr;     ///< an address in the calling code; null for host code

    /// The call of this thread that is under way.
    ZM_REFHOST_API static CallSite current() noexcept;

    /// Makes a call the one under way, and returns the one before, which `leave` brings back.
    ZM_REFHOST_API static CallSite enter(CallSite site) noexcept;
    ZM_REFHOST_API static void leave(CallSite outer) noexcept;

    /// The name for errors: "host code" outside every boundary operation.
    const char* operationName() const noexcept { return operation != nullptr ? operation : "host code"; }
};

/// "nvCreateString, called from zm_hmi::SignalSpecification::getUUID (libx.so+0x12ab)".
ZM_REFHOST_API std::string describeCallSite(const CallSite& site);

}  // namespace reference_host
