#ifndef ZM_TESTS_SUPPORT_OPERATION_WALK_HPP
#define ZM_TESTS_SUPPORT_OPERATION_WALK_HPP

#include "reference_host/support/Ledger.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Runs the operations of an object again and again, each time with another failure inside: every call of the
/// host in every way that it can fail, and every allocation. A test program that uses it links
/// CountingNew.cpp.
namespace operation_walk {

/// One operation on a `Subject`: what is operated on, with everything that the operation needs. A subject has
///
///   std::string state()                    all that can be observed, as text
///   void checkLookups(const std::string&)  adds a test failure, with that text, for each wrong lookup
template <class Subject>
struct Operation {
    std::string name;

    /// Runs the operation; returns its result as text.
    std::function<std::string(Subject&)> run;

    /// The operation is exported: of memory that is short it tells by the host's exception.
    bool isExported = false;

    /// Checks what an exception leaves behind, given the state before. Without it, nothing has changed.
    /// Together with the reason: why the operation gives a weaker guarantee.
    std::function<void(Subject&, const std::string& before)> afterException{};

    /// Checks a run that met a failure and went on, with a warning or without. Without it, the state is
    /// that before or that of a run without a failure.
    std::function<void(Subject&, const std::string& result)> afterFallback{};

    /// Whether allocations fail. Not in operations that run classes of the reference host with long texts: a
    /// `std::variant` of the standard library that cannot copy its text is left without a valid index, and
    /// the process ends.
    bool isForShortMemory = true;

    /// The subject may keep values of the host afterwards: they have to be gone with it.
    bool keepsValues = false;

    /// Whether running it once more after an exception completes the work.
    bool canBeRetried = true;
};

/// One way to fail: arms the nth occasion from now; disarming tells whether it came to that.
struct Failure {
    std::string name;
    bool isAllocation;
    std::function<void(std::size_t nth)> arm;
    std::function<bool()> disarm;
};

/// A host error, short memory of the host, a diagnostic, null or no outputs from the host, short memory here.
const std::vector<Failure>& everyFailure();

struct Outcome {
    bool isThrown = false;
    std::string result;
};

/// Runs the body; catches host exceptions, and adds a test failure for any other exception.
Outcome runBody(const std::function<std::string()>& body, bool isExported, const std::string& where);

/// Adds a test failure for each value, diagnostic or object that was left open.
void expectClosed(const reference_host::Ledger::Snapshot& snapshot, const std::string& where);

/// Adds a test failure for whatever is open at its end and was not when it was made.
class ClosedAtEnd {
public:
    explicit ClosedAtEnd(std::string where) : m_where(std::move(where)) {}
    ClosedAtEnd(const ClosedAtEnd&) = delete;
    ClosedAtEnd& operator=(const ClosedAtEnd&) = delete;
    ~ClosedAtEnd() { expectClosed(m_snapshot, m_where); }

private:
    std::string m_where;
    reference_host::Ledger::Snapshot m_snapshot = reference_host::Ledger::snapshot();
};

inline constexpr std::size_t mostOccasions =
    100000;  // an operation that never gets through would walk for ever

/// Walks one operation through one way to fail. `make` makes the same subject each time. Returns how often
/// the operation failed.
template <class Subject>
std::size_t walk(const Operation<Subject>& operation, const Failure& failure,
                 const std::function<std::unique_ptr<Subject>()>& make)
{
    if (failure.isAllocation && !operation.isForShortMemory) {
        return 0;
    }
    const std::unique_ptr<Subject> reference = make();
    const std::string expectedResult = operation.run(*reference);
    const std::string expectedState = reference->state();

    for (std::size_t nth = 1; nth <= mostOccasions; ++nth) {
        const std::string where = operation.name + ", " + failure.name + " " + std::to_string(nth);
        SCOPED_TRACE(where);
        const ClosedAtEnd closed(where);
        const std::unique_ptr<Subject> subject = make();
        const std::string before = subject->state();
        const reference_host::Ledger::Snapshot snapshot = reference_host::Ledger::snapshot();
        failure.arm(nth);
        const Outcome outcome = runBody([&] { return operation.run(*subject); }, operation.isExported, where);
        const bool hasFailed = failure.disarm();
        if (!operation.keepsValues) {
            expectClosed(snapshot, where);
        }

        if (!hasFailed) {
            EXPECT_FALSE(outcome.isThrown) << "thrown without a failure: " << outcome.result;
            EXPECT_EQ(outcome.result, expectedResult);
            return nth - 1;
        }
        if (!outcome.isThrown) {
            const std::string after = subject->state();
            if (operation.afterFallback) {
                operation.afterFallback(*subject, outcome.result);
            } else {
                EXPECT_TRUE(after == before || after == expectedState) << after;
            }
            subject->checkLookups(where);
            continue;
        }
        if (operation.afterException) {
            operation.afterException(*subject, before);
        } else {
            EXPECT_EQ(subject->state(), before);
        }
        subject->checkLookups(where);
        if (operation.canBeRetried) {
            const Outcome retry = runBody([&] { return operation.run(*subject); }, true, where + ", retried");
            EXPECT_FALSE(retry.isThrown);
            EXPECT_EQ(retry.result, expectedResult) << "after a retry";
            EXPECT_EQ(subject->state(), expectedState) << "after a retry";
            subject->checkLookups(where + ", retried");
        }
    }
    ADD_FAILURE() << operation.name << " still fails after " << mostOccasions << " occasions";
    return mostOccasions;
}

}  // namespace operation_walk

#endif
