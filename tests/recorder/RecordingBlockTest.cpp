#include "recorder/RecordingBlock.hpp"

#include "tests/recorder/RecorderTest.hpp"

#include <vector>

namespace recorder {
namespace {

class ListingBlock : public RecordingBlock {
public:
    ListingBlock(const OutputPort& port, std::uint64_t decimation)
        : RecordingBlock(port, "list"), m_decimation(decimation)
    {
    }
    bool sharesTarget() const noexcept override { return false; }
    void finish() override {}

    std::vector<double> m_times;

private:
    streamout::RecordingLimits begin(CsvFiles& /*files*/) override { return {m_decimation, {}}; }
    void record(double time, double /*value*/) override { m_times.push_back(time); }

    std::uint64_t m_decimation;
};

class RecordingBlockTest : public RecorderTest {
protected:
    CsvFiles m_files;

    void runFiveSteps(RecordingBlock& block)
    {
        block.prepare(m_files);
        for (int i = 0; i < 5; ++i) {
            block.sample(i, 0.0);
        }
    }
};

TEST_F(RecordingBlockTest, DecimationKeepsTheFirstAndEveryNthFromThere)
{
    ListingBlock block(temperature(), 2);
    runFiveSteps(block);
    EXPECT_EQ(block.m_times, (std::vector<double>{0.0, 2.0, 4.0}));
}

TEST_F(RecordingBlockTest, DecimationBeginsAnewWithEachRun)
{
    ListingBlock block(temperature(), 3);
    runFiveSteps(block);
    runFiveSteps(block);
    EXPECT_EQ(block.m_times, (std::vector<double>{0.0, 3.0, 0.0, 3.0}));
}

TEST_F(RecordingBlockTest, IdentifierNamesTargetAndSource)
{
    EXPECT_EQ(ListingBlock(carbonDioxide(), 1).getBlockId(), "list <- " + m_air->zid() + ":2");
}

TEST_F(RecordingBlockTest, PortThatTheBlockDoesNotHaveIsRefused)
{
    EXPECT_EQ(errorText("NoOutputPort",
                        [&] {
                            ListingBlock(OutputPort{m_air, 2}, 1);
                        }),
              "\"Gewächshaus/Klima/Luft\" has no output port 3.");
}

}  // namespace
}  // namespace recorder
