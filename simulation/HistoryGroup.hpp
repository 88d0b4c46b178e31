#ifndef ZM_SIMULATION_HISTORY_GROUP_HPP
#define ZM_SIMULATION_HISTORY_GROUP_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace simulation {

/// The histories of channels that have samples at the same steps, row by row: a row is what all of them have
/// at one step, so that recording a step is a few copies however many channels there are. Rows are kept in
/// chunks; the oldest chunk is used again when none of its rows are among the last `rowLimit`.
///
/// A channel has a column. Column numbers stay as they are while others come and go. Each column knows its
/// first row, and its end when it was closed, so that a new column may take the place of a removed one.
class HistoryGroup {
public:
    using Column = std::size_t;

    /// Records the steps whose number is `phase` modulo `decimation`.
    HistoryGroup(std::uint64_t decimation, std::uint64_t phase, std::size_t rowLimit);

    /// A column of `width` doubles that stand at `source` among the values of a step. It begins now.
    Column add(std::size_t source, std::size_t width);

    /// The values of the column stand elsewhere from the next step on.
    void move(Column column, std::size_t source);

    /// The column gets no more rows, and keeps those that it has.
    void close(Column column);
    void remove(Column column);
    bool isEmpty() const noexcept { return m_liveColumns == 0; }

    /// Adds a row when the step is one of the group's. Returns whether it is.
    bool record(std::uint64_t step, double time, std::span<const double> values);

    std::size_t rowLimit() const noexcept { return m_rowLimit; }
    void setRowLimit(std::size_t limit);

    /// How many rows the column has in here.
    std::size_t rowCount(Column column) const;

    /// The column's last row. REQUIRES: `rowCount(column) > 0`.
    const double* lastValues(Column column) const;
    double lastTime(Column column) const;

    /// Appends the column's rows, oldest first.
    void copy(Column column, std::vector<double>& times, std::vector<double>& values) const;

    /// The memory of so many rows as they are now, at most; and what the group takes now.
    std::size_t bytesFor(std::size_t rows) const noexcept;
    std::size_t bytes() const noexcept;

private:
    static constexpr std::uint64_t open = ~std::uint64_t{0};

    struct ColumnState {
        std::size_t source = 0;
        std::size_t width = 0;
        std::size_t offset = 0;       // in the row
        std::uint64_t firstRow = 0;   // rows are counted from the beginning of the group
        std::uint64_t endRow = open;  // closed: no row from here on
        bool isLive = true;
    };
    struct Chunk {
        std::uint64_t firstRow = 0;
        std::size_t rowWidth = 0;
        std::size_t capacity = 0;
        std::size_t rows = 0;
        std::vector<double> times;
        std::vector<double> values;
    };
    struct Copy {
        std::size_t source;
        std::size_t offset;
        std::size_t count;
    };
    struct Range {
        std::uint64_t first;
        std::uint64_t end;
    };

    void sealChunk();
    void addChunk();
    void dropOldChunks();
    void planCopies();
    std::size_t chunkRows() const noexcept;
    Range rangeOf(Column column) const;
    const Chunk& chunkOf(std::uint64_t row) const;

    std::uint64_t m_decimation;
    std::uint64_t m_phase;
    std::size_t m_rowLimit;
    std::vector<ColumnState> m_columns;
    std::size_t m_liveColumns = 0;
    std::size_t m_rowWidth = 0;
    bool m_plan = false;  // whether `m_copies` is up to date
    std::vector<Copy> m_copies;
    std::deque<Chunk> m_chunks;
    std::uint64_t m_rows = 0;  // so many so far
};

}  // namespace simulation

#endif
