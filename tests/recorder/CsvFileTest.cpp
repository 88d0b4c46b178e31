#include "recorder/CsvFile.hpp"

#include "tests/recorder/RecorderTest.hpp"

#include <limits>

namespace recorder {
namespace {

class CsvFileTest : public RecorderTest {
protected:
    CsvFile m_file{pathOf("out.csv")};

    std::string written()
    {
        m_file.close();
        return contentOf(pathOf("out.csv"));
    }
};

TEST_F(CsvFileTest, HeaderRowNamesTimeAndColumns)
{
    m_file.addColumn("a", {});
    m_file.addColumn("b", {});
    m_file.open();
    EXPECT_EQ(written(), "time,a,b\n");
}

TEST_F(CsvFileTest, HeaderThatNeedsQuotesGetsThem)
{
    m_file.addColumn("a,b", {});
    m_file.addColumn("c\"d", {});
    m_file.addColumn("e\nf", {});
    m_file.open();
    EXPECT_EQ(written(), "time,\"a,b\",\"c\"\"d\",\"e\nf\"\n");
}

TEST_F(CsvFileTest, NumbersHaveTheFewestDigitsThatReadBack)
{
    const std::size_t column = m_file.addColumn("a", {});
    m_file.open();
    m_file.put(column, 1.0 / 3.0);
    m_file.endRow(0.1);
    m_file.put(column, -std::numeric_limits<double>::infinity());
    m_file.endRow(2.0);
    EXPECT_EQ(written(), "time,a\n0.1,0.3333333333333333\n2,-inf\n");
}

TEST_F(CsvFileTest, ColumnMayHaveFewerDigits)
{
    const std::size_t column = m_file.addColumn("a", 3);
    m_file.open();
    m_file.put(column, 2.0 / 3.0);
    m_file.endRow(1.25);
    EXPECT_EQ(written(), "time,a\n1.25,0.667\n");
}

TEST_F(CsvFileTest, CellThatWasNotPutStaysEmpty)
{
    m_file.addColumn("a", {});
    const std::size_t second = m_file.addColumn("b", {});
    m_file.open();
    m_file.put(second, 5.0);
    m_file.endRow(1.0);
    EXPECT_EQ(written(), "time,a,b\n1,,5\n");
}

TEST_F(CsvFileTest, EmptyRowIsNotWritten)
{
    m_file.addColumn("a", {});
    m_file.open();
    m_file.endRow(1.0);
    EXPECT_EQ(written(), "time,a\n");
}

TEST_F(CsvFileTest, FileInAFolderThatDoesNotExistIsRefused)
{
    CsvFile file(pathOf("none/out.csv"));
    EXPECT_EQ(errorText("UnwritableFile", [&] { file.open(); }),
              pathOf("none/out.csv") + ": No such file or directory");
}

TEST_F(CsvFileTest, FullDiskIsReportedWhenTheFileIsClosed)
{
    CsvFile file("/dev/full");
    const std::size_t column = file.addColumn("a", {});
    file.open();
    file.put(column, 1.0);
    file.endRow(1.0);
    EXPECT_EQ(errorText("UnwritableFile", [&] { file.close(); }), "/dev/full: No space left on device");
}

TEST_F(CsvFileTest, AllFilesAreClosedAlsoAfterOneThatFails)
{
    CsvFiles files;
    files.file("/dev/full").addColumn("a", {});
    files.file(pathOf("later.csv")).addColumn("b", {});
    files.openAll();
    EXPECT_EQ(errorText("UnwritableFile", [&] { files.closeAll(); }), "/dev/full: No space left on device");
    EXPECT_EQ(contentOf(pathOf("later.csv")), "time,b\n");
}

}  // namespace
}  // namespace recorder
