#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"

#include <memory>

// The host's own classes in the namespace "Zelmar.HMI". They are contributed when the host is loaded.

namespace reference_host {

/// "SignalSpecification": one output port of one block, or one activity of a chart, as scripts describe it.
/// Every property has a default, so that a script sets only the ones it needs. The cached block handle and
/// port are empty until they are known.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeSignalSpecificationClass();

/// The host function that computes "SignalInfo": it takes a client and gives one signal or nothing.
inline constexpr const char* signalInfoFunction = "getSignalInfo";

/// "SignalClient": one observer of one signal, such as a dashboard's widget, as scripts describe it. The
/// paths are cell arrays of texts, from the observer's own model inwards. "SignalInfo" is read only: each
/// read calls `signalInfoFunction`; it is empty while there is no such function.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeSignalClientClass();

inline constexpr const char* modelObserversClass = "Zelmar.HMI.ModelObservers";

/// "ModelObservers": the pair that a model's observers parameter contains. "Signals" is one
/// "Zelmar.HMI.InstrumentedSignals" or empty, "Clients" one "Zelmar.HMI.StreamingClients" or empty; both
/// refer to the script's own objects. The static method "createFromSignalsAndClients" makes a pair of the
/// two.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeModelObserversClass();

/// The host function "getSignalsAndClients": takes one pair and gives its signals and its clients, an empty
/// value for a missing one. Another input is a host error ("WrongArgument").
ZM_REFHOST_API void getSignalsAndClients(HostFunctionCall& call);

}  // namespace reference_host
