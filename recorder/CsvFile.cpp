#include "recorder/CsvFile.hpp"

#include "recorder/RecordingErrors.hpp"

#include <array>
#include <cerrno>
#include <charconv>
#include <exception>
#include <system_error>
#include <utility>

namespace recorder {

namespace {

constexpr std::size_t writtenTogether = 65536;
constexpr std::size_t longestNumber = 32;  // 17 digits, sign, point and exponent take 24

void appendNumber(std::string& row, double number, std::optional<int> digits)
{
    std::array<char, longestNumber> text{};
    char* const end = text.data() + text.size();
    const auto result = digits ? std::to_chars(text.data(), end, number, std::chars_format::general, *digits)
                               : std::to_chars(text.data(), end, number);
    row.append(text.data(), result.ptr);
}

void appendField(std::string& row, const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        row += text;
        return;
    }
    row += '"';
    for (const char c : text) {
        row.append(c == '"' ? 2 : 1, c);
    }
    row += '"';
}

}  // namespace

CsvFile::CsvFile(std::filesystem::path path) : m_path(std::move(path)) {}

std::size_t CsvFile::addColumn(const std::string& header, std::optional<int> digits)
{
    m_columns.push_back({header, digits, std::nullopt});
    return m_columns.size() - 1;
}

void CsvFile::open()
{
    errno = 0;
    m_out.open(m_path, std::ios::binary | std::ios::trunc);
    checkWritten();
    m_rows = "time";
    for (const Column& column : m_columns) {
        m_rows += ',';
        appendField(m_rows, column.header);
    }
    m_rows += '\n';
    writeRows();
}

void CsvFile::put(std::size_t column, double value)
{
    m_columns.at(column).value = value;
}

void CsvFile::endRow(double time)
{
    bool isEmpty = true;
    const std::size_t before = m_rows.size();
    appendNumber(m_rows, time, std::nullopt);
    for (Column& column : m_columns) {
        m_rows += ',';
        if (column.value) {
            isEmpty = false;
            appendNumber(m_rows, *column.value, column.digits);
            column.value.reset();
        }
    }
    if (isEmpty) {
        m_rows.resize(before);
        return;
    }
    m_rows += '\n';
    if (m_rows.size() >= writtenTogether) {
        writeRows();
    }
}

void CsvFile::flush()
{
    if (m_out.is_open() && !m_rows.empty()) {
        writeRows();
        m_out.flush();
        checkWritten();
    }
}

void CsvFile::close()
{
    if (m_out.is_open()) {
        errno = 0;
        m_out << std::exchange(m_rows, {});
        m_out.close();
        checkWritten();
    }
}

void CsvFile::writeRows()
{
    errno = 0;
    m_out << m_rows;
    m_rows.clear();
    checkWritten();
}

void CsvFile::checkWritten()
{
    if (!m_out) {
        const std::error_code why(errno == 0 ? EIO : errno, std::generic_category());
        throw recordingError("UnwritableFile", {m_path.string(), why.message()});
    }
}

void CsvFiles::openAll()
{
    for (auto& [path, file] : m_files) {
        file.open();
    }
}

void CsvFiles::endRow(double time)
{
    for (auto& [path, file] : m_files) {
        file.endRow(time);
    }
}

void CsvFiles::flushAll()
{
    for (auto& [path, file] : m_files) {
        file.flush();
    }
}

void CsvFiles::closeAll()
{
    std::exception_ptr failure;
    for (auto& [path, file] : m_files) {
        try {
            file.close();
        } catch (...) {  // whatever it is, the other files are closed first
            failure = failure ? failure : std::current_exception();
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace recorder
