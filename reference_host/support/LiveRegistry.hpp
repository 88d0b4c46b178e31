#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace reference_host {

/// Keeps things that other code refers to by bare pointer: creates them, lists the live ones in the order of
/// their opening, and takes them back. Their memory is never freed. A closed thing is reused only after
/// thousands of others, so that a stale pointer is recognised. A thing has the members `serial`, `previous`
/// and `next`, which belong to the registry; the user of the registry marks live things. Main thread only.
template <class Thing>
class LiveRegistry {
public:
    /// Opens a thing at the end of the list, with the next serial number. Its other members keep the values
    /// that they had when it was closed.
    Thing* open()
    {
        Thing* thing = m_waiting > waitingBeforeReuse ? takeOldest() : takeNew();
        thing->serial = ++m_lastSerial;
        thing->next = nullptr;
        thing->previous = m_newest;
        if (m_newest != nullptr) {
            m_newest->next = thing;
        }
        m_newest = thing;
        return thing;
    }

    void close(Thing* thing) noexcept
    {
        (thing == m_newest ? m_newest : thing->next->previous) = thing->previous;
        if (thing->previous != nullptr) {
            thing->previous->next = thing->next;
        }
        thing->next = nullptr;
        (m_waiting == 0 ? m_oldestWaiting : m_newestWaiting->next) = thing;
        m_newestWaiting = thing;
        ++m_waiting;
    }

    /// The newest live thing; `previous` leads to the older ones.
    Thing* newest() const noexcept { return m_newest; }

    std::uint64_t lastSerial() const noexcept { return m_lastSerial; }

private:
    static constexpr std::size_t waitingBeforeReuse = 4096;
    static constexpr std::size_t slabSize = 1024;

    Thing* takeOldest() noexcept
    {
        --m_waiting;
        return std::exchange(m_oldestWaiting, m_oldestWaiting->next);
    }

    Thing* takeNew()
    {
        if (m_usedOfSlab == slabSize) {
            m_slabs.push_back(std::make_unique<std::vector<Thing>>(slabSize));
            m_usedOfSlab = 0;
        }
        return &(*m_slabs.back())[m_usedOfSlab++];
    }

    std::vector<std::unique_ptr<std::vector<Thing>>> m_slabs;
    std::size_t m_usedOfSlab = slabSize;
    Thing* m_newest = nullptr;
    Thing* m_oldestWaiting = nullptr;
    Thing* m_newestWaiting = nullptr;
    std::size_t m_waiting = 0;
    std::uint64_t m_lastSerial = 0;
};

}  // namespace reference_host
