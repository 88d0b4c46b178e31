#ifndef ZM_HOST_CALLS_HPP
#define ZM_HOST_CALLS_HPP

#include "host/Array.hpp"
#include "host/Exceptions.hpp"

#include <string>

/// An opaque handle to a message on its way to the user: id, text and cause. Null stands for "no
/// diagnostic". Every other handle ends exactly once, in `zmsvReportAsWarning`,
/// `zmsvThrowIExceptionFromDiagnostic` or `zmsvDiscardDiagnostic`.
struct zmsvDiagnostic;

// ---- calling host functions by name -------------------------------------------------------------

/// [owned: outputs] [throws] Calls a host function, a static method or a class constructor by its full
/// name. `outputs` has `outputCount` slots, which the caller sets to null; each is filled with an
/// owned value or, where the function gave none, stays null. `inputs` stay the caller's. Whatever the
/// called function throws passes through; slots filled before that are the caller's to destroy.
ZM_HOST_API void zmsvFEVAL(int outputCount, nvArray** outputs, int inputCount, const nvArray* const* inputs,
                           const char* functionName);

/// [owned: outputs, result] [throws] As `zmsvFEVAL`, but a failure of the called function comes back as a
/// diagnostic; null on success. The library passes true for `flag` and no exception slot. Only short
/// memory at the call itself still throws.
ZM_HOST_API zmsvDiagnostic* zmsvFEVAL_NoThrow(int outputCount, nvArray** outputs, int inputCount,
                                              const nvArray* const* inputs, const char* functionName,
                                              bool flag, nvArray** exceptionSlot = nullptr);

/// [owned: outputs, result] [throws] As above with an opaque context, which may be null.
ZM_HOST_API zmsvDiagnostic* zmsvFEVAL_NoThrow(int outputCount, nvArray** outputs, int inputCount,
                                              const nvArray* const* inputs, const char* functionName,
                                              void* context, bool flag, nvArray** exceptionSlot = nullptr);

// ---- diagnostics --------------------------------------------------------------------------------

/// [owned] [throws] A diagnostic from a message id. An empty text asks for the catalog's own.
ZM_HOST_API zmsvDiagnostic* zmsvCreateDiagnostic(const zmsvMessageId& id, const std::string& text);

/// [owned] [throws] Called inside a catch clause: a diagnostic from the exception in flight, whatever
/// its type.
ZM_HOST_API zmsvDiagnostic* zmsvCreateDiagnosticFromCatchClause();

/// [consumed: diagnostic] [throws] Throws the diagnostic as a `zmsvException`; never returns. The
/// context text may be null. (Not declared noreturn: the caller guards against a host that returns.)
ZM_HOST_API void zmsvThrowIExceptionFromDiagnostic(zmsvDiagnostic* diagnostic, const char* context);

/// [consumed: diagnostic] [no-throw] Shows the diagnostic to the user as a warning.
ZM_HOST_API void zmsvReportAsWarning(zmsvDiagnostic* diagnostic) noexcept;

/// [consumed: diagnostic] [no-throw] Ends the diagnostic without showing it.
ZM_HOST_API void zmsvDiscardDiagnostic(zmsvDiagnostic* diagnostic) noexcept;

#endif
