#include "recorder/RecordedTable.hpp"

#include "recorder/CsvReader.hpp"
#include "recorder/RecordingErrors.hpp"
#include "reference_host/support/FileReading.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

namespace recorder {

namespace {

constexpr const char* timeHeader = "time";
constexpr std::size_t maximumTableBytes = std::size_t{256} << 20U;
constexpr std::uint64_t firstValueColumn = 2;  // as people count columns

/// Well-formed UTF-8, whatever the bytes are.
std::string shown(const std::string& bytes)
{
    return reference_host::utf8FromUtf16(reference_host::utf16FromUtf8(bytes));
}

std::string readText(const std::filesystem::path& file)
{
    try {
        return reference_host::readRegularFile(file, maximumTableBytes);
    } catch (const std::runtime_error& reason) {
        throw recordingError("UnreadableFile", {shown(file.string()), std::string(reason.what())});
    }
}

[[noreturn]] void failAt(const char* key, const CsvReader& csv, std::size_t index, const std::string& header)
{
    const CsvField& field = csv.fields()[index];
    throw recordingError(key, {csv.source(), field.line, std::uint64_t{index + 1}, header, field.text});
}

void requireUtf8(const CsvReader& csv)
{
    for (std::size_t i = 0; i < csv.fields().size(); ++i) {
        const CsvField& field = csv.fields()[i];
        const bool isAscii = std::ranges::all_of(field.text, [](char c) { return (c & '\x80') == 0; });
        if (!isAscii && shown(field.text) != field.text) {
            throw recordingError("NotUtf8", {csv.source(), field.line, std::uint64_t{i + 1}});
        }
    }
}

double number(const CsvReader& csv, std::size_t index, const std::string& header)
{
    const std::string& text = csv.fields()[index].text;
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::result_out_of_range) {
        failAt("NumberTooLarge", csv, index, header);
    }
    if (error != std::errc() || stop != end) {
        failAt("NotANumber", csv, index, header);
    }
    return value;
}

std::vector<RecordedTable::Column> readHeader(CsvReader& csv)
{
    if (!csv.next()) {
        throw recordingError("NoHeader", {csv.source()});
    }
    requireUtf8(csv);
    const std::vector<CsvField>& fields = csv.fields();
    if (fields[0].text != timeHeader) {
        throw recordingError("NoTimeColumn", {csv.source(), fields[0].text});
    }
    std::vector<RecordedTable::Column> columns;
    for (std::size_t i = 1; i < fields.size(); ++i) {
        columns.push_back({fields[i].text, {}});
    }
    return columns;
}

void readRow(const CsvReader& csv, std::vector<double>& times, std::vector<RecordedTable::Column>& columns)
{
    requireUtf8(csv);
    const std::size_t count = csv.fields().size();
    if (count != columns.size() + 1) {
        throw recordingError("WrongFieldCount", {csv.source(), csv.line(), std::uint64_t{count},
                                                 std::uint64_t{columns.size() + 1}});
    }
    times.push_back(number(csv, 0, timeHeader));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const bool hasValue = !csv.fields()[i + 1].text.empty();
        columns[i].values.push_back(hasValue ? number(csv, i + 1, columns[i].header)
                                             : std::numeric_limits<double>::quiet_NaN());
    }
}

void checkTimes(const std::string& source, const std::vector<double>& times)
{
    for (std::size_t row = 0; row < times.size(); ++row) {
        if (!std::isfinite(times[row])) {
            throw recordingError("InvalidTime", {source, std::uint64_t{row + 1}, times[row]});
        }
        if (row > 0 && times[row] < times[row - 1]) {
            throw recordingError("TimeRunsBack",
                                 {source, std::uint64_t{row + 1}, times[row], times[row - 1]});
        }
    }
}

}  // namespace

RecordedTable RecordedTable::read(const std::filesystem::path& file, const Checkpoint& checkpoint)
{
    return parse(readText(file), shown(file.string()), checkpoint);
}

RecordedTable RecordedTable::parse(std::string_view text, const std::string& source,
                                   const Checkpoint& checkpoint)
{
    CsvReader csv(text, source);
    std::vector<Column> columns = readHeader(csv);
    std::vector<double> times;
    while (csv.next()) {
        readRow(csv, times, columns);
        if (checkpoint) {
            checkpoint();
        }
    }
    return {source, std::move(times), std::move(columns)};
}

RecordedTable::RecordedTable(std::string source, std::vector<double> times, std::vector<Column> columns)
    : m_source(std::move(source)), m_times(std::move(times)), m_columns(std::move(columns))
{
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const std::size_t length = m_columns[i].values.size();
        if (length != m_times.size()) {
            throw recordingError("ColumnLength", {m_source, i + firstValueColumn, m_columns[i].header,
                                                  std::uint64_t{length}, std::uint64_t{m_times.size()}});
        }
    }
    checkTimes(m_source, m_times);
}

std::vector<OutputPort> RecordedTable::portsIn(const reference_host::Model& model) const
{
    std::vector<OutputPort> ports;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const std::string& header = m_columns[i].header;
        const PortSearch search = findPort(model, header);
        if (!search.port) {
            throw recordingError("NoSuchPort",
                                 {m_source, i + firstValueColumn, header,
                                  reference_host::utf8FromUtf16(model.name()), std::string(search.reason)});
        }
        const auto first = std::find(ports.begin(), ports.end(), *search.port);
        if (first != ports.end()) {
            const auto firstColumn = static_cast<std::uint64_t>(first - ports.begin()) + firstValueColumn;
            throw recordingError("SecondColumn",
                                 {m_source, firstColumn, i + firstValueColumn, portName(*search.port)});
        }
        ports.push_back(*search.port);
    }
    return ports;
}

}  // namespace recorder
