#include "simulation/ObservedSignals.hpp"

#include "host/ClassObjects.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace simulation {

namespace rh = reference_host;
using rh::utf8FromUtf16;
using zm_hmi::SignalClient;

namespace {

using Parameters = std::map<std::string, std::variant<double, std::string>>;

/// The fields that are a number or a text; a viewer can do nothing with others.
Parameters parametersOf(const nvArray* params)
{
    Parameters parameters;
    if (rh::isEmpty(params) || rh::className(params) != "struct") {
        return parameters;
    }
    for (const std::string& name : rh::fieldNames(params)) {
        const nvArray* value = rh::field(params, 0, name.c_str());
        const std::string type = rh::className(value);
        if (type == "char") {
            parameters.emplace(name, rh::utf8Text(value));
        } else if (rh::elementCount(value) == 1 && (rh::isNumeric(value) || type == "logical")) {
            parameters.emplace(name, rh::element(value, 0));
        }
    }
    return parameters;
}

std::string titleOf(const ResolvedClient& client)
{
    const auto found = client.parameters.find("Title");
    if (found != client.parameters.end() && std::holds_alternative<std::string>(found->second)) {
        return std::get<std::string>(found->second);
    }
    return client.blockPath.substr(client.blockPath.rfind('/') + 1);
}

/// What the client's own methods say of its signal. They warn each time when it has none, so that the others
/// are asked only where the first one has found it.
void resolveSignal(ResolvedClient& resolved, SignalClient& client, const std::u16string& modelName)
{
    if (client.getSignalUUID().empty() || client.getSignalSpecification(modelName) == nullptr) {
        return;
    }
    resolved.portNumber = client.getAlignedPortIndex(modelName);
    resolved.decimation = client.getDecimation(modelName);
    resolved.maxPoints = client.getMaxPoints(modelName);
    std::vector<std::u16string> path;
    std::u16string subPath;
    client.getAlignedBlockPath(modelName, path, subPath);
    for (const std::u16string& part : path) {
        resolved.alignedPath.push_back(utf8FromUtf16(part));
    }
    resolved.subPath = utf8FromUtf16(subPath);
}

ResolvedClient resolve(SignalClient& client, const std::u16string& modelName)
{
    ResolvedClient resolved;
    resolved.uuid = client.getUUID();
    resolved.observerType = client.getObserverType();
    resolved.signalUuid = client.getSignalUUID();
    resolved.updateRate = client.getUpdateRate();
    resolved.dimensionChannel = client.getDimensionChannel();
    resolved.observesImaginaryPart = client.getObserveImaginaryPart();
    resolved.busLeafPath = client.getBusLeafPath();
    resolved.parameters = parametersOf(client.getObserverParams());
    if (!client.getModelPath().empty()) {
        resolved.blockPath = utf8FromUtf16(modelName + u'/' + client.getModelPath().front());
    }
    resolved.title = titleOf(resolved);
    resolveSignal(resolved, client, modelName);
    return resolved;
}

}  // namespace

std::vector<std::string> clientRecords(const nvArray* clientsObject)
{
    std::vector<std::string> records;
    if (rh::isEmpty(clientsObject)) {
        return records;
    }
    const nvcos::COSInterfacePtr instance = omGetArrayElement(clientsObject, 0);
    const auto* clients = static_cast<const zm_hmi::StreamingClients*>(omGetInstanceData(instance.get()));
    for (std::size_t i = 0; i < clients->getCount(); ++i) {
        const zm_hmi::SignalClientPtr client = clients->getShared(i);
        std::string record = client->getUUID() + '\n' + client->getSignalUUID() + '\n' +
                             client->getObserverType() + '\n' + client->getBusLeafPath() + '\n' +
                             std::to_string(client->getUpdateRate()) + '\n' +
                             std::to_string(client->getDimensionChannel()) + '\n' +
                             std::to_string(static_cast<int>(client->getObserveImaginaryPart()));
        // A client that is set anew is another record: its parameters cannot be compared without the host.
        record += '\n' + std::to_string(reinterpret_cast<std::uintptr_t>(client.get()));
        for (const std::u16string& part : client->getModelPath()) {
            record += '\n' + utf8FromUtf16(part);
        }
        records.push_back(std::move(record));
    }
    return records;
}

std::vector<ResolvedClient> resolveClients(const rh::Model& model, const nvArray* clientsObject,
                                           const std::vector<Channel>& channels)
{
    std::unordered_map<std::string, const Channel*> byUuid;
    for (const Channel& channel : channels) {
        byUuid.emplace(channel.uuid, &channel);
    }
    std::vector<zm_hmi::SignalClientPtr> clients;
    zm_hmi::StreamingClients::getAlignedObservers(clientsObject, clients);
    std::vector<ResolvedClient> result;
    for (const zm_hmi::SignalClientPtr& client : clients) {
        ResolvedClient resolved = resolve(*client, model.name());
        const auto channel = byUuid.find(resolved.signalUuid);
        if (!resolved.signalUuid.empty() && channel != byUuid.end()) {
            resolved.channel = channel->second->id;
            resolved.valueIndex = channel->second->layout.find(
                resolved.busLeafPath, resolved.dimensionChannel, resolved.observesImaginaryPart);
        }
        result.push_back(std::move(resolved));
    }
    return result;
}

}  // namespace simulation
