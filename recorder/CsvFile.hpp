#ifndef ZM_RECORDER_CSV_FILE_HPP
#define ZM_RECORDER_CSV_FILE_HPP

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace recorder {

/// A CSV file that is being recorded into: a header row, a first column "time", and a column for each
/// signal. Add all columns, open, then for each point in time put the values and end the row; close. A
/// row in which nothing was put is not written, a cell that was not put stays empty. Numbers read the
/// same in every locale, and have the fewest digits that give the same number back unless told otherwise;
/// lines end in LF. What goes wrong with the file is a host error that names it.
class CsvFile {
public:
    /// Nothing is written until `open`.
    explicit CsvFile(std::filesystem::path path);

    /// Returns the column's number for `put`. `digits`: so many significant ones.
    std::size_t addColumn(const std::string& header, std::optional<int> digits);

    /// Makes the file, or empties the one there is, and writes the header row.
    void open();

    void put(std::size_t column, double value);
    void endRow(double time);

    /// Rows are collected and written together, whole ones only: a program that is killed leaves the rows up
    /// to the last `flush`.
    void flush();

    /// Everything is in the file when this returns. A file that was not opened has nothing to close.
    void close();

private:
    struct Column {
        std::string header;
        std::optional<int> digits;
        std::optional<double> value;
    };

    void writeRows();
    void checkWritten();

    std::filesystem::path m_path;
    std::ofstream m_out;
    std::vector<Column> m_columns;
    std::string m_rows;  // not written yet
};

/// The files of one run; recordings into the same file share it.
class CsvFiles {
public:
    CsvFile& file(const std::filesystem::path& path) { return m_files.try_emplace(path, path).first->second; }
    void openAll();
    void endRow(double time);
    void flushAll();

    /// Closes every file, also after one that fails; then throws what the first of them threw.
    void closeAll();

private:
    std::map<std::filesystem::path, CsvFile> m_files;
};

}  // namespace recorder

#endif
