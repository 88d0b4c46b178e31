#include "recorder/RecordingRun.hpp"

#include "tests/recorder/RecorderTest.hpp"

#include <stdexcept>

namespace recorder {
namespace {

class RecordingRunTest : public RecorderTest {
protected:
    ~RecordingRunTest() override
    {
        EXPECT_TRUE(activeBlocks().getRegisteredBlocks().empty()) << "a block is still active";
    }

    static bool isActive(const std::shared_ptr<RecordingBlock>& block)
    {
        return activeBlocks().getBlockForBlockId(block->getBlockId()) == block;
    }
};

TEST_F(RecordingRunTest, BlocksAreRegisteredWhileTheRunLasts)
{
    const auto file = intoFile(temperature(), "out.csv");
    const auto variable = intoVariable(temperature(), u"v");
    RecordingRun run({file, variable});
    EXPECT_TRUE(isActive(file));
    EXPECT_TRUE(isActive(variable));
    run.stop();
    EXPECT_FALSE(isActive(file));
    EXPECT_FALSE(isActive(variable));
}

TEST_F(RecordingRunTest, RunThatIsLeftByAnErrorKeepsWhatItHas)
{
    const auto leave = [&] {
        RecordingRun run({intoFile(temperature(), "out.csv"), intoVariable(temperature(), u"v")});
        run.sample(0, 1.0, 2.0);
        run.sample(1, 1.0, 2.0);
        run.endOfTime(1.0);
        throw std::runtime_error("over");
    };
    EXPECT_THROW(leave(), std::runtime_error);
    EXPECT_EQ(contentOf(pathOf("out.csv")), "time,Klima/Luft:Temperatur\n1,2\n");
    EXPECT_TRUE(m_workspace.contains(u"v"));
}

TEST_F(RecordingRunTest, BlocksShareAFile)
{
    const auto second = intoFile(carbonDioxide(), "out.csv");
    second->context().setDecimation("2");
    RecordingRun run({intoFile(temperature(), "out.csv"), second});
    for (int i = 0; i < 3; ++i) {
        run.sample(0, i, i);
        run.sample(1, i, 400.0 + i);
        run.endOfTime(i);
    }
    run.stop();
    EXPECT_EQ(contentOf(pathOf("out.csv")),
              "time,Klima/Luft:Temperatur,Klima/Luft:CO₂\n0,0,400\n1,1,\n2,2,402\n");
}

TEST_F(RecordingRunTest, SameSourceIntoTheSameFileIsRefused)
{
    const auto block = intoFile(temperature(), "out.csv");
    EXPECT_EQ(errorText("RecordedTwice",
                        [&] {
                            RecordingRun({block, intoFile(temperature(), "out.csv")});
                        }),
              block->getBlockId() + " is recording already.");
}

TEST_F(RecordingRunTest, TwoBlocksForOneVariableAreRefused)
{
    EXPECT_EQ(
        errorText("TargetInUse",
                  [&] {
                      RecordingRun({intoVariable(temperature(), u"v"), intoVariable(carbonDioxide(), u"v")});
                  }),
        "variable \"v\": another recording writes there already.");
}

TEST_F(RecordingRunTest, FileOfAnotherRunIsRefused)
{
    RecordingRun run({intoFile(temperature(), "out.csv")});
    EXPECT_EQ(errorText("TargetInUse", [&] { RecordingRun({intoFile(carbonDioxide(), "out.csv")}); }),
              "file \"" + pathOf("out.csv") + "\": another recording writes there already.");
    run.stop();
}

TEST_F(RecordingRunTest, UnreadableSettingStartsNothing)
{
    const auto bad = intoFile(carbonDioxide(), "bad.csv");
    bad->context().setDecimation("0");
    errorText("InvalidDecimation", [&] { RecordingRun({intoFile(temperature(), "out.csv"), bad}); });
    EXPECT_FALSE(std::filesystem::exists(pathOf("out.csv")));
}

TEST_F(RecordingRunTest, FileThatCannotBeMadeSetsNoVariable)
{
    errorText("UnwritableFile", [&] {
        RecordingRun({intoVariable(temperature(), u"v"), intoFile(temperature(), "none/out.csv")});
    });
    EXPECT_TRUE(m_workspace.empty());
}

TEST_F(RecordingRunTest, FailureToStopOneBlockStopsTheOthers)
{
    const auto full =
        std::make_shared<FileRecordingBlock>(temperature(), u"/dev/full", "", streamout::FilePropertiesMap{});
    RecordingRun run({full, intoFile(temperature(), "out.csv"), intoVariable(temperature(), u"v")});
    errorText("UnwritableFile", [&] { run.stop(); });
    EXPECT_EQ(contentOf(pathOf("out.csv")), "time,Klima/Luft:Temperatur\n");
    EXPECT_TRUE(m_workspace.contains(u"v"));
}

}  // namespace
}  // namespace recorder
