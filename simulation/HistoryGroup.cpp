#include "simulation/HistoryGroup.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace simulation {

namespace {

constexpr std::size_t chunkBytes = std::size_t{1} << 20;
constexpr std::size_t firstChunkRows = 16;
constexpr std::size_t chunksInLimit = 16;  // at least: a group may take three chunks beyond its limit

}  // namespace

HistoryGroup::HistoryGroup(std::uint64_t decimation, std::uint64_t phase, std::size_t rowLimit)
    : m_decimation(decimation), m_phase(phase), m_rowLimit(std::max<std::size_t>(rowLimit, 1))
{
}

HistoryGroup::Column HistoryGroup::add(std::size_t source, std::size_t width)
{
    auto free = std::find_if(m_columns.begin(), m_columns.end(), [&](const ColumnState& column) {
        return !column.isLive && column.width == width;
    });
    if (m_liveColumns == m_columns.size() || free == m_columns.end()) {
        sealChunk();  // rows are wider from here on
        m_columns.push_back({source, width, m_rowWidth, m_rows});
        m_rowWidth += width;
        free = std::prev(m_columns.end());
    } else {
        *free = {source, width, free->offset, m_rows};
    }
    ++m_liveColumns;
    m_plan = false;
    return static_cast<Column>(free - m_columns.begin());
}

void HistoryGroup::move(Column column, std::size_t source)
{
    m_columns[column].source = source;
    m_plan = false;
}

void HistoryGroup::close(Column column)
{
    m_columns[column].endRow = std::min(m_columns[column].endRow, m_rows);
    m_plan = false;
}

void HistoryGroup::remove(Column column)
{
    m_columns[column].isLive = false;
    --m_liveColumns;
    m_plan = false;
}

bool HistoryGroup::record(std::uint64_t step, double time, std::span<const double> values)
{
    if (step % m_decimation != m_phase) {
        return false;
    }
    if (!m_plan) {
        planCopies();
    }
    if (m_chunks.empty() || m_chunks.back().rows == m_chunks.back().capacity) {
        addChunk();
    }
    Chunk& chunk = m_chunks.back();
    double* const row = chunk.values.data() + chunk.rows * chunk.rowWidth;
    for (const Copy& copy : m_copies) {
        std::memcpy(row + copy.offset, values.data() + copy.source, copy.count * sizeof(double));
    }
    chunk.times[chunk.rows] = time;
    ++chunk.rows;
    ++m_rows;
    return true;
}

void HistoryGroup::setRowLimit(std::size_t limit)
{
    m_rowLimit = std::max<std::size_t>(limit, 1);
    dropOldChunks();
}

std::size_t HistoryGroup::rowCount(Column column) const
{
    const Range range = rangeOf(column);
    return static_cast<std::size_t>(range.end - range.first);
}

const double* HistoryGroup::lastValues(Column column) const
{
    const std::uint64_t row = rangeOf(column).end - 1;
    const Chunk& chunk = chunkOf(row);
    return chunk.values.data() + static_cast<std::size_t>(row - chunk.firstRow) * chunk.rowWidth +
           m_columns[column].offset;
}

double HistoryGroup::lastTime(Column column) const
{
    const std::uint64_t row = rangeOf(column).end - 1;
    const Chunk& chunk = chunkOf(row);
    return chunk.times[static_cast<std::size_t>(row - chunk.firstRow)];
}

void HistoryGroup::copy(Column column, std::vector<double>& times, std::vector<double>& values) const
{
    const Range range = rangeOf(column);
    const ColumnState& state = m_columns[column];
    times.reserve(times.size() + static_cast<std::size_t>(range.end - range.first));
    values.reserve(values.size() + static_cast<std::size_t>(range.end - range.first) * state.width);
    for (const Chunk& chunk : m_chunks) {
        const std::uint64_t first = std::max(range.first, chunk.firstRow);
        const std::uint64_t end = std::min(range.end, chunk.firstRow + chunk.rows);
        for (std::uint64_t row = first; row < end; ++row) {
            const auto place = static_cast<std::size_t>(row - chunk.firstRow);
            const double* const value = chunk.values.data() + place * chunk.rowWidth + state.offset;
            times.push_back(chunk.times[place]);
            values.insert(values.end(), value, value + state.width);
        }
    }
}

/// Beyond the rows of the limit a group holds part of its oldest chunk, part of its newest, and one out of
/// use.
std::size_t HistoryGroup::bytesFor(std::size_t rows) const noexcept
{
    return (rows + 3 * (rows / chunksInLimit + 1)) * (m_rowWidth + 1) * sizeof(double);
}

std::size_t HistoryGroup::bytes() const noexcept
{
    std::size_t sum = 0;
    for (const Chunk& chunk : m_chunks) {
        sum += (chunk.times.capacity() + chunk.values.capacity()) * sizeof(double);
    }
    return sum;
}

/// Has the next row begin a new chunk; what the last one has not used stays unused.
void HistoryGroup::sealChunk()
{
    if (!m_chunks.empty()) {
        Chunk& last = m_chunks.back();
        last.capacity = last.rows;
        if (last.rows == 0) {
            m_chunks.pop_back();
        }
    }
}

void HistoryGroup::addChunk()
{
    dropOldChunks();
    const std::size_t rows = chunkRows();
    Chunk chunk;
    // The front is needed as long as one of its rows is among the last ones, the coming row included.
    if (!m_chunks.empty() && m_chunks.front().firstRow + m_chunks.front().rows + m_rowLimit <= m_rows + 1) {
        chunk = std::move(m_chunks.front());
        m_chunks.pop_front();
    }
    chunk.firstRow = m_rows;
    chunk.rowWidth = m_rowWidth;
    chunk.capacity = rows;
    chunk.rows = 0;
    chunk.times.resize(rows);
    chunk.values.resize(rows * m_rowWidth);
    m_chunks.push_back(std::move(chunk));
}

/// Keeps one chunk that is out of use, which the next row takes.
void HistoryGroup::dropOldChunks()
{
    const auto isOld = [this](const Chunk& chunk) {
        return chunk.firstRow + chunk.rows + m_rowLimit <= m_rows + 1;
    };
    while (m_chunks.size() > 2 && isOld(m_chunks[0]) && isOld(m_chunks[1])) {
        m_chunks.pop_front();
    }
}

/// Columns whose values stand side by side, in the step as in the row, are copied at once.
void HistoryGroup::planCopies()
{
    m_copies.clear();
    for (const ColumnState& column : m_columns) {
        if (!column.isLive || column.endRow != open) {
            continue;
        }
        Copy* const last = m_copies.empty() ? nullptr : &m_copies.back();
        if (last != nullptr && last->source + last->count == column.source &&
            last->offset + last->count == column.offset) {
            last->count += column.width;
        } else {
            m_copies.push_back({column.source, column.offset, column.width});
        }
    }
    m_plan = true;
}

/// Small at first, so that many groups that keep little take little.
std::size_t HistoryGroup::chunkRows() const noexcept
{
    const std::size_t inBytes = chunkBytes / ((m_rowWidth + 1) * sizeof(double));
    const std::size_t grown = m_chunks.empty() ? firstChunkRows : 2 * m_chunks.back().times.size();
    return std::max<std::size_t>(std::min({inBytes, grown, m_rowLimit / chunksInLimit}), 1);
}

/// The column's rows that are kept: at most the last `rowLimit`.
HistoryGroup::Range HistoryGroup::rangeOf(Column column) const
{
    const ColumnState& state = m_columns[column];
    const std::uint64_t end = std::min(state.endRow, m_rows);
    const std::uint64_t kept = m_chunks.empty() ? m_rows : m_chunks.front().firstRow;
    const std::uint64_t window = end > m_rowLimit ? end - m_rowLimit : 0;
    return {std::min(end, std::max({state.firstRow, kept, window})), end};
}

const HistoryGroup::Chunk& HistoryGroup::chunkOf(std::uint64_t row) const
{
    const auto after =
        std::upper_bound(m_chunks.begin(), m_chunks.end(), row,
                         [](std::uint64_t wanted, const Chunk& chunk) { return wanted < chunk.firstRow; });
    return *std::prev(after);
}

}  // namespace simulation
