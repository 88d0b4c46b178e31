#pragma once

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/calls/BoundaryWatch.hpp"
#include "reference_host/calls/CallArguments.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/support/CallSite.hpp"

#include <cstdint>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace reference_host {

/// A boundary operation: its name, how it can be made to fail, and the address of its caller, which the
/// default argument fills in. REQUIRES: constructed within the exported function.
struct Operation {
    // Not explicit: written as {"name", CanFail::Never} wherever an operation begins.
    Operation(const char* operationName, CanFail howItCanFail = CanFail::Throwing,
              const void* callingCode = __builtin_return_address(0))
        : name(operationName), canFail(howItCanFail), caller(callingCode)
    {
    }

    const char* name;
    CanFail canFail;
    const void* caller;
};

struct OpenCall;

/// The object with which every boundary operation begins:
///
///     return BoundaryCall({"nvGetScalar"}, value).run([&] { return scalar(value); });
///
/// It names the operation in errors and as the maker of values, writes the journal, and lets faults strike.
/// It costs little unless a journal or a fault watches.
class ZM_REFHOST_API BoundaryCall {
public:
    /// The arguments are for the journal.
    template <class... Arguments>
    explicit BoundaryCall(const Operation& operation, const Arguments&... arguments)
        : m_operation(operation), m_outer(CallSite::enter({operation.name, operation.caller}))
    {
        if (BoundaryWatch::isOn()) {
            try {
                begin({describeArgument(arguments)...});
            } catch (const std::exception&) {
                m_openCall = nullptr;  // the journal misses this call, but the call itself succeeds
            }
        }
    }
    BoundaryCall(const BoundaryCall&) = delete;
    BoundaryCall& operator=(const BoundaryCall&) = delete;
    ~BoundaryCall()
    {
        if (m_openCall != nullptr) {
            end();
        }
        CallSite::leave(m_outer);
    }

    /// Lets an armed fault strike, or runs the body and returns its result. The standard library's memory
    /// errors are converted to the host's.
    template <class Body>
    auto run(Body&& body) -> std::invoke_result_t<Body&>
    {
        try {
            strike();
            return answerOf(body);
        } catch (const std::bad_alloc& error) {
            failed(error.what());
        } catch (const std::length_error& error) {
            failed(error.what());
        } catch (const std::exception& error) {
            failed(error.what());
            throw;
        }
        throw zmsvOutOfMemoryException();
    }

    /// For operations and bodies that do not throw; a fault can only make them return null.
    template <class Body>
    auto runNoThrow(Body&& body) noexcept -> std::invoke_result_t<Body&>
    {
        strike();
        return answerOf(body);
    }

    /// The fault that struck, for an operation that fails in its own way. `run` itself returns null for a
    /// pointer that is to be null.
    enum class Fault : std::uint8_t { None, Null, Diagnostic };
    Fault fault() const noexcept { return m_fault; }

    /// Notes a result for the journal; only the first one counts. `run` notes the result of the body.
    template <class Result>
    void note(const Result& result) noexcept
    {
        if (m_openCall != nullptr) {
            try {
                noteText(describeArgument(result));
            } catch (const std::exception&) {
                noteText({});
            }
        }
    }

private:
    template <class Body>
    auto answerOf(Body&& body) -> std::invoke_result_t<Body&>
    {
        using Result = std::invoke_result_t<Body&>;
        if constexpr (std::is_void_v<Result>) {
            body();
        } else {
            if constexpr (std::is_pointer_v<Result>) {
                if (m_fault == Fault::Null) {
                    return nullptr;
                }
            }
            return noted(body());
        }
    }

    template <class Result>
    Result noted(Result result) noexcept
    {
        note(result);
        return result;
    }

    void strike()
    {
        if (BoundaryWatch::isOn()) {
            strikeWatched();
        }
    }
    void strikeWatched();
    void begin(std::vector<std::string> arguments);
    void end() noexcept;
    void failed(const char* what) noexcept;
    void noteText(std::string text) noexcept;

    Operation m_operation;
    CallSite m_outer;
    OpenCall* m_openCall = nullptr;  // while the journal follows this call
    Fault m_fault = Fault::None;
};

}  // namespace reference_host
