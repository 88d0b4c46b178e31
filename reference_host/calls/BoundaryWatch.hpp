#ifndef ZM_REFERENCE_HOST_CALLS_BOUNDARY_WATCH_HPP
#define ZM_REFERENCE_HOST_CALLS_BOUNDARY_WATCH_HPP

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/calls/Journal.hpp"

#include <cstdint>
#include <string>
#include <vector>

// What the sources of calls/ share about watching the boundary.

namespace reference_host {

/// Whether the journal or the faults want to see every call.
struct BoundaryWatch {
    static void watchForJournal(bool watch);
    static void watchForFaults(bool watch);
};

/// A call that the journal follows, within the one that was under way when it began. Each thread has
/// its own.
struct OpenCall {
    JournalEntry entry;
    OpenCall* outer = nullptr;
    std::uint64_t place = 0;     ///< where it was recorded, counted over the whole process; 0 if it was not
    bool isLineWritten = false;  ///< an inner call has made the stream write the line without its result
};

/// Null when the journal is off.
OpenCall* beginJournalEntry(const char* operation, std::vector<std::string> arguments);
void endJournalEntry(OpenCall* call) noexcept;

/// What the waiting fault does to a call: nothing unless this is the one.
struct Strike {
    bool strikes = false;
    FaultKind kind = FaultKind::Null;
};
Strike nextStrike(const char* operation, CanFail canFail);

}  // namespace reference_host

#endif
