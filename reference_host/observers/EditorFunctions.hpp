#ifndef ZM_REFERENCE_HOST_OBSERVERS_EDITOR_FUNCTIONS_HPP
#define ZM_REFERENCE_HOST_OBSERVERS_EDITOR_FUNCTIONS_HPP

#include "reference_host/Export.hpp"

namespace reference_host {

/// Adds the host functions that the editor's questions lead to: "applyRebindingRules" (`rebindSignals`),
/// "getObservedPorts", "getPortsWithBadges" and "Zelmar.HMI.zmhmi" (`EditorEvents`). A host that has models
/// calls it at its start, as `installDiagramFunctions`.
ZM_REFHOST_API void installEditorFunctions();

}  // namespace reference_host

#endif
