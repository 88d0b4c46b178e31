#include "recorder/Replay.hpp"

#include "reference_host/model/OpenModels.hpp"
#include "reference_host/ssp/ModelFile.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/recorder/RecorderTest.hpp"

#include <stdexcept>
#include <vector>

namespace recorder {
namespace {

class ReplayTest : public RecorderTest {
protected:
    ~ReplayTest() override
    {
        EXPECT_TRUE(activeBlocks().getRegisteredBlocks().empty()) << "a block is still active";
    }

    RecordedTable m_table = RecordedTable::parse(
        "time,Klima/Luft:CO₂,Klima/Luft:Temperatur\n0,400,20\n0.5,410,20.5\n1,420,21\n", "t.csv");
};

TEST_F(ReplayTest, BlocksRecordTheColumnsOfTheirPorts)
{
    replay(m_model, m_table,
           {intoFile(temperature(), "out.csv"), intoFile(carbonDioxide(), "out.csv"),
            intoVariable(carbonDioxide(), u"v")});
    EXPECT_EQ(contentOf(pathOf("out.csv")),
              "time,Klima/Luft:Temperatur,Klima/Luft:CO₂\n0,20,400\n0.5,20.5,410\n1,21,420\n");
    EXPECT_EQ(reference_host::element(m_workspace.at(u"v").get(), 2), 420.0);
}

TEST_F(ReplayTest, WhatWasRecordedCanBeReplayed)
{
    replay(m_model, m_table, {intoFile(carbonDioxide(), "first.csv"), intoFile(temperature(), "first.csv")});
    replay(m_model, RecordedTable::read(pathOf("first.csv")),
           {intoFile(carbonDioxide(), "second.csv"), intoFile(temperature(), "second.csv")});
    EXPECT_EQ(contentOf(pathOf("second.csv")), contentOf(pathOf("first.csv")));
}

TEST_F(ReplayTest, BlocksAreActiveAtEachStep)
{
    std::vector<double> times;
    replay(m_model, m_table, {intoVariable(temperature(), u"v")}, [&](double time) {
        times.push_back(time);
        EXPECT_EQ(activeBlocks().getRegisteredBlocks().size(), 1U);
    });
    EXPECT_EQ(times, m_table.times());
}

TEST_F(ReplayTest, ReplayThatIsInterruptedKeepsWhatItHas)
{
    const auto interrupt = [](double time) {
        if (time == 0.5) {
            throw std::runtime_error("interrupted");
        }
    };
    EXPECT_THROW(replay(m_model, m_table, {intoFile(temperature(), "out.csv")}, interrupt),
                 std::runtime_error);
    EXPECT_EQ(contentOf(pathOf("out.csv")), "time,Klima/Luft:Temperatur\n0,20\n0.5,20.5\n");
}

TEST_F(ReplayTest, PortWithoutAColumnIsRefused)
{
    EXPECT_EQ(errorText("NoValues",
                        [&] {
                            replay(m_model, m_table, {intoVariable(OutputPort{m_pump, 0}, u"v")});
                        }),
              "The recording into variable \"v\": t.csv has no column for the port \"ポンプ:流量\".");
}

TEST_F(ReplayTest, BlockOfAnotherModelIsRefused)
{
    const reference_host::Model other(u"plant");
    EXPECT_EQ(
        errorText("OtherModel",
                  [&] { replay(other, RecordedTable("none", {}, {}), {intoVariable(temperature(), u"v")}); }),
        "The recording into variable \"v\" records from the model \"Gewächshaus\", the replay is of "
        "\"plant\".");
}

TEST_F(ReplayTest, BlockFollowsARename)
{
    const auto block = intoFile(temperature(), "out.csv");
    m_model.rename(*m_air, u"Raumluft");
    const RecordedTable table = RecordedTable::parse("time,Klima/Raumluft:1\n0,3\n", "t.csv");
    replay(m_model, table, {block});
    EXPECT_EQ(contentOf(pathOf("out.csv")), "time,Klima/Raumluft:Temperatur\n0,3\n");
}

TEST_F(ReplayTest, ExampleTableFitsTheExampleDiagram)
{
    const auto model = reference_host::openModel(ZM_EXAMPLES "/greenhouse.ssd");
    const RecordedTable table = RecordedTable::read(ZM_EXAMPLES "/greenhouse.csv");
    EXPECT_FALSE(table.times().empty());
    std::size_t steps = 0;
    replay(*model, table, {}, [&](double /*time*/) { ++steps; });
    EXPECT_EQ(steps, table.times().size());
    reference_host::OpenModels::closeAll();
}

}  // namespace
}  // namespace recorder
