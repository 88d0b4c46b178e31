#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace reference_host {

/// One call of a host function, as the function sees it.
class ZM_REFHOST_API HostFunctionCall {
public:
    HostFunctionCall(const std::string& name, std::span<const nvArray* const> inputs,
                     std::span<nvArray*> outputs, void* context);

    const std::string& functionName() const noexcept { return m_name; }

    /// Borrowed, and lent to the function for the time of the call.
    std::span<const nvArray* const> inputs() const noexcept { return m_inputs; }

    /// Input `index`; a host error when the caller passed fewer.
    const nvArray* input(std::size_t index) const;

    /// The number of outputs that the caller asked for.
    std::size_t outputCount() const noexcept { return m_outputs.size(); }

    /// Fills the caller's slot at once and destroys the former value of this call. An output that the caller
    /// did not ask for is destroyed.
    void setOutput(std::size_t index, OwnedValue value);

    /// An opaque pointer that the caller passed for the function; may be null.
    void* context() const noexcept { return m_context; }

private:
    const std::string& m_name;
    std::span<const nvArray* const> m_inputs;
    std::span<nvArray*> m_outputs;
    void* m_context;
};

/// The body of a host function. It fails by throwing.
using HostFunction = std::function<void(HostFunctionCall&)>;

/// The functions that `zmsvFEVAL` and `zmsvFEVAL_NoThrow` call, by full name.
class ZM_REFHOST_API HostFunctions {
public:
    /// A name that is defined already is a host error.
    static void define(const std::string& name, HostFunction function);

    /// Defines or redefines; returns the former function, empty when there was none.
    static HostFunction replace(const std::string& name, HostFunction function);

    /// Returns whether there was such a function.
    static bool remove(const std::string& name);

    /// Whether the name is in the table or the resolver knows it.
    static bool isDefined(const std::string& name);

    static std::vector<std::string> names();

    /// Answers for names that are not in the table; an empty function means that it does not know.
    using Resolver = std::function<HostFunction(const std::string& name)>;
    static void setResolver(Resolver resolver);

    /// Calls from host code. The result has `outputCount` entries, null where the function gave none.
    /// Exceptions of the function pass through; an unknown name is a host error.
    static std::vector<OwnedValue> call(const std::string& name, std::span<const nvArray* const> inputs,
                                        std::size_t outputCount, void* context = nullptr);

    /// As above into the caller's slots, which are null; those filled before a failure stay filled.
    static void call(const std::string& name, std::span<const nvArray* const> inputs,
                     std::span<nvArray*> outputs, void* context);
};

/// Defines or redefines a host function for the time of the block.
class ZM_REFHOST_API ScopedHostFunction {
public:
    ScopedHostFunction(std::string name, HostFunction function);
    ScopedHostFunction(const ScopedHostFunction&) = delete;
    ScopedHostFunction& operator=(const ScopedHostFunction&) = delete;
    ~ScopedHostFunction();

private:
    std::string m_name;
    HostFunction m_former;
};

}  // namespace reference_host
