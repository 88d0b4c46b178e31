#include "reference_host/observers/ObserverFunctions.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/InterfaceManager.hpp"
#include "reference_host/classes/ValueEquality.hpp"
#include "reference_host/model/EditorEvents.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/ClientFunctions.hpp"
#include "reference_host/observers/ObservedPorts.hpp"
#include "reference_host/observers/SignalRebinding.hpp"

namespace reference_host {

void installDiagramFunctions()
{
    HostFunctions::replace("getAlignedBlockPath", getAlignedBlockPath);
}

void installEditorFunctions()
{
    HostFunctions::replace("applyRebindingRules", applyRebindingRules);
    HostFunctions::replace("getObservedPorts", getObservedPorts);
    HostFunctions::replace("getPortsWithBadges", getPortsWithBadges);
    HostFunctions::replace("Zelmar.HMI.zmhmi", EditorEvents::record);
}

void installObserverFunctions()
{
    HostFunctions::replace(signalInfoFunction, getSignalInfo);
    HostFunctions::replace("getAlignedObservers", getAlignedObservers);
    HostFunctions::replace("validateAndRemoveUnused", validateAndRemoveUnused);
    HostFunctions::replace("getSignalsAndClients", getSignalsAndClients);
    HostFunctions::replace("renameModel", InterfaceManager::renameModel);
    HostFunctions::replace("isequal", isEqual);
}

}  // namespace reference_host
