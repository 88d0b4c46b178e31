#ifndef ZM_REFERENCE_HOST_OBSERVERS_OBSERVER_VALIDATION_HPP
#define ZM_REFERENCE_HOST_OBSERVERS_OBSERVER_VALIDATION_HPP

#include "reference_host/calls/HostFunctions.hpp"

namespace reference_host {

/// The host function "validateAndRemoveUnused": takes one "Zelmar.HMI.StreamingClients" and removes, with
/// the class's own methods, each client of which
///
///  - the observer's block is gone: the first part of its path leads to no block of the open models;
///  - or the observed signal is gone: the instrumented signals in the model's observers parameter lack it.
///
/// What was never there is not gone: a client without a path, or without a signal, stays for that reason,
/// and so does every client's signal in a model that has no instrumented signals to look in. A collection
/// whose model is not open is a host error ("ModelNotOpen") and loses nothing.
void validateAndRemoveUnused(HostFunctionCall& call);

}  // namespace reference_host

#endif
