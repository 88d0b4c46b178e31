// Messages that a viewer of live values sends. Input: messages, one a line.

#include "live/Viewer.hpp"

#include <cstdlib>
#include <string_view>

using namespace live;

namespace {

std::shared_ptr<const Scene> someScene()
{
    auto scene = std::make_shared<Scene>();
    for (ChannelId id = 0; id < 8; ++id) {
        scene->channels.push_back({});
        scene->channels.back().id = id;
    }
    return scene;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::shared_ptr<const Scene> scene = someScene();
    ViewerLimits limits;
    limits.subscriptions = 4;
    Viewer viewer(Viewer::Kind::Standard, limits, "fuzz", "");
    viewer.sceneChanged(scene);
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    Viewer::Clock::time_point now{std::chrono::hours(1)};
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (viewer.receiveText(line)) {
            return 0;
        }
        for (ChannelId id = 0; id < 8; ++id) {
            viewer.offer(LiveValue::of(id, 1, 2.0));
        }
        now += std::chrono::seconds(1);
        while (viewer.next(now)) {
        }
        if (viewer.subscribedChannels().size() > limits.subscriptions) {
            std::abort();
        }
    }
    return 0;
}
