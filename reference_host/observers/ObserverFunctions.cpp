#include "reference_host/observers/ObserverFunctions.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/InterfaceManager.hpp"
#include "reference_host/classes/ValueEquality.hpp"
#include "reference_host/observers/ObserverAlignment.hpp"
#include "reference_host/observers/ObserverValidation.hpp"
#include "reference_host/observers/SignalInfo.hpp"

namespace reference_host {

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
