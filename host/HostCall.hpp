#ifndef ZM_HOST_HOST_CALL_HPP
#define ZM_HOST_HOST_CALL_HPP

#include "host/Calls.hpp"
#include "host/OwnedArray.hpp"

#include <array>
#include <cstddef>
#include <utility>

/// The outputs of a host call, each in the local scope; a null output stands for an empty value.
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

/// The slots that a call fills; what was filled is freed unless it is taken.
template <std::size_t Count>
class HostCallSlots {
public:
    HostCallSlots() = default;
    HostCallSlots(const HostCallSlots&) = delete;
    HostCallSlots& operator=(const HostCallSlots&) = delete;
    ~HostCallSlots() { own(); }

    nvArray** data() noexcept { return m_slots.data(); }

    /// The outputs, each placed in the local scope.
    std::array<OwnedArray, Count> take()
    {
        std::array<OwnedArray, Count> outputs = own();
        for (const OwnedArray& output : outputs) {
            if (output) {
                zmsvSetLocalScope(output.get());
            }
        }
        return outputs;
    }

private:
    std::array<OwnedArray, Count> own() noexcept
    {
        std::array<OwnedArray, Count> outputs;
        for (std::size_t i = 0; i < Count; ++i) {
            outputs[i].reset(std::exchange(m_slots[i], nullptr));
        }
        return outputs;
    }

    std::array<nvArray*, Count> m_slots{};
};

/// Calls a host function that may fail without disturbing us: a failure is shown to the user as one
/// warning, and the caller goes on with its own fallback. Inputs are borrowed; the caller scopes those
/// that it made for the call (`asTemporary`). Throws only what the boundary itself throws. An output may be
/// of another class than expected: reading it then throws, as reading any value does.
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

/// Calls a host function whose failure is ours too: the host's exception passes through.
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
