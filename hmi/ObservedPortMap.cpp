#include "hmi/ObservedPortMap.hpp"

#include <array>
#include <limits>
#include <new>

namespace zm_hmi {

// ---- the records under one key ------------------------------------------------------------------

PortEntries::PortEntries(const PortEntries& other) : m_newest(other.m_newest)
{
    if (other.m_older) {
        m_older = std::make_unique<std::vector<SignalSpecificationPtr>>(*other.m_older);
    }
}

void PortEntries::push(const SignalSpecificationPtr& record)
{
    if (!m_older) {
        m_older = std::make_unique<std::vector<SignalSpecificationPtr>>();
    }
    m_older->push_back(m_newest);
    m_newest = record;
}

void PortEntries::pop() noexcept
{
    m_newest.reset();
    if (m_older && !m_older->empty()) {
        m_newest = std::move(m_older->back());
        m_older->pop_back();
    }
}

// ---- entering -----------------------------------------------------------------------------------

namespace {

/// Calls `action` for each pair of handle and port whose query is answered by an entry under `key` of a
/// record with this handle and port. Usually that is none or one. The zeros are equal but have different
/// keys. The key of a path can happen to be that of a handle, too.
template <class Action>
void forEachAnswer(std::size_t key, double handle, int port, std::size_t byHandle, Action action)
{
    if (handle == 0.0) {
        for (const double zero : {0.0, -0.0}) {
            if (SignalSpecification::getCachedInfoHash(zero, port) == key) {
                action(zero);
            }
        }
    } else if (key == byHandle && handle == handle) {  // a NaN is not equal to itself: no query finds it
        action(handle);
    }
}

}  // namespace

void ObservedPortMap::reserve(std::size_t recordCount)
{
    m_entries.reserve(2 * recordCount);
    m_index.reserve(recordCount);
}

void ObservedPortMap::push(std::size_t key, const SignalSpecificationPtr& record)
{
    const auto [slot, isNew] = m_entries.partOf(key).try_emplace(key, record);
    if (!isNew) {
        slot->second.push(record);
    }
    ++m_entryCount;
}

void ObservedPortMap::pop(std::size_t key) noexcept
{
    auto& part = m_entries.partOf(key);
    const auto slot = part.find(key);
    slot->second.pop();
    if (slot->second.isEmpty()) {
        part.erase(slot);
    }
    --m_entryCount;
}

void ObservedPortMap::enter(const SignalSpecificationPtr& record, const PortKeys& keys)
{
    const std::array<std::size_t, 2> under = {keys.byPath, keys.port != 0 ? keys.byHandle : 0};
    std::size_t entered = 0;
    try {
        if (isEmpty()) {
            m_index.clear();
            m_index.acceptChanges();
        }
        for (; entered < under.size(); ++entered) {
            const std::size_t key = under[entered];
            if (key == 0) {
                continue;
            }
            forEachAnswer(key, keys.handle, keys.port, keys.byHandle,
                          [&](double handle) { m_index.insert(handle, keys.port); });
            push(key, record);
            record->markEntered();
        }
    } catch (...) {
        while (entered-- > 0) {
            if (under[entered] != 0) {
                pop(under[entered]);
            }
        }
        m_index.distrust();
        throw;
    }
    if (under[0] != 0 || under[1] != 0) {
        forgetPortCache();
    }
}

// ---- erasing ------------------------------------------------------------------------------------

template <class Matches>
void ObservedPortMap::eraseUnderKey(std::size_t key, std::size_t kept, Matches matches) noexcept
{
    auto& part = m_entries.partOf(key);
    const auto slot = part.find(key);
    if (slot == part.end()) {
        return;
    }
    const std::size_t erased = slot->second.eraseIf(kept, matches);
    if (slot->second.isEmpty()) {
        part.erase(slot);
    }
    m_entryCount -= erased;
    if (erased != 0) {
        forgetPortCache();
    }
}

void ObservedPortMap::erase(const SignalSpecification& removed, const PortKeys& keys) noexcept
{
    erase(removed, keys, PortKeys{});
}

void ObservedPortMap::replace(const SignalSpecification& replaced, const PortKeys& replacedKeys,
                              const SignalSpecificationPtr& added, const PortKeys& addedKeys)
{
    enter(added, addedKeys);
    erase(replaced, replacedKeys, addedKeys);
}

// `kept`: the keys of the record that was entered last, whose entries are not to be erased.
void ObservedPortMap::erase(const SignalSpecification& removed, const PortKeys& keys,
                            const PortKeys& kept) noexcept
{
    const auto keptUnder = [&](std::size_t key) -> std::size_t {
        return (kept.byPath == key ? 1U : 0U) + (kept.port != 0 && kept.byHandle == key ? 1U : 0U);
    };
    eraseUnderKey(keys.byPath, keptUnder(keys.byPath), [&](const SignalSpecification& entry) {
        const bool matches = entry.getOutputPortIndex() == removed.getOutputPortIndex() &&
                             entry.getBlockPath() == removed.getBlockPath();
        if (matches) {
            // The key of a path that is that of a handle, too: another entry may answer for the same handle.
            forEachAnswer(keys.byPath, entry.getCachedBlockHandle(), entry.getCachedPortIdx(),
                          entry.getSourceKeyCached(), [&](double /*handle*/) { m_index.distrust(); });
        }
        return matches;
    });
    eraseUnderKey(keys.byHandle, keptUnder(keys.byHandle), [&](const SignalSpecification& entry) {
        return entry.getCachedPortIdx() == removed.getCachedPortIdx() &&
               entry.getCachedBlockHandle() == removed.getCachedBlockHandle();
    });
    dropWithoutAnswer(removed.getCachedBlockHandle(), removed.getCachedPortIdx());
}

void ObservedPortMap::takeEntries(ObservedPortMap&& rebuilt) noexcept
{
    std::swap(m_entries, rebuilt.m_entries);
    std::swap(m_entryCount, rebuilt.m_entryCount);
    std::swap(m_index, rebuilt.m_index);
    if (!isEmpty()) {
        forgetPortCache();
    }
}

void ObservedPortMap::copyEntries(const ObservedPortMap& other)
{
    ObservedPortMap copied;
    copied.m_entries = other.m_entries;
    copied.m_entryCount = other.m_entryCount;
    copied.m_index = other.m_index;
    std::swap(m_entries, copied.m_entries);
    std::swap(m_entryCount, copied.m_entryCount);
    std::swap(m_index, copied.m_index);
}

// ---- queries by handle and port -----------------------------------------------------------------

bool ObservedPortMap::hasAnswer(double handle, int port) const
{
    return find(SignalSpecification::getCachedInfoHash(handle, port), [&](const SignalSpecification& record) {
               return record.getCachedPortIdx() == port && record.getCachedBlockHandle() == handle;
           }) != nullptr;
}

// After a change of records elsewhere. The index is made anew only when so many queries were slow that making
// it costs less than they did.
bool ObservedPortMap::isObservedByEntries(double handle, int port) const
{
    if (++m_slowQueries > m_entryCount) {
        makeIndex();
    }
    return hasAnswer(handle, port);
}

void ObservedPortMap::makeIndex() const noexcept
try {
    m_slowQueries = 0;
    ObservedPortIndex index;
    m_entries.forEach([&](const auto& slot) {
        slot.second.forEach([&](const SignalSpecification& record) {
            forEachAnswer(slot.first, record.getCachedBlockHandle(), record.getCachedPortIdx(),
                          record.getSourceKeyCached(),
                          [&](double handle) { index.insert(handle, record.getCachedPortIdx()); });
        });
    });
    index.acceptChanges();
    m_index = std::move(index);
} catch (const std::bad_alloc&) {
    m_index.distrust();  // queries stay slow until there is memory
}

void ObservedPortMap::dropWithoutAnswer(double handle, int port) noexcept
{
    for (const double each : {handle, -handle}) {
        if ((each == handle) && m_index.contains(each, port) && !hasAnswer(each, port)) {
            m_index.erase(each, port);
        }
    }
}

void ObservedPortMap::setCachedInfo(SignalSpecification& record, double handle, int port) noexcept
{
    const double oldHandle = record.getCachedBlockHandle();
    const int oldPort = record.getCachedPortIdx();
    acceptChange([&] { record.setCachedInfo(handle, port); });
    dropWithoutAnswer(oldHandle, oldPort);
    if (handle == 0.0) {
        m_index.distrust();  // an older entry of the record may answer for the zero of the other sign
    }
}

// ---- port cache ---------------------------------------------------------------------------------

void ObservedPortMap::cachePorts(const std::vector<zmPort*>& ports)
{
    std::unordered_set<const zmPort*> cached(ports.begin(), ports.end());
    m_cachedPorts.swap(cached);
}

void ObservedPortMap::forgetPortCache() noexcept
{
    // Clearing a set costs its buckets even when it is empty.
    if (!m_cachedPorts.empty()) {
        m_cachedPorts.clear();
    }
}

}  // namespace zm_hmi
