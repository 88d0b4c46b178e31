#include "host/Calls.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/calls/Diagnostic.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/MessageCatalog.hpp"

#include <exception>
#include <utility>

using namespace reference_host;

namespace {

/// Ends a diagnostic in an operation that cannot fail. One that has ended before is recorded as a misuse.
std::optional<DiagnosticMessage> endQuietly(zmsvDiagnostic* diagnostic) noexcept
{
    std::optional<DiagnosticMessage> message = endDiagnostic(diagnostic);
    if (!message && diagnostic != nullptr) {
        try {
            throwMisuse("DiagnosticHasEnded");
        } catch (const std::exception&) {
            return std::nullopt;  // recorded
        }
    }
    return message;
}

}  // namespace

zmsvDiagnostic* zmsvCreateDiagnostic(const zmsvMessageId& id, const std::string& text)
{
    return BoundaryCall({"zmsvCreateDiagnostic"}, id, text).run([&] {
        return openDiagnostic({id, text.empty() ? MessageCatalog::text(id) : text});
    });
}

zmsvDiagnostic* zmsvCreateDiagnosticFromCatchClause()
{
    return BoundaryCall(Operation{"zmsvCreateDiagnosticFromCatchClause"}).run([] {
        if (!std::current_exception()) {
            throwHostError("NothingInFlight");
        }
        return openDiagnostic(messageInFlight());
    });
}

// Throws on success and on failure, which the caller cannot distinguish: the diagnostic ends in both cases.
void zmsvThrowIExceptionFromDiagnostic(zmsvDiagnostic* diagnostic, const char* context)
{
    BoundaryCall call({"zmsvThrowIExceptionFromDiagnostic"}, diagnostic, context);
    std::optional<DiagnosticMessage> message = endDiagnostic(diagnostic);
    call.run([&] {
        requirePointer(diagnostic);
        if (!message) {
            throwMisuse("DiagnosticHasEnded");
        }
        const std::string prefix = context != nullptr ? std::string(context) + ": " : std::string();
        throw zmsvException(std::move(message->id), prefix + message->text);
    });
}

void zmsvReportAsWarning(zmsvDiagnostic* diagnostic) noexcept
{
    BoundaryCall call({"zmsvReportAsWarning", CanFail::Never}, diagnostic);
    call.runNoThrow([&] {
        if (std::optional<DiagnosticMessage> message = endQuietly(diagnostic)) {
            try {
                Warnings::report({std::move(message->id), std::move(message->text)});
            } catch (const std::bad_alloc&) {
                return;  // the warning is lost: there is no memory to keep it
            }
        }
    });
}

void zmsvDiscardDiagnostic(zmsvDiagnostic* diagnostic) noexcept
{
    BoundaryCall call({"zmsvDiscardDiagnostic", CanFail::Never}, diagnostic);
    call.runNoThrow([&] { endQuietly(diagnostic); });
}
