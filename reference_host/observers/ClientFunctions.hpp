#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/values/Value.hpp"

// The host functions about streaming clients.

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

/// The host function "getAlignedObservers": takes one "Zelmar.HMI.StreamingClients" and returns its clients
/// as new objects, in order, with current paths and ZIDs. Each part of a client's path is followed like the
/// path of a signal (`alignedBlockPath`). A part that leads to no block stays as it is: removing is the task
/// of `validateAndRemoveUnused`. The collection does not change. A collection whose model is not open is a
/// host error ("ModelNotOpen").
void getAlignedObservers(HostFunctionCall& call);

/// The host function "validateAndRemoveUnused": takes one "Zelmar.HMI.StreamingClients" and removes, with
/// the class's own methods, each client of which
///
///  - the observer's block is gone: the first part of its path leads to no block of the open models;
///  - or the observed signal is gone: the instrumented signals in the model's observers parameter lack it.
///
/// A client that never had a path, or never had a signal, is not removed for that reason,
/// and so does every client's signal in a model that has no instrumented signals to look in. A collection
/// whose model is not open is a host error ("ModelNotOpen") and loses nothing.
void validateAndRemoveUnused(HostFunctionCall& call);

}  // namespace reference_host
