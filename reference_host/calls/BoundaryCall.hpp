#ifndef ZM_REFERENCE_HOST_CALLS_BOUNDARY_CALL_HPP
#define ZM_REFERENCE_HOST_CALLS_BOUNDARY_CALL_HPP

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/calls/CallArguments.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/support/CallSite.hpp"

#include <atomic>
#include <cstdint>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace reference_host {

/// A boundary operation: its name, how it can be made to fail, and the code that called it, which is
/// filled in by itself. To be written within the exported function.
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
/// It names the operation for errors and for what is made inside, writes the journal, and is where a
/// fault strikes. When nobody watches, it costs next to nothing.
class ZM_REFHOST_API BoundaryCall {
public:
    /// The arguments are for the journal, in the order in which a reader wants them.
    template <class... Arguments>
    explicit BoundaryCall(const Operation& operation, const Arguments&... arguments)
        : m_operation(operation), m_outer(CallSite::enter({operation.name, operation.caller}))
    {
        if (isWatched()) {
            try {
                begin({describeArgument(arguments)...});
            } catch (const std::exception&) {
                m_openCall = nullptr;  // a journal without this call is better than a failing host
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

    /// Lets the waiting fault strike, or runs the body and hands on its result. The standard library's
    /// memory errors become the host's.
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

    /// What the fault that struck wants of an operation that fails in its own way. A pointer that is
    /// to be null is seen to by `run`.
    enum class Fault : std::uint8_t { None, Null, Diagnostic };
    Fault fault() const noexcept { return m_fault; }

    /// Notes a result for the journal; the first one stays. `run` does it for what the body returns.
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
    friend struct BoundaryWatch;

    static bool isWatched() noexcept { return s_watched.load(std::memory_order_relaxed); }

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
        if (isWatched()) {
            strikeWatched();
        }
    }
    void strikeWatched();
    void begin(std::vector<std::string> arguments);
    void end() noexcept;
    void failed(const char* what) noexcept;
    void noteText(std::string text) noexcept;

    static std::atomic<bool> s_watched;

    Operation m_operation;
    CallSite m_outer;
    OpenCall* m_openCall = nullptr;  // while the journal follows this call
    Fault m_fault = Fault::None;
};

}  // namespace reference_host

#endif
