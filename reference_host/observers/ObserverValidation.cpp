#include "reference_host/observers/ObserverValidation.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/observers/SignalRecords.hpp"

#include <optional>
#include <unordered_set>

namespace reference_host {

namespace {

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
