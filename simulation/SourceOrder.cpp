#include "simulation/SourceOrder.hpp"

#include <cstdint>
#include <utility>

namespace simulation {

std::vector<std::size_t> orderOfSources(const std::vector<std::vector<std::size_t>>& readFrom)
{
    enum class Mark : std::uint8_t { New, Open, Done };
    std::vector<Mark> marks(readFrom.size(), Mark::New);
    std::vector<std::size_t> order;
    std::vector<std::pair<std::size_t, std::size_t>> open;  // a source, and which of its own is next
    for (std::size_t first = 0; first < readFrom.size(); ++first) {
        if (marks[first] == Mark::New) {
            marks[first] = Mark::Open;
            open.emplace_back(first, 0);
        }
        while (!open.empty()) {
            const std::size_t source = open.back().first;
            if (open.back().second == readFrom[source].size()) {
                marks[source] = Mark::Done;
                order.push_back(source);
                open.pop_back();
                continue;
            }
            const std::size_t next = readFrom[source][open.back().second++];
            if (marks[next] == Mark::New) {  // an open one closes a circle
                marks[next] = Mark::Open;
                open.emplace_back(next, 0);
            }
        }
    }
    return order;
}

}  // namespace simulation
