#pragma once

#include "reference_host/Export.hpp"

#include <string>

namespace reference_host {

/// The origin of a value or an error: the boundary operation, and the code that called it.
struct CallSite {
    const char* operation = nullptr;  ///< null outside every boundary operation
    const void* caller = nullptr;     ///< an address in the calling code; null for host code

    /// The current call of this thread.
    ZM_REFHOST_API static CallSite current() noexcept;

    /// Makes `site` the current call and returns the previous one, which `leave` restores.
    ZM_REFHOST_API static CallSite enter(CallSite site) noexcept;
    ZM_REFHOST_API static void leave(CallSite outer) noexcept;

    /// The name for errors: "host code" outside every boundary operation.
    const char* operationName() const noexcept { return operation != nullptr ? operation : "host code"; }
};

/// "nvCreateString, called from zm_hmi::SignalSpecification::getUUID (libx.so+0x12ab)".
ZM_REFHOST_API std::string describeCallSite(const CallSite& site);

}  // namespace reference_host
