#include "reference_host/model/EditorEvents.hpp"

#include "reference_host/values/ValueReading.hpp"

#include <utility>

namespace reference_host {

namespace {

std::vector<EditorEvent>& events()
{
    static std::vector<EditorEvent> recorded;
    return recorded;
}

}  // namespace

const std::vector<EditorEvent>& EditorEvents::recorded() noexcept
{
    return events();
}

std::vector<EditorEvent> EditorEvents::take()
{
    return std::exchange(events(), {});
}

void EditorEvents::record(HostFunctionCall& call)
{
    events().push_back({text(call.input(0)), text(call.input(1))});
}

}  // namespace reference_host
