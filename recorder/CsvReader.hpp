#ifndef ZM_RECORDER_CSV_READER_HPP
#define ZM_RECORDER_CSV_READER_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace recorder {

struct CsvField {
    std::string text;        ///< without its quotes
    std::uint64_t line = 0;  ///< where it begins, from 1
};

/// Takes a CSV text apart, record by record, as RFC 4180 has it: commas, fields in double quotes that may
/// hold commas, line ends and doubled quotes. Lines end in LF or CR LF, the last one may go without; a
/// byte order mark at the beginning is skipped. Blanks belong to a field. A record has at most 1,000,000
/// fields. Errors are host errors that name file, line and column.
class CsvReader {
public:
    /// `source` is what errors call the text. REQUIRES: the text outlives the reader.
    CsvReader(std::string_view text, std::string source);

    /// Goes to the next record; false at the end.
    bool next();

    /// The fields of the record; the reader uses them again for the next one.
    const std::vector<CsvField>& fields() const noexcept { return m_fields; }

    /// The line on which the record begins, from 1.
    std::uint64_t line() const noexcept { return m_recordLine; }

    const std::string& source() const noexcept { return m_source; }

private:
    bool readField(CsvField& field);  // true when another field follows in the record
    void readPlain(CsvField& field);
    void readQuoted(CsvField& field);
    bool endField();
    [[noreturn]] void fail(const char* key, std::uint64_t line) const;

    std::string_view m_rest;
    std::string m_source;
    std::vector<CsvField> m_fields;
    std::size_t m_fieldCount = 0;
    std::uint64_t m_line = 1;
    std::uint64_t m_recordLine = 0;
};

}  // namespace recorder

#endif
