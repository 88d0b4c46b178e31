#pragma once

#include "reference_host/Export.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
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

/// Things of one sort that the ledger lists, such as values. The room that makes them adds the account.
struct LedgerAccount {
    std::uint64_t (*lastSerial)();  ///< of the newest thing; serial numbers grow

    /// One line for each open and undeclared thing with a higher serial number.
    std::vector<std::string> (*listOpen)(std::uint64_t after);

    /// A paragraph of `Ledger::report`, or null for the lines of `listOpen`.
    std::string (*summary)();
};

/// The host's record of what is open and must be closed: values, diagnostics, blocks of memory, and what
/// other parts of the host count; and of the misuses so far. Main thread only.
class ZM_REFHOST_API Ledger {
public:
    /// Adds an account. Always true, so that it can be called from the initialiser of a constant.
    static bool addAccount(const char* name, LedgerAccount account);

    /// A moment to compare with.
    struct Snapshot {
        std::map<std::string, std::uint64_t> lastSerials;
        std::map<std::string, std::int64_t> counters;
        std::size_t misuses = 0;
    };
    static Snapshot snapshot();

    /// One line for each thing that was opened after the snapshot and is neither closed nor declared, and
    /// for each misuse since then. Empty when the ledger is closed.
    static std::vector<std::string> openSince(const Snapshot& snapshot);

    /// A page to read: live values by class and place of creation, with counts, then the rest. "nothing is
    /// open" when the ledger is closed.
    static std::string report();

    /// A counter by name ("instances", "signatures"). The reference stays valid.
    static LedgerCounter& counter(const std::string& name);

    /// Where memory is short, the misuse is counted without its text.
    static void recordMisuse(std::string_view text) noexcept;
    static const std::vector<std::string>& misuses();

    /// For the end of a program: when anything undeclared is open, lists it on standard error and
    /// returns 3 in place of an exit code of 0.
    static int close(int exitCode);
};

}  // namespace reference_host
