#include "reference_host/observers/SignalRebinding.hpp"

#include "host/Text.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

namespace reference_host {

namespace {

/// A cache of the UUIDs of the output ports of blocks.
class PortUUIDs {
public:
    const std::vector<std::string>& of(const Block& block)
    {
        const auto [entry, isNew] = m_known.try_emplace(&block);
        if (isNew) {
            const OwnedValue handle = makeDouble(block.handle());
            const OwnedValue useMap = makeLogical(true);
            for (std::size_t i = 0; i < block.ports(PortKind::Output).size(); ++i) {
                const OwnedValue number = methodIndex(i);
                const auto uuid = ObjectAccess::callStatic(signalsClass, "getUUIDForBlock",
                                                           {handle.get(), number.get(), useMap.get()});
                entry->second.push_back(utf8Text(uuid.front().get()));
            }
        }
        return entry->second;
    }

private:
    std::unordered_map<const Block*, std::vector<std::string>> m_known;
};

/// The number of the first port for which it is true; 0 when there is none.
template <class List, class IsIt>
int firstNumber(const List& list, IsIt isIt)
{
    const auto found = std::find_if(list.begin(), list.end(), isIt);
    return found == list.end() ? 0 : static_cast<int>(found - list.begin()) + 1;
}

/// The signal as bound by the rules; none if no rule applies.
std::optional<SignalRecord> boundBy(const SignalRecord& signal, PortUUIDs& uuids)
{
    const SignalPlace place = placeOf(signal);
    if (place.block == nullptr || (signal.chartObject && !place.isThere)) {
        return std::nullopt;
    }
    SignalRecord bound = signal;
    bound.path = place.block->path();
    bound.zid = place.block->zid();
    if (signal.chartObject) {
        return bound;
    }
    int port = 0;
    if (!signal.uuid.empty()) {
        port = firstNumber(uuids.of(*place.block),
                           [&signal](const std::string& uuid) { return uuid == signal.uuid; });
    }
    if (port == 0 && place.isThere) {
        port = signal.outputPort;
    }
    if (port == 0 && !signal.name.empty()) {
        port = firstNumber(place.block->ports(PortKind::Output),
                           [&signal](const Port& candidate) { return candidate.name == signal.name; });
    }
    if (port == 0) {
        return std::nullopt;
    }
    bound.outputPort = port;
    bound.cachedHandle = place.block->handle();
    bound.cachedPort = port;
    return bound;
}

bool isBoundAlike(const SignalRecord& a, const SignalRecord& b)
{
    return a.path == b.path && a.zid == b.zid && a.outputPort == b.outputPort &&
           a.cachedHandle == b.cachedHandle && a.cachedPort == b.cachedPort;
}

void rebind(const nvArray* signals, std::size_t index, const SignalRecord& bound)
{
    const OwnedValue signal = elementAt(signals, index);
    if (!signal) {
        return;
    }
    const auto set = [&signal](const char* property, const OwnedValue& value) {
        ObjectAccess::setProperty(signal.get(), property, value.get());
    };
    set("BlockPath_", makeText(bound.path));
    set("ZID_", makeText(bound.zid));
    if (!bound.chartObject) {
        set("OutputPortIndex_", makeDouble(bound.outputPort));
        set("CachedBlockHandle_", makeDouble(bound.cachedHandle));
        set("CachedPortIdx_", makeDouble(bound.cachedPort));
    }
    // Passing through a host object reverses the order of a signal's domain parameters. It passes through a
    // second one, so that a model that is saved after an edit and its undo is the same as before.
    const OwnedValue between =
        ObjectAccess::construct(signalsClass, {ObjectAccess::getProperty(signals, "Model").get()});
    ObjectAccess::callMethod(between.get(), "add", {signal.get()});
    ObjectAccess::callMethod(signals, "set", {methodIndex(index).get(), elementAt(between.get(), 0).get()});
}

/// When a signal leaves a port, the collection drops the map entries of all signals on that port. Signals
/// that were bound to the port before that step, or have always been there, must be entered again.
class TakenEntries {
public:
    void note(const SignalRecord& former, std::size_t step)
    {
        m_byPath[{former.path, former.outputPort}] = step;
        m_byHandle[{former.cachedHandle, former.cachedPort}] = step;
    }

    /// Whether the entries of a signal were taken after the step.
    bool after(std::size_t step, const SignalRecord& signal) const
    {
        const auto isAfter = [step](const auto& steps, const auto& place) {
            const auto found = steps.find(place);
            return found != steps.end() && found->second > step;
        };
        return isAfter(m_byPath, std::pair(signal.path, signal.outputPort)) ||
               (signal.cachedPort != 0 &&
                isAfter(m_byHandle, std::pair(signal.cachedHandle, signal.cachedPort)));
    }

private:
    std::map<std::pair<std::u16string, int>, std::size_t> m_byPath;
    std::map<std::pair<double, int>, std::size_t> m_byHandle;
};

void reportUnbound(const SignalRecord& signal)
{
    const zmsvException shown =
        signal.chartObject
            ? diagramError("ActivityUnbound", {toUtf8(signal.path), std::uint64_t{*signal.chartObject}})
            : diagramError("SignalUnbound", {toUtf8(signal.path), std::int64_t{signal.outputPort}});
    Warnings::report({shown.id(), shown.what()});
}

/// Replaces every signal by the result of `bind`; a signal without a result is unbound.
template <class Bind>
void bindAnew(const nvArray* signals, bool removeUnbound, Bind bind)
{
    TakenEntries taken;
    std::vector<std::pair<SignalRecord, std::size_t>> kept;  // with the step that entered it
    std::size_t step = 0;
    for (SignalRecord& signal : readSignals(signals)) {
        ++step;
        std::optional<SignalRecord> bound = bind(signal);
        if (!bound) {
            reportUnbound(signal);
            if (removeUnbound) {
                ObjectAccess::callMethod(signals, "remove", {methodIndex(kept.size()).get()});
                taken.note(signal, step);
                continue;
            }
        }
        const bool isChanged = bound && !isBoundAlike(*bound, signal);
        if (isChanged) {
            rebind(signals, kept.size(), *bound);
            taken.note(signal, step);
        }
        kept.emplace_back(bound ? std::move(*bound) : std::move(signal), isChanged ? step : 0);
    }
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (taken.after(kept[i].second, kept[i].first)) {
            rebind(signals, i, kept[i].first);
        }
    }
}

}  // namespace

void rebindSignals(const nvArray* signals, bool removeUnbound)
{
    PortUUIDs uuids;
    bindAnew(signals, removeUnbound, [&uuids](const SignalRecord& signal) { return boundBy(signal, uuids); });
}

void renumberSignals(const nvArray* signals, const NewPortNumbers& newNumbers)
{
    bindAnew(signals, true, [&newNumbers](const SignalRecord& signal) -> std::optional<SignalRecord> {
        const auto numbers = newNumbers.find(placeOf(signal).block);
        const auto port = static_cast<std::size_t>(std::max(signal.outputPort, 0));
        if (signal.chartObject || numbers == newNumbers.end() || port == 0 || port > numbers->second.size()) {
            return signal;
        }
        SignalRecord renumbered = signal;
        renumbered.outputPort = numbers->second[port - 1];
        return renumbered.outputPort == 0 ? std::nullopt : std::optional(renumbered);
    });
}

void applyRebindingRules(HostFunctionCall& call)
{
    if (!isOfClass(call.input(0), signalsClass) || elementCount(call.input(0)) != 1) {
        throw diagramError("InvalidSignals", {call.functionName(), std::string(signalsClass)});
    }
    rebindSignals(call.input(0), isTrueScalar(call.input(1)));
}

}  // namespace reference_host
