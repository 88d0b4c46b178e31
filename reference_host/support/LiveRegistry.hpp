#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace reference_host {

/// Keeps things that outside code holds by bare pointer: hands them out, lists those that are alive in
/// the order of their opening, and takes them back. Their memory is never given up, and one that was
/// taken back waits behind thousands of others before it is handed out again, so that a stale pointer
/// reads as something that has ended. Things have `serial`, `previous` and `next`, which belong to the
/// registry; whoever uses it marks what is alive. Used by the host's thread only.
template <class Thing>
class LiveRegistry {
public:
    /// A thing at the end of the list, with the next serial number. What else it holds is what it held
    /// when it was taken back.
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

    /// Where to start a walk along `previous`, from the newest to the oldest that is alive.
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
