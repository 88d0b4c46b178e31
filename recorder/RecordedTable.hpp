#ifndef ZM_RECORDER_RECORDED_TABLE_HPP
#define ZM_RECORDER_RECORDED_TABLE_HPP

#include "simulation/PortNames.hpp"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace recorder {

using simulation::findPort;
using simulation::OutputPort;
using simulation::portName;
using simulation::PortSearch;

/// Is called again and again during long work. What it throws ends the work and reaches the caller.
using Checkpoint = std::function<void()>;

/// What a simulation gave: points in time, and at each of them a value for every column. Times are finite
/// and do not run back; two rows may have the same time. NaN stands for no value.
///
/// As a file it is CSV (see `CsvReader`) in UTF-8 with a header row. The first column is named "time", the
/// others name ports as `findPort` has it. Numbers are decimal with a point, in every locale; "inf" and
/// "nan" are numbers, an empty cell is NaN. What a recording writes to a file can be replayed.
class RecordedTable {
public:
    struct Column {
        std::string header;  ///< UTF-8
        std::vector<double> values;
    };

    /// Reads a regular file of at most 256 MiB. What is wrong with it is a host error that names file, line
    /// and column.
    static RecordedTable read(const std::filesystem::path& file, const Checkpoint& checkpoint = {});

    /// The same from a text; `source` is what errors call it.
    static RecordedTable parse(std::string_view text, const std::string& source,
                               const Checkpoint& checkpoint = {});

    /// Columns that are not as long as the times, and times that are none, are host errors.
    RecordedTable(std::string source, std::vector<double> times, std::vector<Column> columns);

    /// What errors call the table.
    const std::string& source() const noexcept { return m_source; }

    const std::vector<double>& times() const noexcept { return m_times; }

    /// Those after the time.
    const std::vector<Column>& columns() const noexcept { return m_columns; }

    /// The port of each column. A header that names no output port of the model, or one that another
    /// column names too, is a host error.
    std::vector<OutputPort> portsIn(const reference_host::Model& model) const;

private:
    std::string m_source;
    std::vector<double> m_times;
    std::vector<Column> m_columns;
};

}  // namespace recorder

#endif
