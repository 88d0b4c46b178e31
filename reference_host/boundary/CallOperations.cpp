#include "host/Calls.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/calls/Diagnostic.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <span>
#include <utility>

using namespace reference_host;

namespace {

/// The arguments that all forms share.
struct HostCallArguments {
    int outputCount;
    nvArray** outputs;
    int inputCount;
    const nvArray* const* inputs;
    const char* functionName;
    void* context;
};

std::size_t requireCount(int count, const void* list)
{
    if (count < 0) {
        throwHostError("NegativeCount", {std::int64_t{count}});
    }
    requirePointer(list, static_cast<std::size_t>(count));
    return static_cast<std::size_t>(count);
}

void callFunction(const HostCallArguments& arguments)
{
    requirePointer(arguments.functionName);
    const std::size_t inputCount = requireCount(arguments.inputCount, arguments.inputs);
    const std::size_t outputCount = requireCount(arguments.outputCount, arguments.outputs);
    HostFunctions::call(arguments.functionName, {arguments.inputs, inputCount},
                        std::span<nvArray*>(arguments.outputs, outputCount), arguments.context);
}

ValueList inputList(const HostCallArguments& arguments)
{
    return {arguments.inputs, arguments.inputCount};
}

ValueList outputList(const HostCallArguments& arguments)
{
    return {arguments.outputs, arguments.outputCount};
}

/// The raised exception as a value: a struct of its id and its text.
OwnedValue exceptionValue(const DiagnosticMessage& message)
{
    OwnedValue value = makeStruct(Dimensions(1, 1), {"identifier", "message"});
    setField(value.get(), 0, "identifier", makeText(message.id.catalog() + ":" + message.id.key()));
    setField(value.get(), 0, "message", makeText(message.text));
    return value;
}

zmsvDiagnostic* diagnosticOf(DiagnosticMessage message, nvArray** exceptionSlot)
{
    OwnedValue exception = exceptionSlot != nullptr ? exceptionValue(message) : nullptr;
    zmsvDiagnostic* diagnostic = openDiagnostic(std::move(message));
    if (exceptionSlot != nullptr) {
        *exceptionSlot = exception.release();
    }
    return diagnostic;
}

zmsvDiagnostic* callNoThrow(const Operation& operation, const HostCallArguments& arguments, bool flag,
                            nvArray** exceptionSlot)
{
    BoundaryCall call(operation, arguments.functionName, inputList(arguments), arguments.outputCount, flag);
    return call.run([&]() -> zmsvDiagnostic* {
        try {
            if (call.fault() == BoundaryCall::Fault::Diagnostic) {
                throwHostError("InjectedFault");
            }
            callFunction(arguments);
        } catch (...) {  // a failure of whatever type comes back as a diagnostic
            return diagnosticOf(messageInFlight(), exceptionSlot);
        }
        call.note(outputList(arguments));
        return nullptr;
    });
}

}  // namespace

void zmsvFEVAL(int outputCount, nvArray** outputs, int inputCount, const nvArray* const* inputs,
               const char* functionName)
{
    const HostCallArguments arguments{outputCount, outputs, inputCount, inputs, functionName, nullptr};
    BoundaryCall call({"zmsvFEVAL", CanFail::HostCall}, functionName, inputList(arguments), outputCount);
    call.run([&] {
        if (call.fault() != BoundaryCall::Fault::Null) {
            callFunction(arguments);
            call.note(outputList(arguments));
        }
    });
}

zmsvDiagnostic* zmsvFEVAL_NoThrow(int outputCount, nvArray** outputs, int inputCount,
                                  const nvArray* const* inputs, const char* functionName, bool flag,
                                  nvArray** exceptionSlot)
{
    return callNoThrow({"zmsvFEVAL_NoThrow", CanFail::HostCallNoThrow},
                       {outputCount, outputs, inputCount, inputs, functionName, nullptr}, flag,
                       exceptionSlot);
}

zmsvDiagnostic* zmsvFEVAL_NoThrow(int outputCount, nvArray** outputs, int inputCount,
                                  const nvArray* const* inputs, const char* functionName, void* context,
                                  bool flag, nvArray** exceptionSlot)
{
    return callNoThrow({"zmsvFEVAL_NoThrow", CanFail::HostCallNoThrow},
                       {outputCount, outputs, inputCount, inputs, functionName, context}, flag,
                       exceptionSlot);
}
