#pragma once

#include "reference_host/Export.hpp"

#include <cstdint>
#include <string>

namespace reference_host {

/// The way in which an operation is made to fail.
enum class FaultKind : std::uint8_t {
    OutOfMemory,    ///< short memory: `zmsvOutOfMemoryException`, or null where that is the answer
    HostException,  ///< a `zmsvException` with the key "InjectedFault"; a diagnostic of `zmsvFEVAL_NoThrow`
    Diagnostic,     ///< a diagnostic of `zmsvFEVAL_NoThrow`; no other operation can fail so
    Null            ///< the operation returns null, or fills no output, where that has a meaning
};

/// How a boundary operation can be made to fail. Predicates and operations that destroy something cannot.
enum class CanFail : std::uint8_t {
    Never,
    Throwing,        ///< OutOfMemory, HostException
    ThrowingOrNull,  ///< also Null
    Null,            ///< OutOfMemory and Null, which are the same to it
    HostCall,        ///< as ThrowingOrNull: Null fills no outputs
    HostCallNoThrow  ///< OutOfMemory throws; HostException and Diagnostic come back as a diagnostic; Null
};

/// Fault injection: at most one fault is armed at a time.
class ZM_REFHOST_API Faults {
public:
    static constexpr const char* anyOperation = "any operation";

    /// The `nth` call from now (1 is the next) of the operation, among the calls that can fail in this
    /// way, fails. Replaces a fault that is still waiting.
    static void arm(const std::string& operation, FaultKind kind, std::uint64_t nth);

    /// Takes back the fault; returns whether it has fired since it was armed.
    static bool disarm();

    static bool hasFired();
};

/// For `BoundaryCall`: whether the armed fault strikes this call, and how.
struct Strike {
    bool strikes = false;
    FaultKind kind = FaultKind::Null;
};
Strike nextStrike(const char* operation, CanFail canFail);

}  // namespace reference_host
