#ifndef ZM_HMI_OBSERVED_PORT_MAP_HPP
#define ZM_HMI_OBSERVED_PORT_MAP_HPP

#include "hmi/ObservedPortIndex.hpp"
#include "hmi/SignalSpecification.hpp"
#include "hmi/SplitTable.hpp"
#include "host/Ports.hpp"

#include <boost/shared_ptr.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

namespace zm_hmi {

using SignalSpecificationPtr = boost::shared_ptr<SignalSpecification>;

/// The keys of a record's port, and the handle and port that the cached key is made of.
struct PortKeys {
    std::size_t byPath;
    std::size_t byHandle;
    double handle;
    int port;
};

/// The records entered under one source key, the newest first. The same record may be entered several times.
class PortEntries {
public:
    explicit PortEntries(SignalSpecificationPtr record) noexcept : m_newest(std::move(record)) {}
    PortEntries(const PortEntries& other);
    PortEntries(PortEntries&&) noexcept = default;
    PortEntries& operator=(const PortEntries&) = delete;
    PortEntries& operator=(PortEntries&&) noexcept = default;
    ~PortEntries() = default;

    /// Strong guarantee.
    void push(const SignalSpecificationPtr& record);

    /// The newest record for which `matches` is true, or null.
    template <class Matches>
    const SignalSpecificationPtr* find(Matches matches) const
    {
        if (matches(*m_newest)) {
            return &m_newest;
        }
        if (m_older) {
            for (auto record = m_older->rbegin(); record != m_older->rend(); ++record) {
                if (matches(**record)) {
                    return &*record;
                }
            }
        }
        return nullptr;
    }

    /// Erases the matches, but for the `kept` newest records. Returns how many. When all are erased, the
    /// object is empty, and is to be destroyed.
    template <class Matches>
    std::size_t eraseIf(std::size_t kept, Matches matches) noexcept
    {
        std::size_t erased = 0;
        if (m_older) {
            const auto end = m_older->end() - static_cast<std::ptrdiff_t>(kept == 0 ? 0 : kept - 1);
            const auto from =
                std::remove_if(m_older->begin(), end, [&](const auto& record) { return matches(*record); });
            erased = static_cast<std::size_t>(end - from);
            m_older->erase(from, end);
        }
        if (kept == 0 && matches(*m_newest)) {
            pop();
            ++erased;
        }
        return erased;
    }

    /// Erases the newest record.
    void pop() noexcept;

    bool isEmpty() const noexcept { return !m_newest; }

    template <class Action>
    void forEach(Action action) const
    {
        find([&](const SignalSpecification& record) {
            action(record);
            return false;
        });
    }

private:
    SignalSpecificationPtr m_newest;
    std::unique_ptr<std::vector<SignalSpecificationPtr>>
        m_older;  // the oldest first; null when there is none
};

/// Which ports are observed: a multimap from source keys to the records that `InstrumentedSignals`, its
/// owner, has entered, each under its non-cached key and, once it has a cached port, under its cached key
/// too; never under the key 0. Beside it, the index for queries by handle and port, and the editor's port
/// cache.
///
/// Invariants: an entry refers to the very record that was entered. Later changes of the record do not move
/// its entries; the index is exact, or it is known not to be. The port cache is empty or was filled after the
/// last change of the entries. Operations that change something either complete or change nothing.
class ObservedPortMap {
public:
    bool isEmpty() const noexcept { return m_entryCount == 0; }
    void reserve(std::size_t recordCount);

    /// Enters a record under both keys, as the newest. Handle and port may be those that it is about to get.
    void enter(const SignalSpecificationPtr& record, const PortKeys& keys);

    /// Erases every entry, whichever record it refers to, under the non-cached key with the same output port
    /// and block path as `removed`, and under its cached key with the same handle and port.
    void erase(const SignalSpecification& removed, const PortKeys& keys) noexcept;

    /// Enters `added` and erases what `erase(replaced)` would have erased before.
    void replace(const SignalSpecification& replaced, const PortKeys& replacedKeys,
                 const SignalSpecificationPtr& added, const PortKeys& addedKeys);

    /// Takes the entries of a map that was built aside. The port cache stays when that map is empty.
    void takeEntries(ObservedPortMap&& rebuilt) noexcept;

    /// Copies the entries alone.
    void copyEntries(const ObservedPortMap& other);

    /// Sets handle and port of a record, having entered it with them.
    void setCachedInfo(SignalSpecification& record, double handle, int port) noexcept;

    /// The change of records about to be made by `change` is known to this map: its entries are made for it.
    template <class Change>
    void acceptChange(Change change) noexcept
    {
        const bool wasExact = m_index.isExact();
        change();
        if (wasExact) {
            m_index.acceptChanges();
        }
    }

    /// True when an entry under the cached key of the two has this handle and port. One look-up in the
    /// index; allocates nothing, except to make the index exact again.
    bool isObserved(double handle, int port) const
    {
        return m_index.isExact() ? m_index.contains(handle, port) : isObservedByEntries(handle, port);
    }

    /// The newest record under a key for which `matches` is true, or null.
    template <class Matches>
    const SignalSpecificationPtr* find(std::size_t key, Matches matches) const
    {
        const auto& part = m_entries.partOf(key);
        const auto found = part.find(key);
        return found == part.end() ? nullptr : found->second.find(matches);
    }

    // ---- port cache ----

    void cachePorts(const std::vector<zmPort*>& ports);
    bool isPortCached(const zmPort* port) const { return m_cachedPorts.contains(port); }
    void forgetPortCache() noexcept;

private:
    struct KeyIsHash {
        using is_avalanching = void;  // keys are hashes
        std::size_t operator()(std::size_t key) const noexcept { return key; }
    };
    using Entries = SplitTable<boost::unordered_flat_map<std::size_t, PortEntries, KeyIsHash>>;

    void push(std::size_t key, const SignalSpecificationPtr& record);
    void pop(std::size_t key) noexcept;
    template <class Matches>
    void eraseUnderKey(std::size_t key, std::size_t kept, Matches matches) noexcept;
    void erase(const SignalSpecification& removed, const PortKeys& keys, const PortKeys& kept) noexcept;
    bool hasAnswer(double handle, int port) const;
    bool isObservedByEntries(double handle, int port) const;
    void dropWithoutAnswer(double handle, int port) noexcept;
    void makeIndex() const noexcept;

    Entries m_entries;
    std::size_t m_entryCount = 0;
    mutable ObservedPortIndex m_index;
    mutable std::size_t m_slowQueries = 0;  // since the index is not exact
    std::unordered_set<const zmPort*> m_cachedPorts;
};

}  // namespace zm_hmi

#endif
