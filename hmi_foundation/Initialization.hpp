#ifndef ZM_HMI_FOUNDATION_INITIALIZATION_HPP
#define ZM_HMI_FOUNDATION_INITIALIZATION_HPP

#include "hmi_foundation/Export.hpp"

/// The entry points of the library. Main thread only.
extern "C" {

/// Registers "Zelmar.HMI" and its classes with the host, once per process: a second call does nothing, also
/// after a failed first one. Where a namespace does not exist yet, only the namespace is added now, and the
/// classes when the host first needs them. May throw the host's exceptions.
ZM_HMI_API void NVInitialize_zm_hmi_foundation();

/// Does nothing: classes stay registered until the host unloads the library.
ZM_HMI_API void NVTerminate_zm_hmi_foundation();
}

namespace zm_hmi::testAPI {

/// The same registration with a flag of its own, for test programs that use the classes without loading
/// the library as a host does. After `NVInitialize_zm_hmi_foundation` it registers a second time, which the
/// host may refuse.
ZM_HMI_API void addStreamingClientNVCOSNamespace();

}  // namespace zm_hmi::testAPI

#endif
