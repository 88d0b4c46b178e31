#include "streamout/FileRecordingContext.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/Journal.hpp"
#include "tests/streamout/VirtualSlot.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace streamout {
namespace {

/// A format that records every third sample, whatever the text says, or refuses the text.
class EveryThird : public FileRecordingContext {
public:
    using FileRecordingContext::FileRecordingContext;

    std::string getSourceID() const override { return "source"; }
    RecordingLimits readRecordingLimits() const override
    {
        if (getMaxPoints() == "many") {
            throw std::invalid_argument("the maximum points are not a number: many");
        }
        return {.decimation = 3, .maxPoints = 100};
    }
};

/// One that supplies properties of its own.
class WithOwnProperties : public EveryThird {
public:
    using EveryThird::EveryThird;

    FilePropertiesMap getFilePropertiesMap() const override { return {{"own", 1.0}}; }
};

struct Properties {
    explicit Properties(const FileRecordingContext& context) { append(context); }
    void append(const FileRecordingContext& context)
    {
        context.getProperties(doubleNames, doubleValues, stringNames, stringValues);
    }

    std::vector<std::string> doubleNames;
    std::vector<double> doubleValues;
    std::vector<std::string> stringNames;
    std::vector<std::u16string> stringValues;
};

EveryThird contextWith(const FilePropertiesMap& properties)
{
    return {u"/logs/run.csv", u"plant", "domain", u"plant/Record", properties};
}

EveryThird contextFor(const std::u16string& filePath)
{
    return {filePath, u"plant", "domain", u"plant/Record", {}};
}

/// Keeps a journal of the host operations that the context calls.
class FileRecordingContextTest : public reference_host::HostTest {
protected:
    FileRecordingContextTest() { reference_host::Journal::startRecording(); }

    /// The host operations that the context called, one line each.
    static std::vector<std::string> hostCalls()
    {
        std::vector<std::string> calls;
        for (const reference_host::JournalEntry& entry : reference_host::Journal::entries()) {
            calls.push_back(entry.text());
        }
        return calls;
    }
};

TEST_F(FileRecordingContextTest, VirtualOperationsStandInTheirSlots)
{
    EXPECT_EQ(slotOf(&FileRecordingContext::getSourceID), 2U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getLoggingDomain), 3U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getBlockPath), 4U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getModelName), 5U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getFileName), 6U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getFullFilePath), 7U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getFilePropertiesMap), 8U);
    EXPECT_EQ(slotOf(&FileRecordingContext::readRecordingLimits), 9U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getRecordingLimits), 10U);
    EXPECT_EQ(slotOf(&FileRecordingContext::setDecimation), 11U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getDecimation), 12U);
    EXPECT_EQ(slotOf(&FileRecordingContext::setMaxPoints), 13U);
    EXPECT_EQ(slotOf(&FileRecordingContext::getMaxPoints), 14U);
}

TEST_F(FileRecordingContextTest, KeepsEachArgumentInItsPlace)
{
    const EveryThird context(u"/logs/run.csv", u"plant", "domain", u"plant/Record", {{"precision", 6.0}});

    EXPECT_EQ(context.getFullFilePath(), u"/logs/run.csv");
    EXPECT_EQ(context.getModelName(), u"plant");
    EXPECT_EQ(context.getLoggingDomain(), "domain");
    EXPECT_EQ(context.getBlockPath(), u"plant/Record");
    EXPECT_TRUE(context.getFilePropertiesMap() == (FilePropertiesMap{{"precision", 6.0}}));
}

TEST_F(FileRecordingContextTest, KeepsTextExactlyAsGiven)
{
    // A code unit 0, an unpaired surrogate, a line break, blanks at both ends.
    const std::u16string wide(u" a\0\xD800\n ", 6);
    const std::string narrow(" a\0\xFF\n ", 6);
    EveryThird context(u"run.csv", wide, narrow, wide, {{narrow, wide}});
    context.setDecimation(narrow);
    context.setMaxPoints(narrow);

    EXPECT_EQ(context.getModelName(), wide);
    EXPECT_EQ(context.getLoggingDomain(), narrow);
    EXPECT_EQ(context.getBlockPath(), wide);
    EXPECT_TRUE(context.getFilePropertiesMap() == (FilePropertiesMap{{narrow, wide}}));
    EXPECT_EQ(context.getDecimation(), narrow);
    EXPECT_EQ(context.getMaxPoints(), narrow);
}

TEST_F(FileRecordingContextTest, EmptyFilePathHasEmptyFullPathAndFileName)
{
    const EveryThird context = contextFor(u"");

    EXPECT_EQ(context.getFullFilePath(), u"");
    EXPECT_EQ(context.getFileName(), u"");
}

TEST_F(FileRecordingContextTest, EmptyFilePathIsNotMadeNative)
{
    const EveryThird context = contextFor(u"");

    EXPECT_EQ(hostCalls(), std::vector<std::string>{});
}

TEST_F(FileRecordingContextTest, FilePathIsMadeNativeOnceAndNormalized)
{
    const EveryThird context = contextFor(u"logs//run.csv");

    EXPECT_EQ(hostCalls(),
              std::vector<std::string>{"makeNativeForm(\"logs//run.csv\", true) -> \"logs/run.csv\""});
}

TEST_F(FileRecordingContextTest, FileNameIsTakenFromTheNativePath)
{
    const EveryThird context = contextFor(u"logs/other/../run.csv");
    reference_host::Journal::clear();
    context.getFileName();

    EXPECT_EQ(hostCalls(), std::vector<std::string>{"extractFileName(\"logs/run.csv\") -> \"run.csv\""});
}

TEST_F(FileRecordingContextTest, AHostErrorAboutThePathPassesThrough)
{
    reference_host::Faults::arm("makeNativeForm", reference_host::FaultKind::HostException, 1);

    EXPECT_THROW(contextFor(u"run.csv"), zmsvException);
    EXPECT_TRUE(reference_host::Faults::disarm());
}

TEST_F(FileRecordingContextTest, AHostErrorAboutTheNamePassesThrough)
{
    const EveryThird context = contextFor(u"run.csv");
    reference_host::Faults::arm("extractFileName", reference_host::FaultKind::HostException, 1);

    EXPECT_THROW(context.getFileName(), zmsvException);
    EXPECT_TRUE(reference_host::Faults::disarm());
}

TEST_F(FileRecordingContextTest, FullFilePathTakesItsNativeForm)
{
    EXPECT_EQ(contextFor(u"/logs//today/./run.csv").getFullFilePath(), u"/logs/today/run.csv");
}

TEST_F(FileRecordingContextTest, FileNameIsTheLastComponent)
{
    EXPECT_EQ(contextFor(u"/logs/M\u00FCnchen/\u6E29\u5EA6.csv").getFileName(), u"\u6E29\u5EA6.csv");
}

TEST_F(FileRecordingContextTest, FileNameOfABareNameIsTheName)
{
    EXPECT_EQ(contextFor(u"run.csv").getFileName(), u"run.csv");
}

TEST_F(FileRecordingContextTest, DecimationAndMaxPointsStartEmpty)
{
    const EveryThird context = contextFor(u"run.csv");

    EXPECT_EQ(context.getDecimation(), "");
    EXPECT_EQ(context.getMaxPoints(), "");
}

TEST_F(FileRecordingContextTest, DecimationAndMaxPointsAreReplacedApart)
{
    EveryThird context = contextFor(u"run.csv");
    context.setDecimation("1");
    context.setDecimation("2");
    context.setMaxPoints("1000");

    EXPECT_EQ(context.getDecimation(), "2");
    EXPECT_EQ(context.getMaxPoints(), "1000");
}

TEST_F(FileRecordingContextTest, DecimationAndMaxPointsAreNotParsed)
{
    EveryThird context = contextFor(u"run.csv");
    context.setDecimation("every other");

    EXPECT_EQ(context.getDecimation(), "every other");
}

TEST_F(FileRecordingContextTest, RecordingLimitsAreWhatTheFormatReads)
{
    const RecordingLimits limits = contextFor(u"run.csv").getRecordingLimits();

    EXPECT_EQ(limits.decimation, 3U);
    EXPECT_EQ(limits.maxPoints, 100U);
}

TEST_F(FileRecordingContextTest, AFormatsErrorPassesThrough)
{
    EveryThird context = contextFor(u"run.csv");
    context.setMaxPoints("many");

    EXPECT_THROW(context.getRecordingLimits(), std::invalid_argument);
}

TEST_F(FileRecordingContextTest, OneNumberAndOneTextFillOneListEach)
{
    const Properties properties(contextWith({{"precision", 6.0}, {"separator", std::u16string(u";")}}));

    EXPECT_EQ(properties.doubleNames, std::vector<std::string>{"precision"});
    EXPECT_EQ(properties.doubleValues, std::vector<double>{6.0});
    EXPECT_EQ(properties.stringNames, std::vector<std::string>{"separator"});
    EXPECT_EQ(properties.stringValues, std::vector<std::u16string>{u";"});
}

TEST_F(FileRecordingContextTest, NoPropertiesLeaveTheListsEmpty)
{
    const Properties properties(contextWith({}));

    EXPECT_TRUE(properties.doubleNames.empty() && properties.doubleValues.empty());
    EXPECT_TRUE(properties.stringNames.empty() && properties.stringValues.empty());
}

TEST_F(FileRecordingContextTest, AnEmptyTextIsATextProperty)
{
    const Properties properties(contextWith({{"comment", std::u16string()}}));

    EXPECT_TRUE(properties.doubleNames.empty());
    EXPECT_EQ(properties.stringNames, std::vector<std::string>{"comment"});
    EXPECT_EQ(properties.stringValues, std::vector<std::u16string>{u""});
}

TEST_F(FileRecordingContextTest, PropertiesAreAppended)
{
    Properties properties(contextWith({{"first", 1.0}, {"title", std::u16string(u"one")}}));
    properties.append(contextWith({{"second", 2.0}, {"title", std::u16string(u"two")}}));

    EXPECT_EQ(properties.doubleNames, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(properties.doubleValues, (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(properties.stringNames, (std::vector<std::string>{"title", "title"}));
    EXPECT_EQ(properties.stringValues, (std::vector<std::u16string>{u"one", u"two"}));
}

TEST_F(FileRecordingContextTest, PropertiesComeInTheMapsOwnOrder)
{
    FilePropertiesMap many;
    for (int i = 0; i < 100; ++i) {
        many.emplace("number" + std::to_string(i), static_cast<double>(i));
    }
    const EveryThird context = contextWith(many);
    const FilePropertiesMap copy = context.getFilePropertiesMap();
    std::vector<std::string> names;
    std::vector<double> values;
    for (const auto& [name, value] : copy) {
        names.push_back(name);
        values.push_back(boost::get<double>(value));
    }

    const Properties properties(context);
    EXPECT_EQ(properties.doubleNames, names);
    EXPECT_EQ(properties.doubleValues, values);
}

TEST_F(FileRecordingContextTest, PropertiesOfADerivedClassReplaceTheStoredOnes)
{
    const WithOwnProperties context(u"run.csv", u"plant", "domain", u"plant/Record", {{"stored", 2.0}});

    EXPECT_EQ(Properties(context).doubleNames, std::vector<std::string>{"own"});
}

TEST_F(FileRecordingContextTest, PropertiesAreACopy)
{
    const EveryThird context = contextWith({{"precision", 6.0}});
    FilePropertiesMap taken = context.getFilePropertiesMap();
    taken.clear();

    EXPECT_EQ(context.getFilePropertiesMap().size(), 1U);
}

TEST_F(FileRecordingContextTest, ReadingAPropertyAsTheOtherKindThrows)
{
    const FilePropertiesMap properties = contextWith({{"precision", 6.0}}).getFilePropertiesMap();

    EXPECT_THROW(boost::get<std::u16string>(properties.at("precision")), boost::bad_get);
}

}  // namespace
}  // namespace streamout
