#pragma once

#include "host/Calls.hpp"
#include "reference_host/support/CallSite.hpp"
#include "reference_host/support/LiveRegistry.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace reference_host {

/// The message of a diagnostic or a warning.
struct DiagnosticMessage {
    zmsvMessageId id;
    std::string text;
};

}  // namespace reference_host

/// A message on its way to the user. Its memory is kept after it has ended, so that a stale handle is
/// recognised.
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

/// Ends a diagnostic and returns its message; none when it had ended before or is null.
std::optional<DiagnosticMessage> endDiagnostic(zmsvDiagnostic* diagnostic) noexcept;

/// The message of the exception in flight; to be called inside a catch clause.
DiagnosticMessage messageInFlight();

/// `diagnostic 3 (catalog:key, "text")`, for any handle.
std::string describeDiagnostic(const zmsvDiagnostic* diagnostic);

}  // namespace reference_host
