#include "hmi/ModelObservers.hpp"

#include "hmi_foundation/HostErrors.hpp"
#include "host/HostCall.hpp"
#include "host/Memory.hpp"

#include <utility>

namespace zm_hmi {

namespace {

using zm_hmi_foundation::errorCatalog;
using zm_hmi_foundation::throwHostError;

}  // namespace

ModelObservers::ModelObservers(const nvArray* value)
{
    withHostMemoryErrors([&] {
        validateDataFormat(value);
        if (!nvIsEmpty(value)) {
            OwnedArray kept(nvCreateSharedDataCopy(value));
            zmsvSetLocalScope(kept.get());
            m_value = asPersistent(std::move(kept));
        }
    });
}

ModelObservers::~ModelObservers() = default;

void ModelObservers::validateDataFormat(const nvArray* value)
{
    withHostMemoryErrors([&] {
        if (nvIsEmpty(value)) {
            return;
        }
        if (nvGetNumberOfElements(value) != 1) {
            throwHostError(zmsvMessageId(errorCatalog, "SignalObserversSetParamNonScalar"));
        }
        if (!nvIsA(value, "Zelmar.HMI.ModelObservers")) {
            throwHostError(zmsvMessageId(errorCatalog, "SignalObserversSetParamInvalidType"));
        }
    });
}

void ModelObservers::getSignalsAndClients(nvArray*& signals, nvArray*& clients) const
{
    signals = nullptr;
    clients = nullptr;
    if (!m_value) {
        return;
    }
    withHostMemoryErrors([&] {
        // A copy that shares the data: host code that runs during the call may destroy this setting.
        const OwnedArray lent = asTemporary(OwnedArray(nvCreateSharedDataCopy(m_value.get())));
        HostCallResult<2> pair = callHostNoThrow<2>("getSignalsAndClients", lent.get());
        signals = pair.outputs[0].release();
        clients = pair.outputs[1].release();
    });
}

nvArray* ModelObservers::createFromSignalsAndClients(const nvArray* signals, const nvArray* clients)
{
    if (signals == nullptr && clients == nullptr) {
        return nullptr;
    }
    return withHostMemoryErrors([&] {
        OwnedArray missing;
        if (signals == nullptr || clients == nullptr) {
            missing = asTemporary(makePlaceholder());
        }
        HostCallResult<1> pair = callHostNoThrow<1>("Zelmar.HMI.ModelObservers.createFromSignalsAndClients",
                                                    signals != nullptr ? signals : missing.get(),
                                                    clients != nullptr ? clients : missing.get());
        return pair.outputs[0].release();
    });
}

}  // namespace zm_hmi
