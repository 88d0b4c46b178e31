#include "reference_host/calls/Diagnostic.hpp"

#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/QuotedText.hpp"

#include <utility>

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

DiagnosticMessage hostMessage(const char* key, MessageArguments arguments = {})
{
    const zmsvException error = hostError(key, std::move(arguments));
    return {error.id(), error.what()};
}

std::vector<std::string> listOpenDiagnostics(std::uint64_t after)
{
    std::vector<std::string> lines;
    const zmsvDiagnostic* diagnostic = liveDiagnosticRegistry().newest();
    for (; diagnostic != nullptr && diagnostic->serial > after; diagnostic = diagnostic->previous) {
        lines.push_back(describeDiagnostic(diagnostic) + ", made by " + describeCallSite(diagnostic->madeBy));
    }
    return lines;
}

[[maybe_unused]] const bool isInLedger = Ledger::addAccount(
    "diagnostics", {[] { return liveDiagnosticRegistry().lastSerial(); }, listOpenDiagnostics, nullptr});

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
        return hostMessage("UnknownException");
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
