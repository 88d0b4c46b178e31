#pragma once

#include "reference_host/Export.hpp"

#include <atomic>

namespace reference_host {

/// Whether the journal or a fault watches the boundary. Boundary operations ask on every call, from any
/// thread, and skip all bookkeeping when nothing watches.
class ZM_REFHOST_API BoundaryWatch {
public:
    BoundaryWatch() = delete;

    static bool isOn() noexcept { return s_watchers.load(std::memory_order_relaxed) != 0; }

    static void watchForJournal(bool watch) { set(1U, watch); }
    static void watchForFaults(bool watch) { set(2U, watch); }

private:
    static void set(unsigned watcher, bool watch)
    {
        watch ? s_watchers.fetch_or(watcher) : s_watchers.fetch_and(~watcher);
    }

    static std::atomic<unsigned> s_watchers;
};

}  // namespace reference_host
