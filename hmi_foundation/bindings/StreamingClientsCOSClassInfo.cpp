#include "hmi_foundation/bindings/StreamingClientsCOSClassInfo.hpp"

#include "hmi/StreamingClients.hpp"
#include "hmi_foundation/bindings/TypedMethod.hpp"

#include <boost/make_shared.hpp>

// One class a method: its row of the method table and its body. A body that takes an index checks it before
// it makes a record from another input.

namespace zm_hmi_foundation {

namespace {

using zm_hmi::SignalClient;
using zm_hmi::StreamingClients;

zm_hmi::SignalClientPtr makeClient(const StreamingClients& clients, const nvArray* client)
{
    return boost::make_shared<SignalClient>(client, 0, clients.getModelName());
}

/// "Model": the model's name. Unlike that of the signals it can be assigned, which renames the model.
class ClientsModelPI : public HMIBasePI {
public:
    explicit ClientsModelPI(const nvcos::COSClass* owner)
        : HMIBasePI(owner, "Model", type_name::unicodeString, nvcos::COSPropAccess::ReadWrite,
                    ValueKind::Text)
    {
    }
    nvcos::COSValue getValue(nvcos::COSInterface* instance) override
    {
        return static_cast<StreamingClients*>(getInstanceData(instance))->getModelName();
    }
    void setValue(nvcos::COSInterface* instance, nvcos::COSValue value) override
    {
        static_cast<StreamingClients*>(getInstanceData(instance))
            ->setModelName(std::get<std::u16string>(value));
    }
};

using ClientsCountPI = CollectionCountPI<StreamingClients>;
using ClientsPersistencePI = CollectionPersistencePI<StreamingClients>;

class StreamingClientsConstructor final : public TypedMethod<StreamingClientsConstructor> {
public:
    static constexpr const MethodRow& row = rowOf(clientsMethods, "StreamingClients");
    static void body(NewObject<StreamingClients> made, std::optional<std::u16string> modelName)
    {
        if (modelName) {
            made.collection().setModelName(*modelName);
        }
    }
};

class StreamingClientsAdd final : public TypedMethod<StreamingClientsAdd> {
public:
    static constexpr const MethodRow& row = rowOf(clientsMethods, "add");
    static void body(StreamingClients& clients, const nvArray* client)
    {
        clients.add(makeClient(clients, client));
    }
};

class StreamingClientsSet final : public TypedMethod<StreamingClientsSet> {
public:
    static constexpr const MethodRow& row = rowOf(clientsMethods, "set");
    static void body(StreamingClients& clients, std::uint32_t index, const nvArray* client)
    {
        const std::size_t place = indexInto(clients, index);
        clients.set(place, makeClient(clients, client));
    }
};

class StreamingClientsRemove final : public TypedMethod<StreamingClientsRemove> {
public:
    static constexpr const MethodRow& row = rowOf(clientsMethods, "remove");
    static void body(StreamingClients& clients, std::uint32_t index)
    {
        clients.remove(indexInto(clients, index));
    }
};

class StreamingClientsGet final : public TypedMethod<StreamingClientsGet> {
public:
    static constexpr const MethodRow& row = rowOf(clientsMethods, "get");
    static OwnedArray body(StreamingClients& clients, std::uint32_t index)
    {
        // Held and copied: host code that runs inside the conversion may remove the client or the collection.
        const zm_hmi::SignalClientPtr client = clients.getShared(indexInto(clients, index));
        const std::u16string modelName = clients.getModelName();
        return client->getNVCOSObject(modelName);
    }
};

}  // namespace

void StreamingClientsCOSClassInfo::initializeClass(nvcos::COSClass* cosClass,
                                                   const nvcos::COSClient* /*client*/)
{
    withHostMemoryErrors([&] {
        addProperty<ClientsModelPI>(cosClass);
        addProperty<ClientsCountPI>(cosClass);
        addProperty<ClientsPersistencePI>(cosClass);
        addMethods<clientsMethods, StreamingClientsConstructor, StreamingClientsAdd, StreamingClientsSet,
                   StreamingClientsRemove, StreamingClientsGet>(cosClass);
    });
}

void* StreamingClientsCOSClassInfo::allocateInstance(nvcos::COSInterface* /*instance*/)
{
    return newCollection<StreamingClients>();
}

void StreamingClientsCOSClassInfo::deallocateInstance(nvcos::COSInterface* /*instance*/, void* data)
{
    delete static_cast<StreamingClients*>(data);
}

}  // namespace zm_hmi_foundation
