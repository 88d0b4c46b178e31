#include "tests/support/FaultWalk.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/support/Ledger.hpp"

#include <gtest/gtest.h>

namespace reference_host {

namespace {

constexpr std::uint64_t mostCalls = 100000;  // a body that never gets through would walk for ever

/// The exception that the body threw; null when it returned.
std::string run(const std::function<void()>& body)
{
    try {
        body();
    } catch (const zmsvException& error) {
        return error.what();
    } catch (const zmsvOutOfMemoryException& error) {
        return error.what();
    }
    return {};
}

void expectClosed(const Ledger::Snapshot& snapshot, const std::string& where)
{
    for (const std::string& line : Ledger::openSince(snapshot)) {
        ADD_FAILURE() << where << ", left open: " << line;
    }
}

}  // namespace

std::uint64_t walkFaults(const std::string& operation, FaultKind kind, const std::function<void()>& body)
{
    for (std::uint64_t nth = 1; nth <= mostCalls; ++nth) {
        const std::string where = "with a fault in call " + std::to_string(nth) + " of " + operation;
        const Ledger::Snapshot snapshot = Ledger::snapshot();
        Faults::arm(operation, kind, nth);
        const std::string thrown = run(body);
        const bool hasFired = Faults::disarm();
        expectClosed(snapshot, where);
        if (!hasFired) {
            EXPECT_EQ(thrown, "") << "thrown without a fault, after " << nth - 1 << " calls";
            return nth - 1;
        }
    }
    ADD_FAILURE() << "still failing after " << mostCalls << " calls";
    return mostCalls;
}

}  // namespace reference_host
