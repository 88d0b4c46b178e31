#ifndef ZM_REFERENCE_HOST_DRAWING_DRAWING_PLAN_HPP
#define ZM_REFERENCE_HOST_DRAWING_DRAWING_PLAN_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Block.hpp"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace reference_host {

/// Where the blocks of each system stand in a drawing: in columns, from left to right as signals flow from
/// one to the next; blocks that are connected to nothing come last, over a square. Where that would be much
/// wider than high, the columns are broken into bands, one under the other, as words into lines.
class ZM_REFHOST_API DrawingPlan {
public:
    using Column = std::vector<const Block*>;
    using Band = std::vector<Column>;

    /// Plans a system and all that is in it. The plan refers to the blocks.
    explicit DrawingPlan(const Block& system) { planSystem(system); }

    /// None for a system without blocks.
    const std::vector<Band>& bandsOf(const Block& system) const { return m_bands.at(&system); }

    /// Whether one block of a system stands left of another one, in the same band.
    bool isForward(const Block& start, const Block& end) const;

private:
    struct Place {
        std::size_t band;
        std::size_t column;
    };
    /// About how large something is drawn.
    struct Size {
        double width = 0;
        double height = 0;
    };
    /// How many columns a band has, and how large all bands are together.
    struct Breaking {
        std::size_t length = 1;
        Size size{};
    };

    void planSystem(const Block& system);
    Size sizeOf(const Block& block);
    void appendLoose(std::vector<Column>& columns, const Column& loose) const;
    std::vector<Size> sizesOf(const std::vector<Column>& columns) const;
    static Breaking breakInto(std::size_t bands, const std::vector<Size>& columns);
    static Breaking bestBreaking(const std::vector<Size>& columns, double enough);
    void place(const Block& system, std::vector<Column> columns, std::size_t bandLength);

    std::unordered_map<const Block*, std::vector<Band>> m_bands;
    std::unordered_map<const Block*, Place> m_places;
    std::unordered_map<const Block*, Size> m_sizes;
};

}  // namespace reference_host

#endif
