#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"

#include <string>
#include <vector>

namespace reference_host {

/// A notification of the library about a block, such as "block_param_change".
struct EditorEvent {
    std::u16string name;
    std::u16string blockPath;
};

/// The events since the process began or since they were last taken. Main thread only.
class ZM_REFHOST_API EditorEvents {
public:
    EditorEvents() = delete;

    static const std::vector<EditorEvent>& recorded() noexcept;

    /// Returns the events and forgets them.
    static std::vector<EditorEvent> take();

    /// The host function "Zelmar.HMI.zmhmi": records an event, given by its name and a block's path. An
    /// empty value counts as an empty text.
    static void record(HostFunctionCall& call);
};

}  // namespace reference_host
