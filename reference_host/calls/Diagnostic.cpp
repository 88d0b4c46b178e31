#include "reference_host/calls/Diagnostic.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/support/HostErrors.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MessageCatalog.hpp"
#include "reference_host/support/QuotedText.hpp"

#include <exception>
#include <utility>

using namespace reference_host;

namespace reference_host {

LiveRegistry<zmsvDiagnostic>& liveDiagnosticRegistry()
{
    static LiveRegistry<zmsvDiagnostic>& registry = *new LiveRegistry<zmsvDiagnostic>;
    return registry;
}

zmsvDiagnostic* openDiagnostic(DiagnosticMessage message)
{
    zmsvDiagnostic* diagnostic = liveDiagnosticRegistry().open();
    diagnostic->message = std::move(message);
    diagnostic->madeBy = CallSite::current();
    return diagnostic;
}

std::optional<DiagnosticMessage> endDiagnostic(zmsvDiagnostic* diagnostic) noexcept
{
    if (diagnostic == nullptr || !diagnostic->message) {
        return std::nullopt;
    }
    std::optional<DiagnosticMessage> message = std::move(diagnostic->message);
    diagnostic->message.reset();
    liveDiagnosticRegistry().close(diagnostic);
    return message;
}

namespace {

DiagnosticMessage hostMessage(const char* key, std::string argument)
{
    zmsvMessageId id(hostCatalog, key,
                     {std::string(CallSite::current().operationName()), std::move(argument)});
    std::string text = MessageCatalog::text(id);
    return {std::move(id), std::move(text)};
}

/// Ends a diagnostic where nothing may be thrown: one that has ended already goes to the ledger.
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

DiagnosticMessage messageInFlight()
{
    try {
        throw;
    } catch (const zmsvException& error) {
        return {error.id(), error.what()};
    } catch (const zmsvOutOfMemoryException& error) {
        return hostMessage("OutOfMemory", error.what());
    } catch (const std::bad_alloc& error) {
        return hostMessage("OutOfMemory", error.what());
    } catch (const std::exception& error) {
        return hostMessage("Exception", error.what());
    } catch (...) {
        return hostMessage("UnknownException", {});
    }
}

std::string describeDiagnostic(const zmsvDiagnostic* diagnostic)
{
    if (diagnostic == nullptr) {
        return "null";
    }
    const std::string name = "diagnostic " + std::to_string(diagnostic->serial);
    if (!diagnostic->message) {
        return name + ", which has ended";
    }
    const DiagnosticMessage& message = *diagnostic->message;
    return name + " (" + message.id.catalog() + ":" + message.id.key() + ", " + quotedText(message.text) +
           ")";
}

}  // namespace reference_host

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

// It throws on success as on failure, so a caller cannot tell them apart: the diagnostic ends in both.
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
            Warnings::report({std::move(message->id), std::move(message->text)});
        }
    });
}

void zmsvDiscardDiagnostic(zmsvDiagnostic* diagnostic) noexcept
{
    BoundaryCall call({"zmsvDiscardDiagnostic", CanFail::Never}, diagnostic);
    call.runNoThrow([&] { endQuietly(diagnostic); });
}
