#ifndef ZM_SIMULATION_TABLE_SOURCE_HPP
#define ZM_SIMULATION_TABLE_SOURCE_HPP

#include "simulation/Source.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace simulation {

/// Points in time, and at each of them a value for every column. Times are finite and do not run back.
struct Table {
    std::string name;  ///< what errors call it
    std::vector<double> times;
    std::vector<Place> places;   ///< of the columns, all different
    std::vector<double> values;  ///< row after row
};

/// Gives a place the values of a column, row by row. Its own times are those of the rows; where the run's
/// clock ticks otherwise, a value is valid from its row to the next one. NaN means that there is no value.
class TableSource : public Source {
public:
    /// With `isLooped`, the first row follows the last one, in an interval that is the mean of the others,
    /// and times go on growing.
    explicit TableSource(std::shared_ptr<const Table> table, bool isLooped = false);

    std::string name() const override { return m_table->name; }
    std::vector<SourcePort> ports() const override;
    bool hasTimes() const override { return true; }
    std::optional<double> nextTime() const override;
    std::optional<double> lastTime() const override;
    void advance(double time, const InputValues& inputs) override;
    void write(std::span<double> values) override;

private:
    void takeRow();

    std::shared_ptr<const Table> m_table;
    bool m_isLooped;
    double m_period = 0.0;
    double m_offset = 0.0;             // of the present loop
    std::size_t m_next = 0;            // row
    std::optional<std::size_t> m_row;  // the one that is valid
};

}  // namespace simulation

#endif
