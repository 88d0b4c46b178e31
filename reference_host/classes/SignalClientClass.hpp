#ifndef ZM_REFERENCE_HOST_CLASSES_SIGNAL_CLIENT_CLASS_HPP
#define ZM_REFERENCE_HOST_CLASSES_SIGNAL_CLIENT_CLASS_HPP

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"

#include <memory>

namespace reference_host {

/// The host function that works out "SignalInfo": it takes a client and gives one signal or nothing.
inline constexpr const char* signalInfoFunction = "getSignalInfo";

/// The host's class "SignalClient", which the host contributes to the namespace "Zelmar.HMI": one
/// observer of one signal, such as a dashboard's widget, as scripts describe it. Every property has a
/// default, so that a script sets only what it needs. The paths are cell arrays of texts, from the
/// observer's own model inwards. "SignalInfo", which is read only, is the observed signal as
/// `signalInfoFunction` answers on each read; an empty value while there is no such function.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeSignalClientClass();

}  // namespace reference_host

#endif
