#include "recorder/RecordedTable.hpp"

#include "tests/recorder/RecorderTest.hpp"

#include <sys/stat.h>
#include <clocale>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <vector>

namespace recorder {
namespace {

class RecordedTableTest : public RecorderTest {
protected:
    static std::string refusal(const char* key, const std::string& text)
    {
        return errorText(key, [&] { RecordedTable::parse(text, "t.csv"); });
    }
};

TEST_F(RecordedTableTest, ColumnsHoldTheValuesOfTheirPorts)
{
    const RecordedTable table = RecordedTable::parse("time,x,y\n0,1.5,-2e3\n0.1,inf,7\n", "t.csv");
    EXPECT_EQ(table.times(), (std::vector<double>{0.0, 0.1}));
    ASSERT_EQ(table.columns().size(), 2U);
    EXPECT_EQ(table.columns()[0].header, "x");
    EXPECT_EQ(table.columns()[0].values, (std::vector<double>{1.5, std::numeric_limits<double>::infinity()}));
    EXPECT_EQ(table.columns()[1].values, (std::vector<double>{-2000.0, 7.0}));
}

TEST_F(RecordedTableTest, EmptyCellIsNotANumber)
{
    const RecordedTable table = RecordedTable::parse("time,x\n0,\n", "t.csv");
    EXPECT_TRUE(std::isnan(table.columns()[0].values[0]));
}

TEST_F(RecordedTableTest, TableWithoutRowsIsOne)
{
    EXPECT_TRUE(RecordedTable::parse("time,x\n", "t.csv").times().empty());
}

TEST_F(RecordedTableTest, NumbersReadTheSameInAGermanLocale)
{
    const std::string former = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
        GTEST_SKIP() << "the locale is not installed";
    }
    const RecordedTable table = RecordedTable::parse("time,x\n0.5,1.25\n", "t.csv");
    std::setlocale(LC_ALL, former.c_str());
    EXPECT_EQ(table.times()[0], 0.5);
    EXPECT_EQ(table.columns()[0].values[0], 1.25);
}

TEST_F(RecordedTableTest, TextThatIsNoNumberIsRefusedWithItsPlace)
{
    EXPECT_EQ(refusal("NotANumber", "time,Klima/Luft:1\n0,1\n1,warm\n"),
              "t.csv:3: column 2 (\"Klima/Luft:1\"): \"warm\" is not a number.");
    EXPECT_EQ(refusal("NotANumber", "time,x\n0,\"1,5\"\n"),
              "t.csv:2: column 2 (\"x\"): \"1,5\" is not a number.");
    EXPECT_EQ(refusal("NotANumber", "time,x\n0, 1\n"), "t.csv:2: column 2 (\"x\"): \" 1\" is not a number.");
    EXPECT_EQ(refusal("NotANumber", "time,x\n,1\n"), "t.csv:2: column 1 (\"time\"): \"\" is not a number.");
}

TEST_F(RecordedTableTest, NumberOutOfRangeIsRefused)
{
    EXPECT_EQ(refusal("NumberTooLarge", "time,x\n0,1e999\n"),
              "t.csv:2: column 2 (\"x\"): 1e999 is out of a number's range.");
}

TEST_F(RecordedTableTest, LineWithAnotherNumberOfColumnsIsRefused)
{
    EXPECT_EQ(refusal("WrongFieldCount", "time,x\n0,1\n1\n"),
              "t.csv:3: the line has 1 columns, the header row has 2.");
    EXPECT_EQ(refusal("WrongFieldCount", "time,x\n0,1,2\n"),
              "t.csv:2: the line has 3 columns, the header row has 2.");
}

TEST_F(RecordedTableTest, HeaderRowBeginsWithTheTime)
{
    EXPECT_EQ(refusal("NoHeader", ""), "t.csv: there is no header row.");
    EXPECT_EQ(refusal("NoTimeColumn", "x,time\n"), "t.csv: the first column is \"x\", not \"time\".");
}

TEST_F(RecordedTableTest, TimeDoesNotRunBack)
{
    EXPECT_EQ(refusal("TimeRunsBack", "time\n1\n1\n0.5\n"), "t.csv: row 3: the time 0.5 lies before 1.");
}

TEST_F(RecordedTableTest, TimeIsFinite)
{
    EXPECT_EQ(refusal("InvalidTime", "time\n0\ninf\n"), "t.csv: row 2: the time inf is no time.");
    EXPECT_EQ(refusal("InvalidTime", "time\nnan\n"), "t.csv: row 1: the time nan is no time.");
}

TEST_F(RecordedTableTest, ColumnsAreAsLongAsTheTimes)
{
    EXPECT_EQ(errorText("ColumnLength",
                        [] {
                            RecordedTable("the table", {0.0, 1.0}, {{"x", {1.0}}});
                        }),
              "the table: column 2 (\"x\") has 1 values for 2 times.");
}

TEST_F(RecordedTableTest, FileIsReadAsItsText)
{
    std::ofstream(pathOf("t.csv")) << "time,x\n0,4\n";
    EXPECT_EQ(RecordedTable::read(pathOf("t.csv")).columns()[0].values, std::vector<double>{4.0});
}

TEST_F(RecordedTableTest, FileThatCannotBeReadIsNamed)
{
    EXPECT_EQ(errorText("UnreadableFile", [&] { RecordedTable::read(pathOf("none.csv")); }),
              pathOf("none.csv") + ": No such file or directory");
    EXPECT_EQ(errorText("UnreadableFile", [&] { RecordedTable::read(m_folder); }),
              m_folder.string() + ": Is a directory");
}

TEST_F(RecordedTableTest, OnlyRegularFilesAreRead)
{
    EXPECT_EQ(errorText("UnreadableFile", [] { RecordedTable::read("/dev/zero"); }),
              "/dev/zero: It is not a regular file.");
    ASSERT_EQ(::mkfifo(pathOf("fifo").c_str(), 0600), 0);
    EXPECT_EQ(errorText("UnreadableFile", [&] { RecordedTable::read(pathOf("fifo")); }),
              pathOf("fifo") + ": It is not a regular file.");
}

TEST_F(RecordedTableTest, FileThatIsTooLargeIsNotRead)
{
    std::ofstream(pathOf("t.csv")) << "time,x\n0,4\n";
    std::filesystem::resize_file(pathOf("t.csv"), (std::size_t{256} << 20U) + 1);  // sparse
    EXPECT_EQ(errorText("UnreadableFile", [&] { RecordedTable::read(pathOf("t.csv")); }),
              pathOf("t.csv") + ": It is larger than 268435456 bytes.");
}

TEST_F(RecordedTableTest, CheckpointEndsTheReading)
{
    int rows = 0;
    const auto stopAtTheSecond = [&] {
        if (++rows == 2) {
            throw std::runtime_error("enough");
        }
    };
    EXPECT_THROW(RecordedTable::parse("time\n0\n1\n2\n", "t.csv", stopAtTheSecond), std::runtime_error);
    EXPECT_EQ(rows, 2);
}

TEST_F(RecordedTableTest, HeadersNamePorts)
{
    const RecordedTable table = RecordedTable::parse("time,Klima/Luft:CO₂,Klima/Luft:1\n", "t.csv");
    EXPECT_EQ(table.portsIn(m_model), (std::vector<OutputPort>{carbonDioxide(), temperature()}));
}

TEST_F(RecordedTableTest, HeaderThatNamesNoPortIsRefused)
{
    const RecordedTable table = RecordedTable::parse("time,Klima/Luft:1,Klima/Meer:1\n", "t.csv");
    EXPECT_EQ(errorText("NoSuchPort", [&] { table.portsIn(m_model); }),
              "t.csv: column 3 (\"Klima/Meer:1\") names no output port of the model \"Gewächshaus\": "
              "there is no such block.");
}

TEST_F(RecordedTableTest, SecondColumnOfAPortIsRefused)
{
    const RecordedTable table = RecordedTable::parse("time,Klima/Luft:1,Klima/Luft:Temperatur\n", "t.csv");
    EXPECT_EQ(errorText("SecondColumn", [&] { table.portsIn(m_model); }),
              "t.csv: columns 2 and 3 both name the port \"Klima/Luft:Temperatur\".");
}

}  // namespace
}  // namespace recorder
