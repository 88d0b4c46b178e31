#include "hmi/StreamingClients.hpp"

#include "hmi/Collections.hpp"
#include "host/ClassObjects.hpp"
#include "host/HostCall.hpp"
#include "host/Memory.hpp"

#include <boost/make_shared.hpp>

namespace zm_hmi {

namespace {

StreamingClients* clientsBehind(const nvArray* value)
{
    return collections::firstOfClass<StreamingClients>(value, "Zelmar.HMI.StreamingClients");
}

}  // namespace

void StreamingClients::getAlignedObservers(const nvArray* clientsObject,
                                           std::vector<SignalClientPtr>& observers)
{
    withHostMemoryErrors([&] {
        observers.clear();
        if (clientsObject == nullptr) {
            return;
        }
        const HostCallResult<1> result = callHostNoThrow<1>("getAlignedObservers", clientsObject);
        if (!result.succeeded) {
            return;
        }
        const StreamingClients* clients = clientsBehind(clientsObject);
        const std::u16string modelName = clients != nullptr ? clients->getModelName() : std::u16string();
        const nvArray* objects = result.outputs[0].get();
        const std::size_t count = nvGetNumberOfElements(objects);
        observers.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const OwnedArray object(omCreateNVCOSScalar(omGetArrayElement(objects, i)));
            zmsvSetLocalScope(object.get());
            observers.push_back(boost::make_shared<SignalClient>(object.get(), 0, modelName));
        }
    });
}

void StreamingClients::handleModelRename(const nvArray* clientsObject)
{
    withHostMemoryErrors([&] {
        const StreamingClients* clients = clientsBehind(clientsObject);
        if (clients == nullptr || clients->m_syncedModelName == clients->m_modelName) {
            return;
        }
        const OwnedArray oldName = asTemporary(makeString(clients->m_syncedModelName));
        const OwnedArray newName = asTemporary(makeString(clients->m_modelName));
        const HostCallResult<1> manager = callHostNoThrow<1>("Zelmar.HMI.InterfaceMgr.getInterfaceMgr");
        if (!manager.succeeded) {
            return;
        }
        const OwnedArray noManager = manager.outputs[0] ? nullptr : asTemporary(makePlaceholder());
        callHostNoThrow<0>("renameModel", noManager ? noManager.get() : manager.outputs[0].get(),
                           oldName.get(), newName.get());
        // The synced name is left as it is: the rename is announced again until validation has run.
    });
}

void StreamingClients::validateAndRemoveUnused(const nvArray* clientsObject)
{
    withHostMemoryErrors([&] {
        StreamingClients* clients = clientsBehind(clientsObject);
        if (clients == nullptr) {
            return;
        }
        clients->m_syncedModelName = clients->m_modelName;
        callHostNoThrow<0>("validateAndRemoveUnused", clientsObject);
    });
}

}  // namespace zm_hmi
