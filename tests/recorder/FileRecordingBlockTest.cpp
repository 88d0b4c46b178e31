#include "recorder/FileRecordingBlock.hpp"

#include "tests/recorder/RecorderTest.hpp"

namespace recorder {
namespace {

class FileRecordingBlockTest : public RecorderTest {
protected:
    std::string recorded(FileRecordingBlock& block, int steps) const
    {
        CsvFiles files;
        block.prepare(files);
        files.openAll();
        for (int i = 0; i < steps; ++i) {
            block.sample(i, 10.0 * i);
            files.endRow(i);
        }
        files.closeAll();
        block.finish();
        return contentOf(pathOf("out.csv"));
    }
};

TEST_F(FileRecordingBlockTest, ColumnIsNamedAfterThePort)
{
    EXPECT_EQ(recorded(*intoFile(carbonDioxide(), "out.csv"), 2), "time,Klima/Luft:CO₂\n0,0\n1,10\n");
}

TEST_F(FileRecordingBlockTest, PropertiesNameTheColumnAndCutDigits)
{
    const auto block =
        intoFile(temperature(), "out.csv", {{"header", std::u16string(u"Wärme")}, {"digits", 1.0}});
    EXPECT_EQ(recorded(*block, 2), "time,Wärme\n0,0\n1,1e+01\n");
}

TEST_F(FileRecordingBlockTest, DecimationIsHonoured)
{
    const auto block = intoFile(temperature(), "out.csv");
    block->context().setDecimation("3");
    EXPECT_EQ(recorded(*block, 5), "time,Klima/Luft:Temperatur\n0,0\n3,30\n");
}

TEST_F(FileRecordingBlockTest, MaximumPointsAreTheFirst)
{
    const auto block = intoFile(temperature(), "out.csv");
    block->context().setMaxPoints("2");
    EXPECT_EQ(recorded(*block, 5), "time,Klima/Luft:Temperatur\n0,0\n1,10\n");
}

TEST_F(FileRecordingBlockTest, MaximumPointsCountWhatTheDecimationLeaves)
{
    const auto block = intoFile(temperature(), "out.csv");
    block->context().setDecimation("2");
    block->context().setMaxPoints("2");
    EXPECT_EQ(recorded(*block, 9), "time,Klima/Luft:Temperatur\n0,0\n2,20\n");
}

TEST_F(FileRecordingBlockTest, SecondRunBeginsTheFileAnew)
{
    const auto block = intoFile(temperature(), "out.csv");
    block->context().setMaxPoints("1");
    recorded(*block, 3);
    EXPECT_EQ(recorded(*block, 1), "time,Klima/Luft:Temperatur\n0,0\n");
}

TEST_F(FileRecordingBlockTest, ContextSaysWhatIsRecorded)
{
    const auto block = intoFile(carbonDioxide(), "out.csv");
    const CsvRecordingContext& context = block->context();
    EXPECT_EQ(context.getModelName(), u"Gewächshaus");
    EXPECT_EQ(context.getBlockPath(), u"Gewächshaus/Klima/Luft");
    EXPECT_EQ(context.getSourceID(), m_air->zid() + ":2");
    EXPECT_EQ(context.getFileName(), u"out.csv");
}

TEST_F(FileRecordingBlockTest, RelativePathIsTakenFromTheCurrentFolder)
{
    const FileRecordingBlock block(temperature(), u"out.csv", "", {});
    EXPECT_EQ(block.target(), "file \"" + (std::filesystem::current_path() / "out.csv").string() + "\"");
}

TEST_F(FileRecordingBlockTest, EmptyPathIsRefused)
{
    EXPECT_EQ(errorText("NoTarget", [&] { FileRecordingBlock(temperature(), u"", "", {}); }),
              "The recording of \"Klima/Luft:Temperatur\" has no file.");
}

}  // namespace
}  // namespace recorder
