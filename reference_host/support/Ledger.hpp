#ifndef ZM_REFERENCE_HOST_SUPPORT_LEDGER_HPP
#define ZM_REFERENCE_HOST_SUPPORT_LEDGER_HPP

#include "reference_host/Export.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace reference_host {

/// How many things of one sort are open. Made by `Ledger::counter`.
class ZM_REFHOST_API LedgerCounter {
public:
    void open() noexcept { ++m_open; }
    void close() noexcept { --m_open; }

    /// Things that are open for good, as the host's own classes are; taken out of the count.
    void declareMeantToLive(std::int64_t count = 1) noexcept { m_declared += count; }

    std::int64_t undeclared() const noexcept { return m_open - m_declared; }

private:
    std::int64_t m_open = 0;
    std::int64_t m_declared = 0;
};

/// What is open and must end: values, diagnostics, blocks of memory, whatever other parts of the host
/// count; and the misuses so far. Values that a container holds end with it and are not listed.
class ZM_REFHOST_API Ledger {
public:
    /// A moment to compare with.
    struct Snapshot {
        std::uint64_t lastValue = 0;
        std::uint64_t lastDiagnostic = 0;
        std::uint64_t lastBlock = 0;
        std::size_t misuses = 0;
        std::map<std::string, std::int64_t> counters;
    };
    static Snapshot snapshot();

    /// One line for each thing that was opened after the snapshot and neither ended nor declared, the
    /// misuses since then among them. None when the ledger is closed.
    static std::vector<std::string> openSince(const Snapshot& snapshot);

    /// A page to read: live values by class and place of creation, with counts, then the rest. "nothing is
    /// open" when the ledger is closed.
    static std::string report();

    /// The number of undeclared owned values that are alive.
    static std::size_t liveValues();

    /// A value that the host or the program keeps until it ends.
    static void declareMeantToLive(nvArray* value);

    /// A counter by name ("instances", "signatures"); the same one for the same name, for good.
    static LedgerCounter& counter(const std::string& name);

    static void recordMisuse(std::string text) noexcept;
    static const std::vector<std::string>& misuses();

    /// For the end of a program: when anything undeclared is open, lists it on standard error and
    /// returns 3 in place of an exit code of 0.
    static int close(int exitCode);
};

}  // namespace reference_host

#endif
