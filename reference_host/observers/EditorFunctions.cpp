#include "reference_host/observers/EditorFunctions.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/model/EditorEvents.hpp"
#include "reference_host/observers/ObservedPorts.hpp"
#include "reference_host/observers/SignalRebinding.hpp"

namespace reference_host {

void installEditorFunctions()
{
    HostFunctions::replace("applyRebindingRules", applyRebindingRules);
    HostFunctions::replace("getObservedPorts", getObservedPorts);
    HostFunctions::replace("getPortsWithBadges", getPortsWithBadges);
    HostFunctions::replace("Zelmar.HMI.zmhmi", EditorEvents::record);
}

}  // namespace reference_host
