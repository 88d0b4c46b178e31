#include "reference_host/drawing/DrawingPlan.hpp"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace reference_host {

namespace {

constexpr double widthToHeight = 1.6;  // of a drawing that fits a screen
constexpr double wideEnough = 1500;    // what is not wider needs no second band
constexpr double wideEnoughInside = 900;
constexpr double columnGap = 50;
constexpr double rowGap = 18;
constexpr double bandGap = 20;
constexpr double letter = 7;
constexpr double line = 18;

/// How the blocks of a system follow each other; blocks go by their place among the children.
class Flow {
public:
    explicit Flow(const Block& system)
        : m_after(system.children().size()), m_before(m_after.size()), m_isConnected(m_after.size())
    {
        std::unordered_map<const Block*, std::size_t> places;
        for (const auto& child : system.children()) {
            places.emplace(child.get(), places.size());
        }
        for (const Connection& connection : system.connections()) {
            const auto start = places.find(connection.start.element);
            const auto end = places.find(connection.end.element);
            for (const auto& place : {start, end}) {
                if (place != places.end()) {
                    m_isConnected[place->second] = true;
                }
            }
            if (start != places.end() && end != places.end() && start != end &&
                m_after[start->second].insert(end->second).second) {
                ++m_before[end->second];
            }
        }
    }

    bool isConnected(std::size_t block) const { return m_isConnected[block]; }

    /// The column of each block, behind those of all that lead to it. Of blocks that lead to each other in a
    /// circle the first one comes first.
    std::vector<std::size_t> columns() const
    {
        std::vector<std::size_t> columns(m_after.size());
        std::vector<std::size_t> before = m_before;
        std::set<std::size_t> left;
        std::set<std::size_t> ready;
        for (std::size_t block = 0; block < before.size(); ++block) {
            (before[block] == 0 ? ready : left).insert(block);
        }
        while (!ready.empty() || !left.empty()) {
            std::set<std::size_t>& from = ready.empty() ? left : ready;
            const std::size_t block = *from.begin();
            from.erase(from.begin());
            for (const std::size_t after : m_after[block]) {
                if (left.contains(after)) {
                    columns[after] = std::max(columns[after], columns[block] + 1);
                    if (--before[after] == 0) {
                        ready.insert(left.extract(after));
                    }
                }
            }
        }
        return columns;
    }

private:
    std::vector<std::set<std::size_t>> m_after;
    std::vector<std::size_t> m_before;
    std::vector<bool> m_isConnected;
};

double longestName(const std::vector<Port>& ports)
{
    std::size_t longest = 0;
    for (const Port& port : ports) {
        longest = std::max(longest, port.name.size());
    }
    return static_cast<double>(longest);
}

}  // namespace

bool DrawingPlan::isForward(const Block& start, const Block& end) const
{
    const auto from = m_places.find(&start);
    const auto to = m_places.find(&end);
    return from != m_places.end() && to != m_places.end() && from->second.band == to->second.band &&
           from->second.column < to->second.column;
}

void DrawingPlan::planSystem(const Block& system)
{
    for (const auto& child : system.children()) {
        m_sizes.insert_or_assign(child.get(), sizeOf(*child));
    }
    const Flow flow(system);
    const std::vector<std::size_t> columnOf = flow.columns();
    std::vector<Column> columns;
    Column loose;
    for (std::size_t i = 0; i < columnOf.size(); ++i) {
        const Block* block = system.children()[i].get();
        if (flow.isConnected(i)) {
            columns.resize(std::max(columns.size(), columnOf[i] + 1));
            columns[columnOf[i]].push_back(block);
        } else {
            loose.push_back(block);
        }
    }
    appendLoose(columns, loose);
    const Breaking breaking =
        bestBreaking(sizesOf(columns), system.parent() == nullptr ? wideEnough : wideEnoughInside);
    // The strips of ports and the name take room too.
    m_sizes[&system] = {breaking.size.width + 3 * columnGap, breaking.size.height + 2 * rowGap};
    place(system, std::move(columns), breaking.length);
}

DrawingPlan::Size DrawingPlan::sizeOf(const Block& block)
{
    if (block.kind() == BlockKind::System) {
        planSystem(block);
        return m_sizes.at(&block);
    }
    const std::vector<Port>& inputs = block.ports(PortKind::Input);
    const std::vector<Port>& outputs = block.ports(PortKind::Output);
    const double letters =
        longestName(inputs) + longestName(outputs) + static_cast<double>(block.name().size()) + 6;
    const std::size_t lines = std::max({inputs.size(), outputs.size(), std::size_t{1}});
    return {letter * letters, line * static_cast<double>(lines)};
}

void DrawingPlan::appendLoose(std::vector<Column>& columns, const Column& loose) const
{
    Size sum;
    for (const Block* block : loose) {
        sum.width += m_sizes.at(block).width + columnGap;
        sum.height += m_sizes.at(block).height + rowGap;
    }
    const auto count = static_cast<double>(loose.size());
    const double rows = loose.empty() ? 1 : std::sqrt(count * sum.width / (widthToHeight * sum.height));
    const std::size_t height = std::max(std::size_t{1}, static_cast<std::size_t>(std::lround(rows)));
    for (std::size_t i = 0; i < loose.size(); ++i) {
        if (i % height == 0) {
            columns.emplace_back();
        }
        columns.back().push_back(loose[i]);
    }
}

std::vector<DrawingPlan::Size> DrawingPlan::sizesOf(const std::vector<Column>& columns) const
{
    std::vector<Size> sizes;
    sizes.reserve(columns.size());
    for (const Column& column : columns) {
        Size& size = sizes.emplace_back();
        for (const Block* block : column) {
            size.width = std::max(size.width, m_sizes.at(block).width + columnGap);
            size.height += m_sizes.at(block).height + rowGap;
        }
    }
    return sizes;
}

DrawingPlan::Breaking DrawingPlan::breakInto(std::size_t bands, const std::vector<Size>& columns)
{
    Breaking breaking{(columns.size() + bands - 1) / bands};
    for (std::size_t first = 0; first < columns.size(); first += breaking.length) {
        Size band;
        for (std::size_t i = first; i < std::min(first + breaking.length, columns.size()); ++i) {
            band.width += columns[i].width;
            band.height = std::max(band.height, columns[i].height);
        }
        breaking.size.width = std::max(breaking.size.width, band.width);
        breaking.size.height += band.height + bandGap;
    }
    return breaking;
}

DrawingPlan::Breaking DrawingPlan::bestBreaking(const std::vector<Size>& columns, double enough)
{
    constexpr std::size_t mostBands = 64;
    constexpr double worthIt = 0.9;  // how much smaller more bands have to be
    const auto extentOf = [enough](const Breaking& breaking) {
        return std::max({breaking.size.width, breaking.size.height * widthToHeight, enough});
    };
    Breaking best = columns.empty() ? Breaking() : breakInto(1, columns);
    for (std::size_t bands = 2; bands <= std::min(columns.size(), mostBands); ++bands) {
        const Breaking other = breakInto(bands, columns);
        if (extentOf(other) < worthIt * extentOf(best)) {
            best = other;
        }
    }
    return best;
}

void DrawingPlan::place(const Block& system, std::vector<Column> columns, std::size_t bandLength)
{
    std::vector<Band>& bands = m_bands[&system];
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i % bandLength == 0) {
            bands.emplace_back();
        }
        for (const Block* block : columns[i]) {
            m_places.emplace(block, Place{i / bandLength, i % bandLength});
        }
        bands.back().push_back(std::move(columns[i]));
    }
}

}  // namespace reference_host
