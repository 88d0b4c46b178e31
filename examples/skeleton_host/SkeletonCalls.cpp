#include "NotImplemented.hpp"
#include "host/Calls.hpp"

#include <utility>

// The operations of host/Calls.hpp. Written by contract/generate.py; yours to change.

void zmsvFEVAL(int /*outputCount*/, nvArray** /*outputs*/, int /*inputCount*/,
               const nvArray* const* /*inputs*/, const char* /*functionName*/)
{
    throwNotImplemented("zmsvFEVAL");
}

zmsvDiagnostic* zmsvFEVAL_NoThrow(int /*outputCount*/, nvArray** /*outputs*/, int /*inputCount*/,
                                  const nvArray* const* /*inputs*/, const char* /*functionName*/,
                                  bool /*flag*/, nvArray** /*exceptionSlot*/)
{
    throwNotImplemented("zmsvFEVAL_NoThrow");
}

zmsvDiagnostic* zmsvFEVAL_NoThrow(int /*outputCount*/, nvArray** /*outputs*/, int /*inputCount*/,
                                  const nvArray* const* /*inputs*/, const char* /*functionName*/,
                                  void* /*context*/, bool /*flag*/, nvArray** /*exceptionSlot*/)
{
    throwNotImplemented("zmsvFEVAL_NoThrow+context");
}

zmsvDiagnostic* zmsvCreateDiagnostic(const zmsvMessageId& /*id*/, const std::string& /*text*/)
{
    throwNotImplemented("zmsvCreateDiagnostic");
}

zmsvDiagnostic* zmsvCreateDiagnosticFromCatchClause()
{
    throwNotImplemented("zmsvCreateDiagnosticFromCatchClause");
}

void zmsvThrowIExceptionFromDiagnostic(zmsvDiagnostic* /*diagnostic*/, const char* /*context*/)
{
    throwNotImplemented("zmsvThrowIExceptionFromDiagnostic");
}

void zmsvReportAsWarning(zmsvDiagnostic* /*diagnostic*/) noexcept
{
    abortNotImplemented("zmsvReportAsWarning");
}

void zmsvDiscardDiagnostic(zmsvDiagnostic* /*diagnostic*/) noexcept
{
    abortNotImplemented("zmsvDiscardDiagnostic");
}
