#include "tests/support/OperationWalk.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "tests/support/CountingNew.hpp"

#include <new>

namespace operation_walk {

namespace rh = reference_host;

namespace {

Failure hostFailure(const char* name, rh::FaultKind kind)
{
    return {name, false, [kind](std::size_t nth) { rh::Faults::arm(rh::Faults::anyOperation, kind, nth); },
            [] {
                const bool hasFired = rh::Faults::disarm();
                rh::Warnings::clear();
                return hasFired;
            }};
}

Failure allocationFailure()
{
    return {"allocation", true, [](std::size_t nth) { counting_new::failAllocation(nth); },
            [] {
                const bool hasFailed = counting_new::hasFailed();
                counting_new::failAllocation(0);
                rh::Warnings::clear();
                return hasFailed;
            }};
}

}  // namespace

const std::vector<Failure>& everyFailure()
{
    static const std::vector<Failure> failures = {
        hostFailure("host error", rh::FaultKind::HostException),
        hostFailure("short memory of the host", rh::FaultKind::OutOfMemory),
        hostFailure("diagnostic", rh::FaultKind::Diagnostic),
        hostFailure("null", rh::FaultKind::Null),
        allocationFailure(),
    };
    return failures;
}

Outcome runBody(const std::function<std::string()>& body, bool isExported, const std::string& where)
{
    try {
        return {false, body()};
    } catch (const zmsvException& error) {
        return {true, error.what()};
    } catch (const zmsvOutOfMemoryException& error) {
        return {true, error.what()};
    } catch (const std::bad_alloc& error) {
        EXPECT_FALSE(isExported) << where << ": std::bad_alloc leaves an exported operation";
        return {true, error.what()};
    } catch (const std::exception& error) {
        ADD_FAILURE() << where << ": " << error.what();
        return {true, error.what()};
    }
}

void expectClosed(const rh::Ledger::Snapshot& snapshot, const std::string& where)
{
    for (const std::string& line : rh::Ledger::openSince(snapshot)) {
        ADD_FAILURE() << where << ", left open: " << line;
    }
}

}  // namespace operation_walk
