#ifndef ZM_REFERENCE_HOST_OBSERVERS_SIGNAL_INFO_HPP
#define ZM_REFERENCE_HOST_OBSERVERS_SIGNAL_INFO_HPP

#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/values/Value.hpp"

namespace reference_host {

/// The signal that a client observes: a new "Zelmar.HMI.SignalSpecification" for the one that its
/// "SignalUUID_" names among the instrumented signals of the client's model, with the cached block handle
/// and port as the diagram has them now; both are empty where the block or the port is gone. Null when
/// the client names no signal, or none that the model has.
///
/// The client's model is the open one with which its path begins, and otherwise its "SourceModel_".
ZM_REFHOST_API OwnedValue signalInfo(const nvArray* client);

/// The host function "getSignalInfo", behind the property "SignalInfo": takes one client.
void getSignalInfo(HostFunctionCall& call);

}  // namespace reference_host

#endif
