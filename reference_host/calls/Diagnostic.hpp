#ifndef ZM_REFERENCE_HOST_CALLS_DIAGNOSTIC_HPP
#define ZM_REFERENCE_HOST_CALLS_DIAGNOSTIC_HPP

#include "host/Calls.hpp"
#include "reference_host/support/CallSite.hpp"
#include "reference_host/support/LiveRegistry.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace reference_host {

/// What a diagnostic carries.
struct DiagnosticMessage {
    zmsvMessageId id;
    std::string text;
};

}  // namespace reference_host

/// A message on its way to the user. Its memory is kept after its end, so that a handle that is used
/// again is recognised.
struct zmsvDiagnostic {
    std::optional<reference_host::DiagnosticMessage> message;  ///< none once it has ended
    std::uint64_t serial = 0;
    zmsvDiagnostic* previous = nullptr;
    zmsvDiagnostic* next = nullptr;
    reference_host::CallSite madeBy;
};

namespace reference_host {

LiveRegistry<zmsvDiagnostic>& liveDiagnosticRegistry();

zmsvDiagnostic* openDiagnostic(DiagnosticMessage message);

/// Ends a diagnostic and hands out what it carried; none when it had ended before or is null.
std::optional<DiagnosticMessage> endDiagnostic(zmsvDiagnostic* diagnostic) noexcept;

/// The message of the exception in flight; to be called inside a catch clause.
DiagnosticMessage messageInFlight();

/// `diagnostic 3 (catalog:key, "text")`, for any handle.
std::string describeDiagnostic(const zmsvDiagnostic* diagnostic);

}  // namespace reference_host

#endif
