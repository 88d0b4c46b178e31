#include "editor/SignalEditor.hpp"

#include "editor/ObserversParameter.hpp"
#include "editor/SignalsObject.hpp"
#include "hmi/HMIEngineUtils.hpp"
#include "host/Exceptions.hpp"
#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <utility>

namespace editor {

namespace rh = reference_host;
using rh::Block;
using rh::ChangeKind;
using rh::DiagramChange;
using rh::SignalRecord;

namespace {

std::vector<const Block*> withContents(const Block& block)
{
    std::vector<const Block*> all{&block};
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (const auto& child : all[i]->children()) {
            all.push_back(child.get());
        }
    }
    return all;
}

/// Whether the signal is the block's, as renumbering decides it.
class IsOn {
public:
    explicit IsOn(const Block& block) : m_handle(block.handle()), m_path(block.path()), m_zid(block.zid()) {}
    bool operator()(const SignalRecord& signal) const
    {
        return signal.cachedHandle == m_handle || signal.path == m_path || signal.zid == m_zid;
    }

private:
    double m_handle;
    std::u16string m_path;
    std::string m_zid;
};

template <class IsIt>
std::vector<std::size_t> indicesOf(const std::vector<SignalRecord>& signals, IsIt isIt)
{
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        if (isIt(signals[i])) {
            indices.push_back(i);
        }
    }
    return indices;
}

/// Binds what is bound to no handle yet, as signals that were just loaded, to the block and port that it is
/// on. The library does so when it is asked for a port by path; a signal that is renumbered before would
/// be neither bound nor unbound.
void bindUnbound(const nvArray* signals)
{
    const std::vector<SignalRecord> records = rh::readSignals(signals);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const SignalRecord& record = records[i];
        const rh::SignalPlace place =
            record.cachedPort == 0 && !record.chartObject ? rh::placeOf(record) : rh::SignalPlace();
        const rh::OwnedValue signal = place.isThere ? rh::elementAt(signals, i) : nullptr;
        if (signal) {
            rh::ObjectAccess::setProperty(signal.get(), "CachedBlockHandle_",
                                          rh::makeDouble(place.block->handle()).get());
            rh::ObjectAccess::setProperty(signal.get(), "CachedPortIdx_",
                                          rh::makeDouble(record.outputPort).get());
            rh::ObjectAccess::callMethod(signals, "isPortObserved", {signal.get()});
        }
    }
}

void renumber(const nvArray* signals, const Block& block, const std::vector<int>& newNumbers)
{
    nativeSignals(signals).renumberPorts(block.handle(), block.path(), block.zid(), newNumbers);
}

/// The UUID of a port, or a new one that is nobody's.
std::string portUUID(const Block& block, std::size_t number, bool useMap)
{
    const rh::OwnedValue handle = rh::makeDouble(block.handle());
    const auto uuid = rh::ObjectAccess::callStatic(
        rh::signalsClass, "getUUIDForBlock",
        {handle.get(), rh::methodIndex(number - 1).get(), rh::makeLogical(useMap).get()});
    return rh::utf8Text(uuid.front().get());
}

void setPortUUID(const Block& block, std::size_t number, const std::string& uuid)
{
    const rh::OwnedValue handle = rh::makeDouble(block.handle());
    rh::ObjectAccess::callStatic(rh::signalsClass, "setUUIDForBlock",
                                 {handle.get(), rh::methodIndex(number - 1).get(), rh::makeText(uuid).get()});
}

/// How many ports have UUIDs to keep: a diagram that is further on may have fewer than it had after the edit.
std::size_t portsAfter(const Block& block, const std::vector<int>& newNumbers)
{
    const auto last = std::max_element(newNumbers.begin(), newNumbers.end());
    return std::max(block.ports(rh::PortKind::Output).size(),
                    last != newNumbers.end() ? static_cast<std::size_t>(*last) : 0);
}

/// Has each port keep its UUID under its new number. Ports that are new take back the UUID which they had
/// under that number when an edit took them away. Returns the UUIDs of ports that are gone, by old number.
std::map<std::size_t, std::string> renumberUUIDs(const Block& block, const std::vector<int>& newNumbers,
                                                 const std::map<std::size_t, std::string>& former)
{
    std::vector<std::string> uuids(portsAfter(block, newNumbers));
    std::map<std::size_t, std::string> gone;
    for (std::size_t i = 0; i < newNumbers.size(); ++i) {
        std::string uuid = portUUID(block, i + 1, true);
        if (newNumbers[i] == 0) {
            gone.emplace(i + 1, std::move(uuid));
        } else {
            uuids[static_cast<std::size_t>(newNumbers[i]) - 1] = std::move(uuid);
        }
    }
    for (std::size_t i = 0; i < uuids.size(); ++i) {
        if (uuids[i].empty()) {
            const auto found = former.find(i + 1);
            uuids[i] = found != former.end() ? found->second : portUUID(block, i + 1, false);
        }
        setPortUUID(block, i + 1, uuids[i]);
    }
    return gone;
}

/// Follows changed outputs. Returns the signals of the ports that are gone.
RemovedSignals renumberSignals(const nvArray* signals, const DiagramChange& change)
{
    bindUnbound(signals);
    const auto isGone = [&numbers = change.newNumbers,
                         isOn = IsOn(*change.block)](const SignalRecord& signal) {
        const int number = signal.outputPort;
        return number >= 1 && static_cast<std::size_t>(number) <= numbers.size() &&
               numbers[static_cast<std::size_t>(number) - 1] == 0 && isOn(signal);
    };
    RemovedSignals removed(signals, indicesOf(rh::readSignals(signals), isGone));
    renumber(signals, *change.block, change.newNumbers);
    return removed;
}

/// Removes the signals of a block that is gone, with its contents.
RemovedSignals removeSignalsOf(const Block& gone, const nvArray* signals)
{
    const std::vector<const Block*> blocks = withContents(gone);
    std::vector<IsOn> isOnOne;
    isOnOne.reserve(blocks.size());
    for (const Block* block : blocks) {
        isOnOne.emplace_back(*block);
    }
    const auto isGone = [&isOnOne](const SignalRecord& signal) {
        return std::any_of(isOnOne.begin(), isOnOne.end(),
                           [&signal](const IsOn& isOn) { return isOn(signal); });
    };
    RemovedSignals removed(signals, indicesOf(rh::readSignals(signals), isGone));
    for (const Block* block : blocks) {
        renumber(signals, *block, std::vector<int>(block->ports(rh::PortKind::Output).size(), 0));
    }
    // Signals on a chart, and beyond the last port, are left.
    const std::vector<std::size_t> left = indicesOf(rh::readSignals(signals), isGone);
    for (auto index = left.rbegin(); index != left.rend(); ++index) {
        removeElement(signals, *index);
    }
    return removed;
}

/// The models that have an editor.
std::set<const rh::Model*>& editedModels()
{
    static std::set<const rh::Model*> models;
    return models;
}

[[noreturn]] void refuse(const char* key, const std::string& text)
{
    throw zmsvException(zmsvMessageId("reference_host:editor", key), text);
}

std::shared_ptr<rh::Model> claim(std::shared_ptr<rh::Model> model)
{
    if (model == nullptr) {
        refuse("InvalidModel", "An editor takes a model.");
    }
    if (!editedModels().insert(model.get()).second) {
        refuse("SecondEditor",
               "The model \"" + toUtf8(model->name()) +
                   "\" has an editor already; a second one would renumber its signals again.");
    }
    return model;
}

}  // namespace

SignalEditor::SignalEditor(std::shared_ptr<rh::Model> model)
    : m_model(claim(std::move(model))),
      m_listener(m_model->history().addListener([this](const DiagramChange& change) { follow(change); }))
{
}

SignalEditor::~SignalEditor()
{
    m_model->history().removeListener(m_listener);
    editedModels().erase(m_model.get());
}

void SignalEditor::follow(const DiagramChange& change)
{
    if (change.kind == ChangeKind::ParameterChanged) {
        zm_hmi::HMIEngineUtils::updateParamsForBlock(change.block->path());
        return;
    }
    const ObserversPair observers = readObservers(*m_model);
    const nvArray* const signals = observers.signals.get();
    const nvArray* const clients = observers.clients.get();
    switch (change.kind) {
        case ChangeKind::OutputsChanged:
            followOutputs(signals, clients, change);
            break;
        case ChangeKind::BlockAppeared: {
            const Removed removed = takeRemoved(change.edit);
            if (signals != nullptr) {
                removed.signals.putBack(signals);
            }
            removed.clients.putBack(clients);
            break;
        }
        case ChangeKind::BlockVanished:
            followVanished(signals, clients, change);
            break;
        case ChangeKind::BlockRenamed:
        case ChangeKind::BlockMoved:
            zm_hmi::InstrumentedSignals::applyRebindingRules(signals, false);
            break;
        case ChangeKind::ModelRenamed:  // the host gives a renamed model its signals under the new name
            followRename(clients, change);
            break;
        case ChangeKind::ParameterChanged:  // above
            break;
    }
}

void SignalEditor::followRename(const nvArray* clients, const DiagramChange& change)
{
    const Removed former = takeRemoved(change.edit);
    zm_hmi::StreamingClients::handleModelRename(clients);
    m_removed.insert_or_assign(change.edit, Removed{{}, RemovedClients::validate(clients)});
    former.clients.putBack(clients);
}

void SignalEditor::followVanished(const nvArray* signals, const nvArray* clients, const DiagramChange& change)
{
    Removed removed;
    if (signals != nullptr) {
        removed.signals = removeSignalsOf(*change.block, signals);
    }
    removed.clients = RemovedClients::validate(clients);
    m_removed.insert_or_assign(change.edit, std::move(removed));
}

void SignalEditor::followOutputs(const nvArray* signals, const nvArray* clients, const DiagramChange& change)
{
    const Removed former = takeRemoved(change.edit);
    Removed removed;
    if (signals != nullptr) {
        removed.signals = renumberSignals(signals, change);
    }
    removed.portUUIDs = renumberUUIDs(*change.block, change.newNumbers, former.portUUIDs);
    if (signals != nullptr) {
        former.signals.putBack(signals);
    }
    if (!removed.signals.isEmpty()) {
        removed.clients = RemovedClients::validate(clients);
    }
    former.clients.putBack(clients);
    m_removed.insert_or_assign(change.edit, std::move(removed));
}

SignalEditor::Removed SignalEditor::takeRemoved(std::uint64_t edit)
{
    auto entry = m_removed.extract(edit);
    return entry ? std::move(entry.mapped()) : Removed();
}

// ---- what the editor asks and is asked ----------------------------------------------------------------

void SignalEditor::rebind(bool removeUnbound)
{
    zm_hmi::InstrumentedSignals::applyRebindingRules(rh::modelSignals(*m_model).get(), removeUnbound);
}

void SignalEditor::redraw()
{
    if (const rh::OwnedValue signals = rh::modelSignals(*m_model)) {
        bindUnbound(signals.get());
        m_drawn.redraw(*m_model, signals.get());
    }
}

bool SignalEditor::isDrawnPortObserved(const Block& block, std::size_t number) const
{
    const rh::OwnedValue signals = rh::modelSignals(*m_model);
    return signals && m_drawn.isObserved(signals.get(), block, number);
}

std::vector<SignalEditor::Source> SignalEditor::observedPorts(const std::string& system,
                                                              const std::string& domainType,
                                                              bool atEveryDepth, bool goneToo) const
{
    std::vector<Source> sources;
    const rh::OwnedValue name = rh::makeText(m_model->name());
    zm_hmi::InstrumentedSignals::getObservedPorts(name.get(), system.c_str(), domainType.c_str(), sources,
                                                  atEveryDepth, goneToo);
    return sources;
}

std::set<double> SignalEditor::badgedBlocks() const
{
    std::set<double> handles;
    const rh::OwnedValue name = rh::makeText(m_model->name());
    zm_hmi::InstrumentedSignals::getPortsWithBadges(name.get(), handles);
    return handles;
}

std::vector<SignalEditor::Observer> SignalEditor::observers() const
{
    std::vector<zm_hmi::SignalClientPtr> aligned;
    const ObserversPair pair = readObservers(*m_model);
    if (pair.clients) {
        zm_hmi::StreamingClients::getAlignedObservers(pair.clients.get(), aligned);
    }
    const std::u16string& name = m_model->name();
    std::vector<Observer> observers;
    for (const zm_hmi::SignalClientPtr& client : aligned) {
        Observer& observer = observers.emplace_back();
        std::u16string subPath;
        observer.uuid = client->getUUID();
        client->getAlignedBlockPath(name, observer.path, subPath);
        observer.port = client->getAlignedPortIndex(name);
        observer.decimation = client->getDecimation(name);
        observer.maxPoints = client->getMaxPoints(name);
    }
    return observers;
}

}  // namespace editor
