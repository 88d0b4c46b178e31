#include "reference_host/calls/Faults.hpp"

#include "reference_host/calls/BoundaryWatch.hpp"

#include <mutex>

namespace reference_host {

namespace {

struct FaultState {
    std::mutex mutex;
    std::string operation;
    FaultKind kind = FaultKind::OutOfMemory;
    std::uint64_t callsToGo = 0;  // 0 while no fault waits
    bool hasFired = false;
};

/// Never destroyed: libraries call the host while the process goes down.
FaultState& state()
{
    static FaultState& instance = *new FaultState;
    return instance;
}

bool canFailSo(CanFail canFail, FaultKind kind)
{
    switch (canFail) {
        case CanFail::Never:
            return false;
        case CanFail::Throwing:
            return kind == FaultKind::OutOfMemory || kind == FaultKind::HostException;
        case CanFail::ThrowingOrNull:
        case CanFail::HostCall:
            return kind != FaultKind::Diagnostic;
        case CanFail::Null:
            return kind == FaultKind::OutOfMemory || kind == FaultKind::Null;
        case CanFail::HostCallNoThrow:
            return true;
    }
    return false;
}

}  // namespace

void Faults::arm(const std::string& operation, FaultKind kind, std::uint64_t nth)
{
    const std::lock_guard lock(state().mutex);
    state().operation = operation;
    state().kind = kind;
    state().callsToGo = nth;
    state().hasFired = false;
    BoundaryWatch::watchForFaults(nth > 0);
}

bool Faults::disarm()
{
    const std::lock_guard lock(state().mutex);
    state().callsToGo = 0;
    BoundaryWatch::watchForFaults(false);
    return state().hasFired;
}

bool Faults::hasFired()
{
    const std::lock_guard lock(state().mutex);
    return state().hasFired;
}

Strike nextStrike(const char* operation, CanFail canFail)
{
    const std::lock_guard lock(state().mutex);
    const bool isMeant = state().operation == operation || state().operation == Faults::anyOperation;
    if (state().callsToGo == 0 || !isMeant || !canFailSo(canFail, state().kind)) {
        return {};
    }
    if (--state().callsToGo > 0) {
        return {};
    }
    state().hasFired = true;
    return {true, state().kind};
}

}  // namespace reference_host
