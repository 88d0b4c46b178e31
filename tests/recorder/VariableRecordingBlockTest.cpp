#include "recorder/VariableRecordingBlock.hpp"

#include "reference_host/values/ValueReading.hpp"
#include "tests/recorder/RecorderTest.hpp"

#include <vector>

namespace recorder {
namespace {

class VariableRecordingBlockTest : public RecorderTest {
protected:
    void record(VariableRecordingBlock& block, int steps)
    {
        CsvFiles files;
        block.prepare(files);
        for (int i = 0; i < steps; ++i) {
            block.sample(0.1 * i, i);
        }
        block.finish();
    }

    std::vector<double> recorded(VariableRecordingBlock& block, int steps)
    {
        record(block, steps);
        const nvArray* value = m_workspace.at(u"v").get();
        std::vector<double> result;
        for (std::size_t i = 0; i < reference_host::elementCount(value); ++i) {
            result.push_back(reference_host::element(value, i));
        }
        return result;
    }
};

TEST_F(VariableRecordingBlockTest, VariableHoldsTheSignal)
{
    EXPECT_EQ(recorded(*intoVariable(temperature(), u"v"), 3), (std::vector<double>{0.0, 1.0, 2.0}));
}

TEST_F(VariableRecordingBlockTest, DecimationIsHonoured)
{
    EXPECT_EQ(recorded(*intoVariable(temperature(), u"v", "2"), 5), (std::vector<double>{0.0, 2.0, 4.0}));
}

TEST_F(VariableRecordingBlockTest, MaximumPointsAreTheLast)
{
    EXPECT_EQ(recorded(*intoVariable(temperature(), u"v", "", "2"), 5), (std::vector<double>{3.0, 4.0}));
}

TEST_F(VariableRecordingBlockTest, MaximumPointsCountWhatTheDecimationLeaves)
{
    EXPECT_EQ(recorded(*intoVariable(temperature(), u"v", "3", "2"), 9), (std::vector<double>{3.0, 6.0}));
}

TEST_F(VariableRecordingBlockTest, SecondRunReplacesTheVariable)
{
    const auto block = intoVariable(temperature(), u"v");
    recorded(*block, 3);
    EXPECT_EQ(recorded(*block, 1), std::vector<double>{0.0});
}

TEST_F(VariableRecordingBlockTest, ShapeFollowsTheFormat)
{
    record(*intoVariable(temperature(), u"v", "", "", "structwithtime"), 2);
    EXPECT_EQ(reference_host::className(m_workspace.at(u"v").get()), "struct");
}

TEST_F(VariableRecordingBlockTest, UnreadableSettingNamesTheVariable)
{
    CsvFiles files;
    EXPECT_EQ(
        errorText("InvalidMaxPoints", [&] { intoVariable(temperature(), u"v", "", "few")->prepare(files); }),
        "The recording into variable \"v\": the maximum points \"few\" are neither a whole number "
        "from 1 nor \"inf\".");
}

TEST_F(VariableRecordingBlockTest, ContextSaysWhatIsRecorded)
{
    const auto block = intoVariable(carbonDioxide(), u"v", "2", "3", "struct");
    EXPECT_EQ(block->context().getModelName(), u"Gewächshaus");
    EXPECT_EQ(block->context().getSourceID(), m_air->zid() + ":2");
    EXPECT_TRUE(block->context().getFixedPtAsDoubleFlag());
}

TEST_F(VariableRecordingBlockTest, EmptyNameIsRefused)
{
    EXPECT_EQ(errorText("NoTarget", [&] { intoVariable(temperature(), u""); }),
              "The recording of \"Klima/Luft:Temperatur\" has no variable.");
}

}  // namespace
}  // namespace recorder
