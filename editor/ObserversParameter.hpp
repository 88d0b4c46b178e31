#ifndef ZM_EDITOR_OBSERVERS_PARAMETER_HPP
#define ZM_EDITOR_OBSERVERS_PARAMETER_HPP

#include "host/OwnedArray.hpp"
#include "reference_host/model/Model.hpp"

namespace editor {

/// The two collections of a model's observers parameter; null for one that is missing.
struct ObserversPair {
    OwnedArray signals;
    OwnedArray clients;
};

/// Sets a model's observers parameter when the library accepts the value: an empty value or one object of
/// "Zelmar.HMI.ModelObservers". Otherwise throws "SignalObserversSetParamNonScalar" or
/// "SignalObserversSetParamInvalidType", and the parameter is as it was.
void storeObservers(reference_host::Model& model, const nvArray* value);

/// The collections of a model's observers parameter, split by the library.
ObserversPair readObservers(const reference_host::Model& model);

}  // namespace editor

#endif
