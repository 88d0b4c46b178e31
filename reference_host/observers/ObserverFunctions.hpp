#pragma once

#include "reference_host/Export.hpp"

namespace reference_host {

// Each adds host functions that answer from the open models. A host with models calls all three at its start.

/// "getAlignedBlockPath".
ZM_REFHOST_API void installDiagramFunctions();

/// The functions behind the editor's queries: "applyRebindingRules", "getObservedPorts",
/// "getPortsWithBadges" and "Zelmar.HMI.zmhmi".
ZM_REFHOST_API void installEditorFunctions();

/// The functions about a model's observers: "getSignalInfo", "getAlignedObservers",
/// "validateAndRemoveUnused", "getSignalsAndClients", "renameModel" and "isequal".
ZM_REFHOST_API void installObserverFunctions();

}  // namespace reference_host
