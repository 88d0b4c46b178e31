#ifndef ZM_HOST_HOST_CALL_HPP
#define ZM_HOST_HOST_CALL_HPP

#include "host/Calls.hpp"
#include "host/OwnedArray.hpp"

#include <array>
#include <cstddef>
#include <utility>

/// The outputs of a host call, each in the local scope. A null output means an empty value.
template <std::size_t OutputCount>
struct HostCallResult {
    bool succeeded = false;
    std::array<OwnedArray, OutputCount> outputs;
};

/// An argument that was made for one call.
inline OwnedArray asTemporary(OwnedArray argument)
{
    nvSetArrayScope(argument.get(), nvScope::Temporary);
    return argument;
}

/// A value that outlives every call: only its owner destroys it. Null stays null.
inline OwnedArray asPersistent(OwnedArray value)
{
    if (value) {
        zmsvSetPersistentScope(value.get());
    }
    return value;
}

/// The output slots of one call. Values that a failed call left in them are placed in the local scope, as
/// every value from the host, and destroyed.
template <std::size_t Count>
class HostCallSlots {
public:
    HostCallSlots() = default;
    HostCallSlots(const HostCallSlots&) = delete;
    HostCallSlots& operator=(const HostCallSlots&) = delete;
    ~HostCallSlots()
    {
        for (nvArray*& slot : m_slots) {
            try {
                takeOne(slot);
            } catch (...) {  // NOLINT(bugprone-empty-catch): another error is on its way already
            }
        }
    }

    nvArray** data() noexcept { return m_slots.data(); }

    /// The outputs, each placed in the local scope.
    std::array<OwnedArray, Count> take()
    {
        std::array<OwnedArray, Count> outputs;
        for (std::size_t i = 0; i < Count; ++i) {
            outputs[i] = takeOne(m_slots[i]);
        }
        return outputs;
    }

private:
    static OwnedArray takeOne(nvArray*& slot)
    {
        OwnedArray output(std::exchange(slot, nullptr));
        if (output) {
            zmsvSetLocalScope(output.get());
        }
        return output;
    }

    std::array<nvArray*, Count> m_slots{};
};

/// Calls a host function whose failure does not stop the caller: it is shown to the user as one warning, and
/// the result says that the call failed. Inputs are borrowed; the caller scopes those that it made for the
/// call (`asTemporary`). Throws only what the operations of the boundary throw. An output may be of another
/// class than expected; reading it then throws a host error.
template <std::size_t OutputCount, class... Inputs>
HostCallResult<OutputCount> callHostNoThrow(const char* functionName, const Inputs*... inputs)
{
    const std::array<const nvArray*, sizeof...(Inputs)> inputList{inputs...};
    HostCallSlots<OutputCount> slots;
    zmsvDiagnostic* diagnostic =
        zmsvFEVAL_NoThrow(static_cast<int>(OutputCount), slots.data(), static_cast<int>(inputList.size()),
                          inputList.data(), functionName, true);
    if (diagnostic != nullptr) {
        zmsvReportAsWarning(diagnostic);
        return {};
    }
    return {true, slots.take()};
}

/// Calls a host function whose failure is the caller's too: the host's exception passes through.
template <std::size_t OutputCount, class... Inputs>
std::array<OwnedArray, OutputCount> callHost(const char* functionName, const Inputs*... inputs)
{
    const std::array<const nvArray*, sizeof...(Inputs)> inputList{inputs...};
    HostCallSlots<OutputCount> slots;
    zmsvFEVAL(static_cast<int>(OutputCount), slots.data(), static_cast<int>(inputList.size()),
              inputList.data(), functionName);
    return slots.take();
}

#endif
