#include "recorder/CsvReader.hpp"

#include "recorder/RecordingErrors.hpp"

#include <algorithm>
#include <utility>

namespace recorder {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// A field takes a hundred times the memory of the one comma that it can consist of.
constexpr std::size_t maximumFields = 1'000'000;

}  // namespace

CsvReader::CsvReader(std::string_view text, std::string source) : m_rest(text), m_source(std::move(source))
{
    if (m_rest.starts_with(byteOrderMark)) {
        m_rest.remove_prefix(byteOrderMark.size());
    }
}

bool CsvReader::next()
{
    if (m_rest.empty()) {
        return false;
    }
    m_recordLine = m_line;
    m_fieldCount = 0;
    bool another = true;
    while (another) {
        if (m_fieldCount == maximumFields) {
            fail("TooManyFields", m_line);
        }
        if (m_fieldCount == m_fields.size()) {
            m_fields.emplace_back();
        }
        another = readField(m_fields[m_fieldCount]);
        ++m_fieldCount;
    }
    m_fields.resize(m_fieldCount);
    return true;
}

bool CsvReader::readField(CsvField& field)
{
    field.text.clear();
    field.line = m_line;
    if (m_rest.starts_with('"')) {
        readQuoted(field);
    } else {
        readPlain(field);
    }
    return endField();
}

void CsvReader::readPlain(CsvField& field)
{
    const std::size_t length = std::min(m_rest.find_first_of(",\"\r\n"), m_rest.size());
    field.text = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    if (m_rest.starts_with('"')) {
        fail("StrayQuote", m_line);
    }
}

void CsvReader::readQuoted(CsvField& field)
{
    m_rest.remove_prefix(1);
    while (true) {
        const std::size_t length = m_rest.find('"');
        if (length == std::string_view::npos) {
            fail("OpenQuote", field.line);
        }
        const std::string_view part = m_rest.substr(0, length);
        field.text += part;
        m_line += static_cast<std::uint64_t>(std::count(part.begin(), part.end(), '\n'));
        m_rest.remove_prefix(length + 1);
        if (!m_rest.starts_with('"')) {
            return;
        }
        field.text += '"';  // a doubled quote
        m_rest.remove_prefix(1);
    }
}

/// Steps over what ends a field; true for a comma.
bool CsvReader::endField()
{
    if (m_rest.starts_with(',')) {
        m_rest.remove_prefix(1);
        return true;
    }
    if (m_rest.starts_with("\r\n")) {
        m_rest.remove_prefix(1);
    } else if (m_rest.starts_with('\r')) {
        fail("StrayReturn", m_line);
    }
    if (m_rest.starts_with('\n')) {
        m_rest.remove_prefix(1);
        ++m_line;
    } else if (!m_rest.empty()) {
        fail("TextAfterQuote", m_line);
    }
    return false;
}

void CsvReader::fail(const char* key, std::uint64_t line) const
{
    throw recordingError(key, {m_source, line, std::uint64_t{m_fieldCount + 1}});
}

}  // namespace recorder
