#ifndef ZM_REFERENCE_HOST_OBSERVERS_OBSERVER_FUNCTIONS_HPP
#define ZM_REFERENCE_HOST_OBSERVERS_OBSERVER_FUNCTIONS_HPP

#include "reference_host/Export.hpp"

namespace reference_host {

/// Adds the host functions that concern a model's observers: "getSignalInfo", "getAlignedObservers",
/// "validateAndRemoveUnused", "getSignalsAndClients", "renameModel" and "isequal". A host that has models
/// calls it at its start, as `installDiagramFunctions`.
ZM_REFHOST_API void installObserverFunctions();

}  // namespace reference_host

#endif
