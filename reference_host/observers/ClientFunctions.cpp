#include "reference_host/observers/ClientFunctions.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace reference_host {

namespace {

std::shared_ptr<Model> modelOfClient(const nvArray* client)
{
    const std::u16string path = textInCells(client, "ModelPath_", 0);
    const std::shared_ptr<Model> model = OpenModels::find(path.substr(0, path.find(u'/')));
    return model != nullptr ? model : OpenModels::find(textOf(client, "SourceModel_"));
}

/// A cache of the indices of the signals of one collection, so that a thousand clients do not search it a
/// thousand times. Each entry is verified before it is used.
class SignalPlaces {
public:
    /// The place of a signal; none when the collection lacks it.
    std::optional<std::size_t> find(const nvArray* signals, const std::string& uuid)
    {
        std::optional<std::size_t> place = placeOf(signals, uuid);
        if (!place) {
            lookThrough(signals);
            place = placeOf(signals, uuid);
        }
        return place;
    }

private:
    std::optional<std::size_t> placeOf(const nvArray* signals, const std::string& uuid) const
    {
        const auto found = m_places.find(uuid);
        const bool holds = found != m_places.end() && found->second < elementsIn(signals) &&
                           signalUUID(signals, found->second) == uuid;
        return holds ? std::optional(found->second) : std::nullopt;
    }

    void lookThrough(const nvArray* signals)
    {
        m_places.clear();
        const std::size_t count = elementsIn(signals);
        for (std::size_t i = 0; i < count; ++i) {
            m_places.emplace(signalUUID(signals, i), i);
        }
    }

    std::unordered_map<std::string, std::size_t> m_places;
};

OwnedValue findSignal(const nvArray* signals, const std::string& uuid)
{
    static SignalPlaces places;
    const std::optional<std::size_t> place = places.find(signals, uuid);
    return place ? elementAt(signals, *place) : nullptr;
}

/// Handle and port as the diagram has them; empty where there is no such port.
void fillCachedPort(nvArray* signal)
{
    const Block* block = alignedBlock(toUtf8(textOf(signal, "ZID_")), textOf(signal, "BlockPath_"));
    const double port = scalar(ObjectAccess::getProperty(signal, "OutputPortIndex_").get());
    const bool isThere =
        block != nullptr && port >= 1.0 && port <= static_cast<double>(block->ports(PortKind::Output).size());
    const OwnedValue handle = isThere ? makeDouble(block->handle()) : makeEmptyValue();
    const OwnedValue index = isThere ? makeDouble(port) : makeEmptyValue();
    ObjectAccess::setProperty(signal, "CachedBlockHandle_", handle.get());
    ObjectAccess::setProperty(signal, "CachedPortIdx_", index.get());
}

void setTexts(nvArray* object, const char* property, const std::vector<std::u16string>& texts)
{
    const OwnedValue cells = makeCells(Dimensions(1, texts.size()));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        setCell(cells.get(), i, makeText(texts[i]));
    }
    ObjectAccess::setProperty(object, property, cells.get());
}

void align(nvArray* client)
{
    const std::size_t parts = elementCount(ObjectAccess::getProperty(client, "ModelPath_").get());
    std::vector<std::u16string> path;
    std::vector<std::u16string> zids;
    for (std::size_t i = 0; i < parts; ++i) {
        path.push_back(textInCells(client, "ModelPath_", i));
        zids.push_back(textInCells(client, "ModelPathZID_", i));
        if (const Block* block = alignedBlock(toUtf8(zids.back()), path.back())) {
            path.back() = block->path();
            zids.back() = toUtf16(block->zid().c_str());
        }
    }
    setTexts(client, "ModelPath_", path);
    setTexts(client, "ModelPathZID_", zids);
}

using SignalUUIDs = std::unordered_set<std::string>;

/// None when the model has no instrumented signals to look in.
std::optional<SignalUUIDs> signalUUIDs(const Model& model)
{
    const OwnedValue signals = modelSignals(model);
    if (!signals) {
        return std::nullopt;
    }
    SignalUUIDs uuids;
    const std::size_t count = elementsIn(signals.get());
    for (std::size_t i = 0; i < count; ++i) {
        uuids.insert(signalUUID(signals.get(), i));
    }
    return uuids;
}

bool isBlockGone(const nvArray* client)
{
    const std::u16string path = textInCells(client, "ModelPath_", 0);
    const std::string zid = toUtf8(textInCells(client, "ModelPathZID_", 0));
    return !(path.empty() && zid.empty()) && alignedBlock(zid, path) == nullptr;
}

bool isSignalGone(const nvArray* client, const std::optional<SignalUUIDs>& known)
{
    const std::string uuid = toUtf8(textOf(client, "SignalUUID_"));
    return known && !uuid.empty() && !known->contains(uuid);
}

}  // namespace

OwnedValue signalInfo(const nvArray* client)
{
    const std::string uuid = toUtf8(textOf(client, "SignalUUID_"));
    const std::shared_ptr<Model> model = modelOfClient(client);
    const OwnedValue signals = model != nullptr ? modelSignals(*model) : nullptr;
    if (uuid.empty() || !signals) {
        return nullptr;
    }
    OwnedValue signal = findSignal(signals.get(), uuid);
    if (signal) {
        fillCachedPort(signal.get());
    }
    return signal;
}

void getSignalInfo(HostFunctionCall& call)
{
    call.setOutput(0, signalInfo(call.input(0)));
}

void getAlignedObservers(HostFunctionCall& call)
{
    const nvArray* clients = requireClients(call.functionName(), call.input(0));
    modelOf(clients);
    std::vector<nvcos::COSInterfacePtr> aligned;
    for (std::size_t i = 0; i < elementsIn(clients); ++i) {
        if (const OwnedValue client = elementAt(clients, i)) {
            align(client.get());
            aligned.push_back(objects(client.get()).front());
        }
    }
    call.setOutput(0, ObjectAccess::makeObjectArray("Zelmar.HMI.SignalClient", aligned));
}

void validateAndRemoveUnused(HostFunctionCall& call)
{
    const nvArray* clients = requireClients(call.functionName(), call.input(0));
    const std::optional<SignalUUIDs> known = signalUUIDs(*modelOf(clients));
    for (std::size_t i = elementsIn(clients); i-- > 0;) {
        const OwnedValue client = elementAt(clients, i);
        if (client && (isBlockGone(client.get()) || isSignalGone(client.get(), known))) {
            ObjectAccess::callMethod(clients, "remove", {methodIndex(i).get()});
        }
    }
}

}  // namespace reference_host
