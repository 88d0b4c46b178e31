#include "hmi_foundation/bindings/StreamingClientsCOSClassInfo.hpp"

#include "hmi/StreamingClients.hpp"
#include "hmi_foundation/bindings/CollectionBinding.hpp"

#include <boost/make_shared.hpp>

// One class a method: its row of the method table, and its body. Where a body takes an index, the index
// is checked before anything is built from the other inputs.

namespace zm_hmi_foundation {

namespace {

using nvcos::COSClient;
using nvcos::COSValue;
using zm_hmi::SignalClient;
using zm_hmi::StreamingClients;

constexpr const char* clientsType = "Zelmar.HMI.StreamingClients";
constexpr const char* clientType = "Zelmar.HMI.SignalClient";

StreamingClients& clientsOf(const COSValue& object)
{
    return collectionOf<StreamingClients>(object);
}

zm_hmi::SignalClientPtr makeClient(const StreamingClients& clients, const COSValue& client)
{
    return boost::make_shared<SignalClient>(std::get<nvArray*>(client), 0, clients.getModelName());
}

/// "Model": the model's name. Unlike that of the signals it is writable, and renames the model.
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

class StreamingClientsConstructor : public HMICOSMethodInfo {
public:
    StreamingClientsConstructor()
        : HMICOSMethodInfo({"StreamingClients", {type_name::unicodeString}, {clientsType}, 1})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int inputCount,
                const COSValue* inputs) const override
    {
        // The new object is the output already.
        if (inputCount > 0) {
            clientsOf(outputs[0]).setModelName(std::get<std::u16string>(inputs[0]));
        }
        outputCount = 1;
    }
};

class StreamingClientsAdd : public HMICOSMethodInfo {
public:
    StreamingClientsAdd() : HMICOSMethodInfo({"add", {clientsType, clientType}, {}}) {}
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* /*outputs*/, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        StreamingClients& clients = clientsOf(inputs[0]);
        clients.add(makeClient(clients, inputs[1]));
    }
};

class StreamingClientsSet : public HMICOSMethodInfo {
public:
    StreamingClientsSet() : HMICOSMethodInfo({"set", {clientsType, type_name::uint32Scalar, clientType}, {}})
    {
    }
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* /*outputs*/, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        StreamingClients& clients = clientsOf(inputs[0]);
        const std::size_t index = indexInto(clients, inputs[1]);
        clients.set(index, makeClient(clients, inputs[2]));
    }
};

class StreamingClientsRemove : public HMICOSMethodInfo {
public:
    StreamingClientsRemove() : HMICOSMethodInfo({"remove", {clientsType, type_name::uint32Scalar}, {}}) {}
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* /*outputs*/, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        StreamingClients& clients = clientsOf(inputs[0]);
        clients.remove(indexInto(clients, inputs[1]));
    }
};

// Its result is declared as the client class, where the signals' "get" declares "any", and it has no struct
// form.
class StreamingClientsGet : public HMICOSMethodInfo {
public:
    StreamingClientsGet() : HMICOSMethodInfo({"get", {clientsType, type_name::uint32Scalar}, {clientType}}) {}
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        const StreamingClients& clients = clientsOf(inputs[0]);
        // Host code runs inside the conversion and may remove the client.
        const zm_hmi::SignalClientPtr client = clients.getShared(indexInto(clients, inputs[1]));
        const std::u16string modelName = clients.getModelName();
        setResult(outputs[0], client->getNVCOSObject(modelName));
        outputCount = 1;
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
        addMethod<StreamingClientsConstructor>(cosClass);
        addMethod<StreamingClientsAdd>(cosClass);
        addMethod<StreamingClientsSet>(cosClass);
        addMethod<StreamingClientsRemove>(cosClass);
        addMethod<StreamingClientsGet>(cosClass);
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
