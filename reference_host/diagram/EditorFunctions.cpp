#include "reference_host/diagram/EditorFunctions.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/diagram/EditorEvents.hpp"
#include "reference_host/diagram/ObservedPorts.hpp"
#include "reference_host/diagram/SignalRebinding.hpp"

namespace reference_host {

void installEditorFunctions()
{
    HostFunctions::replace("applyRebindingRules", applyRebindingRules);
    HostFunctions::replace("getObservedPorts", getObservedPorts);
    HostFunctions::replace("getPortsWithBadges", getPortsWithBadges);
    HostFunctions::replace("Zelmar.HMI.zmhmi", EditorEvents::record);
}

}  // namespace reference_host
