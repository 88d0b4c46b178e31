#include "simulation/TableSource.hpp"

#include <algorithm>
#include <limits>
#include <utility>

namespace simulation {

TableSource::TableSource(std::shared_ptr<const Table> table, bool isLooped)
    : m_table(std::move(table)), m_isLooped(isLooped)
{
    const std::vector<double>& times = m_table->times;
    const double length = times.empty() ? 0.0 : times.back() - times.front();
    const double interval = length > 0.0 ? length / static_cast<double>(times.size() - 1) : 1.0;
    m_period = length + interval;
}

std::vector<SourcePort> TableSource::ports() const
{
    std::vector<SourcePort> ports;
    ports.reserve(m_table->places.size());
    for (const Place& place : m_table->places) {
        ports.push_back({place, {}, true});
    }
    return ports;
}

std::optional<double> TableSource::nextTime() const
{
    return m_next < m_table->times.size() ? std::optional(m_table->times[m_next] + m_offset) : std::nullopt;
}

std::optional<double> TableSource::lastTime() const
{
    return m_isLooped || m_table->times.empty() ? std::nullopt : std::optional(m_table->times.back());
}

void TableSource::advance(double time, const InputValues& /*inputs*/)
{
    if (nextTime() == time) {
        takeRow();  // one of several rows of the same time is a step of its own
        return;
    }
    while (nextTime().value_or(std::numeric_limits<double>::infinity()) <= time) {
        takeRow();
    }
}

void TableSource::takeRow()
{
    m_row = m_next++;
    if (m_isLooped && m_next == m_table->times.size()) {
        m_next = 0;
        m_offset += m_period;
    }
}

void TableSource::write(std::span<double> values)
{
    if (m_row) {
        const auto row =
            m_table->values.begin() + static_cast<std::ptrdiff_t>(*m_row * m_table->places.size());
        std::copy_n(row, values.size(), values.begin());
    } else {
        std::fill(values.begin(), values.end(), std::numeric_limits<double>::quiet_NaN());
    }
}

}  // namespace simulation
