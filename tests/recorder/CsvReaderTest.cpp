#include "recorder/CsvReader.hpp"

#include "tests/recorder/RecorderTest.hpp"

#include <vector>

namespace recorder {
namespace {

using Records = std::vector<std::vector<std::string>>;

Records recordsOf(const std::string& text)
{
    CsvReader csv(text, "t.csv");
    Records records;
    while (csv.next()) {
        std::vector<std::string>& record = records.emplace_back();
        for (const CsvField& field : csv.fields()) {
            record.push_back(field.text);
        }
    }
    return records;
}

TEST(CsvReader, EmptyTextHasNoRecord)
{
    EXPECT_EQ(recordsOf(""), Records{});
}

TEST(CsvReader, LinesEndInLineFeedOrBoth)
{
    EXPECT_EQ(recordsOf("a,b\nc,d\r\ne,f"), (Records{{"a", "b"}, {"c", "d"}, {"e", "f"}}));
}

TEST(CsvReader, LastLineEndMakesNoRecord)
{
    EXPECT_EQ(recordsOf("a\n"), (Records{{"a"}}));
}

TEST(CsvReader, EmptyLineIsOneEmptyField)
{
    EXPECT_EQ(recordsOf("a\n\nb\n"), (Records{{"a"}, {""}, {"b"}}));
}

TEST(CsvReader, EmptyFieldsCount)
{
    EXPECT_EQ(recordsOf(",\n,,x,\n"), (Records{{"", ""}, {"", "", "x", ""}}));
}

TEST(CsvReader, FieldsOfARecordAreLimited)
{
    EXPECT_EQ(recordsOf(std::string(999'999, ',')).front().size(), 1'000'000U);
    EXPECT_EQ(errorText("TooManyFields", [] { recordsOf("\n" + std::string(1'000'000, ',')); }),
              "t.csv:2: column 1000001: the record has more fields than are accepted.");
}

TEST(CsvReader, BlanksBelongToTheField)
{
    EXPECT_EQ(recordsOf(" a , b\n"), (Records{{" a ", " b"}}));
}

TEST(CsvReader, QuotesHideCommasLineEndsAndQuotes)
{
    EXPECT_EQ(recordsOf("\"a,b\",\"c\r\nd\",\"\"\"e\"\"\",\"\"\n"),
              (Records{{"a,b", "c\r\nd", "\"e\"", ""}}));
}

TEST(CsvReader, ByteOrderMarkIsSkippedAtTheBeginningOnly)
{
    EXPECT_EQ(recordsOf("\xEF\xBB\xBFtime\n\xEF\xBB\xBF\n"), (Records{{"time"}, {"\xEF\xBB\xBF"}}));
}

TEST(CsvReader, NameOutsideAsciiIsKept)
{
    EXPECT_EQ(recordsOf("Wärme,弁 1,𠮷\n"), (Records{{"Wärme", "弁 1", "𠮷"}}));
}

TEST(CsvReader, RecordKnowsItsLineAfterAFieldOfSeveral)
{
    const std::string text = "\"a\nb\nc\",d\ne,f\n";
    CsvReader csv(text, "t.csv");
    ASSERT_TRUE(csv.next());
    EXPECT_EQ(csv.line(), 1U);
    EXPECT_EQ(csv.fields()[1].line, 3U);
    ASSERT_TRUE(csv.next());
    EXPECT_EQ(csv.line(), 4U);
}

TEST(CsvReader, QuoteInsideAPlainFieldIsRefused)
{
    EXPECT_EQ(errorText("StrayQuote", [] { recordsOf("a\nb,c\"d\"\n"); }),
              "t.csv:2: column 2: a quote stands inside a field that does not begin with one.");
}

TEST(CsvReader, TextAfterAClosingQuoteIsRefused)
{
    EXPECT_EQ(errorText("TextAfterQuote", [] { recordsOf("\"a\"b\n"); }),
              "t.csv:1: column 1: text follows the closing quote.");
}

TEST(CsvReader, OpenQuoteIsRefusedWhereItBegins)
{
    EXPECT_EQ(errorText("OpenQuote", [] { recordsOf("a\nb,\"c\nd\n"); }),
              "t.csv:2: column 2: the quote that begins the field is never closed.");
}

TEST(CsvReader, LoneCarriageReturnIsRefused)
{
    EXPECT_EQ(errorText("StrayReturn", [] { recordsOf("a\rb"); }),
              "t.csv:1: column 1: a carriage return stands without a line feed.");
}

}  // namespace
}  // namespace recorder
