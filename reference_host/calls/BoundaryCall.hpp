#ifndef ZM_REFERENCE_HOST_CALLS_BOUNDARY_CALL_HPP
#define ZM_REFERENCE_HOST_CALLS_BOUNDARY_CALL_HPP

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/calls/CallArguments.hpp"
#include "reference_host/calls/CallSite.hpp"
#include "reference_host/calls/Faults.hpp"

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
    // NOLINTNEXTLINE(google-explicit-constructor): written as {"name", CanFail::Never} at each use
    Operation(const char* operationName, CanFail howItCanFail = CanFail::Throwing,
              const void* callingCode = __builtin_return_address(0))
        : name(operationName), canFail(howItCanFail), caller(callingCode)
    {
    }

    const char* name;
    CanFail canFail;
    const void* caller;
};

/// The object with which every boundary operation begins:
///
///     return BoundaryCall({"nvGetScalar"}, value).run([&] { return scalar(value); });
///
/// It names the operation for errors and for what is made inside, writes the journal, and is where a
/// fault strikes. When nobody watches, it costs next to nothing. `run` turns the standard library's
/// memory errors into the host's.
class ZM_REFHOST_API BoundaryCall {
public:
    template <class... Arguments>
    explicit BoundaryCall(const Operation& operation, const Arguments&... arguments)
        : m_operation(operation), m_outer(enter({operation.name, operation.caller}))
    {
        if (s_watched.load(std::memory_order_relaxed)) {
            try {
                begin({describeArgument(arguments)...});
            } catch (...) {
                leave(m_outer);
                throw;
            }
        }
    }
    BoundaryCall(const BoundaryCall&) = delete;
    BoundaryCall& operator=(const BoundaryCall&) = delete;
    ~BoundaryCall()
    {
        if (m_entry != 0) {
            end();
        }
        leave(m_outer);
    }

    /// Lets the waiting fault strike, or runs the body and hands on its result.
    template <class Body>
    auto run(Body&& body) -> std::invoke_result_t<Body&>
    {
        using Result = std::invoke_result_t<Body&>;
        try {
            strike();
            if constexpr (std::is_void_v<Result>) {
                body();
            } else {
                if constexpr (std::is_pointer_v<Result>) {
                    if (m_fault == Fault::Null) {
                        return answer(Result{nullptr});
                    }
                }
                return answer(body());
            }
        } catch (const std::bad_alloc&) {
            failed("out of memory");
            throwOutOfMemory();
        } catch (const std::length_error&) {
            failed("out of memory");
            throwOutOfMemory();
        } catch (const std::exception& exception) {
            failed(exception.what());
            throw;
        }
    }

    /// For operations that must not throw: the body does not, and no fault strikes.
    template <class Body>
    auto runNoThrow(Body&& body) noexcept -> std::invoke_result_t<Body&>
    {
        if constexpr (std::is_void_v<std::invoke_result_t<Body&>>) {
            body();
        } else {
            return answer(body());
        }
    }

    /// What the waiting fault wants of an operation that answers in its own way.
    enum class Fault : std::uint8_t { None, Null, Diagnostic };
    Fault fault() const noexcept { return m_fault; }

    /// Notes the result for the journal and hands it on.
    template <class Result>
    Result answer(Result result) noexcept
    {
        if (m_entry != 0) {
            answered([&] { return describeArgument(result); });
        }
        return result;
    }

private:
    static CallSite enter(CallSite site) noexcept;
    static void leave(CallSite outer) noexcept;
    void begin(std::vector<std::string> arguments);
    void strike();
    void end() noexcept;
    void failed(const char* what) noexcept;
    template <class Describe>
    void answered(Describe describe) noexcept
    {
        try {
            noteResult(describe());
        } catch (const std::exception&) {
            noteResult({});  // a journal without this result is better than a failing host
        }
    }
    void noteResult(std::string result) noexcept;
    [[noreturn]] static void throwOutOfMemory();

    friend class BoundaryWatch;
    static std::atomic<bool> s_watched;

    Operation m_operation;
    CallSite m_outer;
    std::uint64_t m_entry = 0;  // the journal's number of this call; 0 when it keeps none
    Fault m_fault = Fault::None;
};

}  // namespace reference_host

#endif
