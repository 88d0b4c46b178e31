#include "tests/hmi/ClientValues.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <ostream>
#include <utility>

namespace zm_hmi {

namespace rh = reference_host;

namespace {

using Names = std::vector<std::string>;

const Names fieldNames = {
    "UUID",          "ModelPath_",      "ModelPathZID_", "SourceModel_",      "SignalUUID_",
    "ObserverType_", "ObserverParams_", "UpdateRate_",   "DimensionChannel_", "ObserveImaginaryPart_",
    "BusLeafPath_"};

template <class Text>
rh::OwnedValue makeCellsOf(const std::vector<Text>& texts)
{
    rh::OwnedValue cells = rh::makeCells(rh::Dimensions(1, texts.size()));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        rh::setCell(cells.get(), i, rh::makeText(texts[i]));
    }
    return cells;
}

rh::OwnedValue makeField(const std::string& name, const ClientValues& values)
{
    const auto makeUInt32 = [](std::uint64_t number) {
        return rh::makeNumber(static_cast<double>(number), nvClassID::UInt32);
    };
    if (name == "UUID") {
        return rh::makeText(values.uuid);
    }
    if (name == "ModelPath_") {
        return makeCellsOf(values.modelPath);
    }
    if (name == "ModelPathZID_") {
        return makeCellsOf(values.modelPathZID);
    }
    if (name == "SourceModel_") {
        return rh::makeText(values.sourceModel);
    }
    if (name == "SignalUUID_") {
        return rh::makeText(values.signalUUID);
    }
    if (name == "ObserverType_") {
        return rh::makeText(values.observerType);
    }
    if (name == "ObserverParams_") {
        return values.paramsModelName ? makeParams(*values.paramsModelName) : nullptr;
    }
    if (name == "UpdateRate_") {
        return makeUInt32(values.updateRate);
    }
    if (name == "DimensionChannel_") {
        return makeUInt32(values.dimensionChannel);
    }
    return name == "BusLeafPath_" ? rh::makeText(values.busLeafPath)
                                  : rh::makeLogical(values.observeImaginaryPart);
}

rh::OwnedValue makeStructArray(const Names& names, const std::vector<ClientValues>& clients)
{
    rh::OwnedValue data = rh::makeStruct(rh::Dimensions(1, clients.size()), names);
    for (std::size_t i = 0; i < clients.size(); ++i) {
        for (const std::string& name : names) {
            if (rh::OwnedValue field = makeField(name, clients[i])) {
                rh::setField(data.get(), i, name.c_str(), std::move(field));
            }
        }
    }
    return data;
}

}  // namespace

ClientValues distinctClient()
{
    return {.uuid = "5b6f0c1e-0a51-4a55-8a13-6d2a3c1d9e01",
            .modelPath = {u"Pult/\u00dcbersicht", u"inner/Anzeige"},
            .modelPathZID = {"31", "inner:7"},
            .sourceModel = u"plant",
            .signalUUID = "0fa1e07c-3a5e-4f0b-9d50-3f3d0d5b2d11",
            .observerType = "gauge",
            .paramsModelName = u"plant",
            .updateRate = 5,
            .dimensionChannel = 3,
            .observeImaginaryPart = true,
            .busLeafPath = "bus.speed"};
}

ClientValues clientNamed(std::string uuid)
{
    return {.uuid = std::move(uuid)};
}

ClientValues valuesOf(const SignalClient& record)
{
    const nvArray* name = nvGetField(record.getObserverParams(), 0, "ModelName");
    return {.uuid = record.getUUID(),
            .modelPath = record.getModelPath(),
            .modelPathZID = record.getModelPathZID(),
            .sourceModel = record.getSourceModel(),
            .signalUUID = record.getSignalUUID(),
            .observerType = record.getObserverType(),
            .paramsModelName = name != nullptr ? std::optional(rh::text(name)) : std::nullopt,
            .updateRate = record.getUpdateRate(),
            .dimensionChannel = record.getDimensionChannel(),
            .observeImaginaryPart = record.getObserveImaginaryPart(),
            .busLeafPath = record.getBusLeafPath()};
}

rh::OwnedValue makeParams(const std::u16string& modelName)
{
    rh::OwnedValue params = rh::makeStruct(rh::Dimensions(1, 1), {"ModelName", "Scale"});
    rh::setField(params.get(), 0, "ModelName", rh::makeText(modelName));
    rh::setField(params.get(), 0, "Scale", rh::makeDouble(2.5));
    return params;
}

rh::OwnedValue makePersistedClients(const std::vector<ClientValues>& clients)
{
    return makeStructArray(fieldNames, clients);
}

rh::OwnedValue makePersistedWithout(const Names& fields)
{
    Names names = fieldNames;
    std::erase_if(names, [&](const std::string& name) {
        return std::find(fields.begin(), fields.end(), name) != fields.end();
    });
    return makeStructArray(names, {distinctClient()});
}

rh::OwnedValue makeClientObject(const ClientValues& values)
{
    const rh::OwnedValue data = makePersistedClients({values});
    return rh::ObjectAccess::construct("Zelmar.HMI.SignalClient", {data.get()});
}

SignalClientPtr makeClient(const ClientValues& values)
{
    SignalClientPtr client = boost::make_shared<SignalClient>();
    client->setUUID(values.uuid);
    client->setModelPath(values.modelPath);
    client->setModelPathZID(values.modelPathZID);
    client->setSourceModel(values.sourceModel);
    client->setSignalUUID(values.signalUUID);
    client->setObserverType(values.observerType);
    client->setObserverParams(values.paramsModelName ? makeParams(*values.paramsModelName).get() : nullptr);
    client->setUpdateRate(values.updateRate);
    client->setDimensionChannel(values.dimensionChannel);
    client->setObserveImaginaryPart(values.observeImaginaryPart);
    client->setBusLeafPath(values.busLeafPath);
    return client;
}

std::ostream& operator<<(std::ostream& out, const ClientValues& values)
{
    out << "{UUID " << values.uuid << ", path";
    for (const std::u16string& part : values.modelPath) {
        out << " [" << toUtf8(part) << "]";
    }
    out << ", ZIDs";
    for (const std::string& part : values.modelPathZID) {
        out << " [" << part << "]";
    }
    return out << ", model " << toUtf8(values.sourceModel) << ", signal " << values.signalUUID << ", type "
               << values.observerType << ", parameters "
               << (values.paramsModelName ? toUtf8(*values.paramsModelName) : "none") << ", rate "
               << values.updateRate << ", channel " << values.dimensionChannel << ", imaginary "
               << values.observeImaginaryPart << ", leaf " << values.busLeafPath << "}";
}

}  // namespace zm_hmi
