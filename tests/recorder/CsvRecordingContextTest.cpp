#include "recorder/CsvRecordingContext.hpp"

#include "tests/recorder/RecorderTest.hpp"

namespace recorder {
namespace {

class CsvRecordingContextTest : public reference_host::HostTest {
protected:
    static CsvRecordingContext with(const streamout::FilePropertiesMap& properties)
    {
        return {u"/data/out.csv", u"plant", "domain", u"plant/Luft", properties, "plant:2:1"};
    }

    static std::string refusal(const char* key, const streamout::FilePropertiesMap& properties)
    {
        return errorText(key, [&] { with(properties).readColumnSettings(); });
    }
};

TEST_F(CsvRecordingContextTest, SourceIsTheOneGiven)
{
    EXPECT_EQ(with({}).getSourceID(), "plant:2:1");
}

TEST_F(CsvRecordingContextTest, LimitsFollowTheTexts)
{
    CsvRecordingContext context = with({});
    EXPECT_EQ(context.getRecordingLimits().decimation, 1U);
    context.setDecimation("3");
    context.setMaxPoints("40");
    EXPECT_EQ(context.getRecordingLimits().decimation, 3U);
    EXPECT_EQ(context.getRecordingLimits().maxPoints, 40U);
}

TEST_F(CsvRecordingContextTest, UnreadableLimitNamesTheFile)
{
    CsvRecordingContext context = with({});
    context.setDecimation("often");
    EXPECT_EQ(errorText("InvalidDecimation", [&] { context.getRecordingLimits(); }),
              "The recording into \"out.csv\": the decimation \"often\" is not a whole number from 1.");
}

TEST_F(CsvRecordingContextTest, ColumnSettingsComeFromTheProperties)
{
    const CsvColumnSettings settings =
        with({{"digits", 4.0}, {"header", std::u16string(u"Wärme")}}).readColumnSettings();
    EXPECT_EQ(settings.digits, 4);
    EXPECT_EQ(settings.header, "Wärme");
}

TEST_F(CsvRecordingContextTest, WithoutPropertiesNothingIsSet)
{
    const CsvColumnSettings settings = with({}).readColumnSettings();
    EXPECT_FALSE(settings.digits.has_value());
    EXPECT_FALSE(settings.header.has_value());
}

TEST_F(CsvRecordingContextTest, DigitsAreAWholeNumberThatADoubleHas)
{
    EXPECT_EQ(with({{"digits", 17.0}}).readColumnSettings().digits, 17);
    for (const double digits : {0.0, -1.0, 2.5, 18.0, 1e300}) {
        refusal("InvalidDigits", {{"digits", digits}});
    }
    EXPECT_EQ(refusal("InvalidDigits", {{"digits", std::u16string(u"3")}}),
              "The recording into \"out.csv\": the file property \"digits\" is a text, not a whole number "
              "from 1 to 17.");
}

TEST_F(CsvRecordingContextTest, HeaderIsAText)
{
    EXPECT_EQ(refusal("InvalidHeader", {{"header", 3.0}}),
              "The recording into \"out.csv\": the file property \"header\" is not a text.");
}

TEST_F(CsvRecordingContextTest, UnknownPropertyIsRefused)
{
    const std::string text =
        "The recording into \"out.csv\": there is no file property \"colour\"; \"digits\" and \"header\" "
        "exist.";
    EXPECT_EQ(refusal("UnknownProperty", {{"colour", 3.0}}), text);
    EXPECT_EQ(refusal("UnknownProperty", {{"colour", std::u16string(u"red")}}), text);
}

}  // namespace
}  // namespace recorder
