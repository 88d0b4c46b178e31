#ifndef ZM_REFERENCE_HOST_CLASSES_MODEL_OBSERVERS_CLASS_HPP
#define ZM_REFERENCE_HOST_CLASSES_MODEL_OBSERVERS_CLASS_HPP

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"

#include <memory>

namespace reference_host {

inline constexpr const char* modelObserversClass = "Zelmar.HMI.ModelObservers";

/// The host's class "ModelObservers", which the host contributes to the namespace "Zelmar.HMI": the pair
/// that a model's observers parameter holds. "Signals" is one "Zelmar.HMI.InstrumentedSignals" or empty,
/// "Clients" one "Zelmar.HMI.StreamingClients" or empty; both refer to the script's own objects. The
/// static method "createFromSignalsAndClients" makes a pair of the two.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeModelObserversClass();

/// The host function "getSignalsAndClients": takes one pair and gives its signals and its clients, an
/// empty value for one that is missing. Anything but a pair is a host error ("WrongArgument").
ZM_REFHOST_API void getSignalsAndClients(HostFunctionCall& call);

}  // namespace reference_host

#endif
