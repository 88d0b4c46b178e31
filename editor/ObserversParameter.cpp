#include "editor/ObserversParameter.hpp"

#include "hmi/ModelObservers.hpp"

namespace editor {

void storeObservers(reference_host::Model& model, const nvArray* value)
{
    zm_hmi::ModelObservers::validateDataFormat(value);
    model.setObservers(value);
}

ObserversPair readObservers(const reference_host::Model& model)
{
    const reference_host::OwnedValue value = model.observers();
    const zm_hmi::ModelObservers observers(value.get());
    nvArray* signals = nullptr;
    nvArray* clients = nullptr;
    observers.getSignalsAndClients(signals, clients);
    ObserversPair pair{OwnedArray(signals), OwnedArray(clients)};
    if (nvIsEmpty(pair.signals.get())) {
        pair.signals.reset();
    }
    if (nvIsEmpty(pair.clients.get())) {
        pair.clients.reset();
    }
    return pair;
}

}  // namespace editor
