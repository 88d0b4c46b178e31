#include "reference_host/calls/BoundaryCall.hpp"

#include "reference_host/calls/Journal.hpp"
#include "reference_host/support/ErrorCatalog.hpp"

#include <utility>

namespace reference_host {

std::atomic<unsigned> BoundaryWatch::s_watchers{0};

void BoundaryCall::begin(std::vector<std::string> arguments)
{
    m_openCall = beginJournalEntry(m_operation.name, std::move(arguments));
}

void BoundaryCall::end() noexcept
{
    endJournalEntry(m_openCall);
}

void BoundaryCall::failed(const char* what) noexcept
{
    if (m_openCall != nullptr) {
        try {
            m_openCall->entry.result = std::string("threw: ") + what;
        } catch (const std::exception&) {
            m_openCall->entry.result = "threw";
        }
    }
}

void BoundaryCall::noteText(std::string text) noexcept
{
    if (m_openCall->entry.result.empty()) {
        m_openCall->entry.result = std::move(text);
    }
}

void BoundaryCall::strikeWatched()
{
    const Strike strike = nextStrike(m_operation.name, m_operation.canFail);
    if (!strike.strikes) {
        return;
    }
    const bool isNoThrowCall = m_operation.canFail == CanFail::HostCallNoThrow;
    if (m_operation.canFail == CanFail::Null || strike.kind == FaultKind::Null) {
        m_fault = Fault::Null;
        note("null, because of a fault");
    } else if (strike.kind == FaultKind::OutOfMemory) {
        throw zmsvOutOfMemoryException();
    } else if (isNoThrowCall) {
        m_fault = Fault::Diagnostic;
    } else {
        throwHostError("InjectedFault");
    }
}

}  // namespace reference_host
