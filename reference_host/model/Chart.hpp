#pragma once

#include "reference_host/Export.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace reference_host {

/// The objects of a chart that can be observed: the chart as a whole, a state, or an item of chart data.
enum class ChartObjectKind { Chart, State, Data };

/// The domain type of a signal that observes an object of this kind: "kw_chart", "kw_state" or
/// "kw_data".
ZM_REFHOST_API const char16_t* chartDomainType(ChartObjectKind kind) noexcept;

struct ChartObject {
    ChartObjectKind kind = ChartObjectKind::State;
    std::uint32_t kzid = 0;    ///< the object's number within its chart; 0 is the chart itself
    std::uint32_t parent = 0;  ///< the number of the state or chart around it; the chart's own is 0
    std::u16string name;
};

/// A state chart: a tree of states with data, carried by one block. Its ZID is that of the block, and
/// a signal on it is named by that ZID, the number ("KZID") of an object in here and an activity.
/// SSP does not know charts, so scripts add them to an open model.
class ZM_REFHOST_API Chart {
public:
    /// A chart without states. An empty name is a host error ("InvalidName"), here and below.
    explicit Chart(std::u16string name);

    const std::u16string& name() const noexcept { return m_objects.front().name; }

    /// Adds a state inside the chart (0) or inside another state, or data that belongs there, and
    /// returns its number: 1, 2, 3 … in order of addition, states and data counted together. A parent
    /// that is neither the chart nor one of its states is a host error ("InvalidChartParent").
    std::uint32_t addState(std::u16string name, std::uint32_t parent = 0);
    std::uint32_t addData(std::u16string name, std::uint32_t parent = 0);

    /// The object of that number; null when there is none.
    const ChartObject* find(std::uint32_t kzid) const noexcept;

    /// Every object by its number, the chart itself first.
    const std::vector<ChartObject>& objects() const noexcept { return m_objects; }

private:
    std::uint32_t add(ChartObjectKind kind, std::u16string name, std::uint32_t parent);

    std::vector<ChartObject> m_objects;
};

}  // namespace reference_host
