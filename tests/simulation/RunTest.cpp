#include "simulation/Run.hpp"

#include "editor/SignalEditor.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/EditHistory.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "simulation/TableSource.hpp"
#include "tests/editor/EditorTest.hpp"

#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>

namespace simulation {
namespace {

namespace rh = reference_host;
using rh::Block;
using rh::PortKind;

/// Gives each of its ports what a function says.
class FunctionSource : public Source {
public:
    using Function = std::function<void(double time, const InputValues& inputs, std::span<double> values)>;

    FunctionSource(std::vector<SourcePort> ports, Function function, std::vector<InputPort> inputs = {})
        : m_ports(std::move(ports)), m_inputs(std::move(inputs)), m_function(std::move(function))
    {
        for (const SourcePort& port : m_ports) {
            m_values.resize(m_values.size() + port.layout.width);
        }
    }

    std::string name() const override { return "the function"; }
    std::vector<SourcePort> ports() const override { return m_ports; }
    std::vector<InputPort> inputs() const override { return m_inputs; }
    void advance(double time, const InputValues& inputs) override { m_function(time, inputs, m_values); }
    void write(std::span<double> values) override
    {
        std::copy(m_values.begin(), m_values.end(), values.begin());
    }

private:
    std::vector<SourcePort> m_ports;
    std::vector<InputPort> m_inputs;
    Function m_function;
    std::vector<double> m_values;
};

class RunTest : public editor::EditorTest {
protected:
    Block& gain() { return at(u"Controller/Gain"); }
    Block& tank() { return at(u"Tank"); }

    /// Rows 0, 1, 2 … of two ports: 10 + row and 20 + row.
    std::unique_ptr<Source> table(std::vector<double> times = {0, 1, 2}, bool isLooped = false)
    {
        Table made{"the table", std::move(times), {{&gain(), 0, {}}, {&tank(), 1, {}}}, {}};
        for (std::size_t row = 0; row < made.times.size(); ++row) {
            made.values.push_back(10.0 + static_cast<double>(row));
            made.values.push_back(20.0 + static_cast<double>(row));
        }
        return std::make_unique<TableSource>(std::make_shared<const Table>(std::move(made)), isLooped);
    }

    template <class... Each>
    std::unique_ptr<simulation::Run> run(RunOptions options, Each... sources)
    {
        simulation::Run::Sources list;
        (list.push_back(std::move(sources)), ...);
        return std::make_unique<simulation::Run>(model, std::move(list), std::move(options));
    }

    static std::string keyOf(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const zmsvException& error) {
            return error.id().key() + std::string(": ") + error.what();
        }
        return "no error";
    }
};

TEST_F(RunTest, SignalsGetTheValuesOfTheTable)
{
    addSignal(gain(), 1);
    addSignal(tank(), 2);
    const auto running = run({}, table());
    ValueHub& hub = running->hub();
    ASSERT_EQ(hub.channels().size(), 2U);
    EXPECT_EQ(hub.channels()[0].blockPath, "plant/Controller/Gain");
    EXPECT_EQ(hub.channels()[0].portName, "y");
    EXPECT_TRUE(hub.channels()[0].hasSource);
    running->runOn();
    EXPECT_EQ(running->state(), RunState::Ended);
    EXPECT_EQ(hub.history(1).values, (std::vector<double>{10, 11, 12}));
    EXPECT_EQ(hub.history(2).times, (std::vector<double>{0, 1, 2}));
}

TEST_F(RunTest, RowsOfOneTimeAreStepsOfTheirOwn)
{
    addSignal(gain(), 1);
    const auto running = run({}, table({0, 0, 1}));
    running->runOn();
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{10, 11, 12}));
}

TEST_F(RunTest, TimeOfALoopedTableGoesOnGrowing)
{
    addSignal(gain(), 1);
    const auto running = run({.stop = 7.0}, table({0, 1, 2}, true));
    running->runOn();
    EXPECT_EQ(running->hub().history(1).times, (std::vector<double>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{10, 11, 12, 10, 11, 12, 10, 11}));
}

TEST_F(RunTest, ClockHoldsTheValuesOfATable)
{
    addSignal(gain(), 1);
    const auto running = run({.step = 0.5, .stop = 2.0}, table());
    running->runOn();
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{10, 10, 11, 11, 12}));
}

TEST_F(RunTest, StopIsReachedWhateverTheRounding)
{
    addSignal(gain(), 1);
    const auto running = run({.step = 0.1, .stop = 0.3}, table());
    running->runOn();
    EXPECT_EQ(running->hub().history(1).times.size(), 4U);
}

TEST_F(RunTest, InputTakesTheValueOfTheConnectedOutputOfTheSameStep)
{
    tank().addPort(PortKind::Input, u"in");
    root().addConnection({{&at(u"Controller"), {}, u"status"}, {&tank(), {}, u"in"}});
    at(u"Controller").addConnection({{&gain(), {}, u"y"}, {&at(u"Controller"), {}, u"status"}});
    addSignal(tank(), 1);
    addSignal(at(u"Controller"), 1);
    auto twice = std::make_unique<FunctionSource>(
        std::vector<SourcePort>{{{&tank(), 0, {}}, {}}},
        [](double /*time*/, const InputValues& inputs, std::span<double> values) {
            ASSERT_NE(inputs.values(0), nullptr);
            values[0] = 2.0 * *inputs.values(0);
        },
        std::vector<InputPort>{{&tank(), 0}});
    const auto running = run({}, std::move(twice), table());  // given in the wrong order
    running->runOn();
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{20, 22, 24}));
    EXPECT_EQ(running->hub().history(2).values, (std::vector<double>{10, 11, 12}));
}

TEST_F(RunTest, PortOfTwoSourcesIsRefused)
{
    auto other = std::make_unique<FunctionSource>(std::vector<SourcePort>{{{&gain(), 0, {}}, {}}},
                                                  FunctionSource::Function());
    EXPECT_EQ(keyOf([&] { run({}, table(), std::move(other)); }),
              "TwoSources: The port \"Controller/Gain:y\" is computed by two sources: the table and the "
              "function.");
}

TEST_F(RunTest, UnknownPortIsRefused)
{
    auto other = std::make_unique<FunctionSource>(std::vector<SourcePort>{{{&gain(), 7, {}}, {}}},
                                                  FunctionSource::Function());
    EXPECT_EQ(keyOf([&] { run({.step = 1.0}, std::move(other)); }),
              "NoOutputPort: the function: the block \"plant/Controller/Gain\" has no output port 8.");
}

TEST_F(RunTest, NaNIsAnErrorWhereItIsNotAllowed)
{
    addSignal(gain(), 1);
    auto bad = std::make_unique<FunctionSource>(
        std::vector<SourcePort>{{{&gain(), 0, {}}, {}}},
        [](double time, const InputValues& /*inputs*/, std::span<double> values) {
            values[0] = time < 2.0 ? time : std::numeric_limits<double>::quiet_NaN();
        });
    const auto running = run({.step = 1.0}, std::move(bad));
    EXPECT_EQ(keyOf([&] { running->runOn(); }),
              "NotANumber: the function: the value of the port \"Controller/Gain:y\" at 2 s is NaN.");
    EXPECT_EQ(running->state(), RunState::Ended);
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{0, 1}));
    EXPECT_FALSE(running->step());
}

TEST_F(RunTest, ErrorInASourceEndsTheRunWithWhatItHas)
{
    addSignal(gain(), 1);
    auto bad = std::make_unique<FunctionSource>(
        std::vector<SourcePort>{{{&gain(), 0, {}}, {}}},
        [](double time, const InputValues& /*inputs*/, std::span<double> /*values*/) {
            if (time >= 2.0) {
                throw std::runtime_error("broken");
            }
        });
    const auto running = run({.step = 1.0}, std::move(bad));
    EXPECT_THROW(running->runOn(), std::runtime_error);
    EXPECT_EQ(running->error(), "broken");
    EXPECT_EQ(running->hub().history(1).values.size(), 2U);
}

TEST_F(RunTest, RunWithoutTimesNeedsAStep)
{
    auto source = std::make_unique<FunctionSource>(std::vector<SourcePort>{}, FunctionSource::Function());
    EXPECT_EQ(keyOf([&] { run({}, std::move(source)); }),
              "NoTimes: No source has times of its own; the run needs a step.");
}

TEST_F(RunTest, PauseEndsTheLoopAndStepGoesOneFurther)
{
    const auto running = run({}, table());
    EXPECT_TRUE(running->next());
    running->pause();
    EXPECT_FALSE(running->next());
    EXPECT_TRUE(running->step());
    EXPECT_EQ(running->state(), RunState::Paused);
    EXPECT_EQ(running->time()->seconds, 1.0);
    running->resume();
    running->runOn();
    EXPECT_EQ(running->state(), RunState::Ended);
}

TEST_F(RunTest, ModelThatIsClosedEndsTheRun)
{
    addSignal(gain(), 1);
    const auto running = run({}, table());
    EXPECT_TRUE(running->step());
    rh::OpenModels::close(u"plant");
    EXPECT_EQ(keyOf([&] { running->step(); }), "ModelClosed: The model \"plant\" was closed during its run.");
    EXPECT_EQ(running->state(), RunState::Ended);
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{10}));
}

TEST_F(RunTest, SignalThatIsAddedGetsTheNextStep)
{
    const auto running = run({}, table());
    EXPECT_TRUE(running->step());
    addSignal(tank(), 2);
    EXPECT_TRUE(running->step());
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{21}));
}

TEST_F(RunTest, SignalThatIsRemovedIsNoChannelAnyMore)
{
    addSignal(tank(), 2);
    const auto running = run({}, table());
    EXPECT_TRUE(running->step());
    const rh::OwnedValue first = rh::makeNumber(1.0, nvClassID::UInt32);
    rh::ObjectAccess::callMethod(signals.get(), "remove", {first.get()});
    EXPECT_TRUE(running->step());
    EXPECT_TRUE(running->hub().channels().empty());
}

TEST_F(RunTest, RenumberedPortKeepsItsChannelAndItsValues)
{
    addSignal(gain(), 1);
    const editor::SignalEditor editor(model);
    const auto running = run({}, table());
    EXPECT_TRUE(running->step());
    history().reorderOutputs(gain(), {3, 1, 2});
    EXPECT_TRUE(running->step());
    ASSERT_EQ(running->hub().channels().size(), 1U);
    EXPECT_EQ(running->hub().channels()[0].portNumber, 3U);
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{10, 11}));
}

TEST_F(RunTest, DeletedPortIsBackWithTheUndo)
{
    addSignal(gain(), 1);
    const editor::SignalEditor editor(model);
    const auto running = run({}, table({0, 1, 2, 3}));
    EXPECT_TRUE(running->step());
    history().deleteOutput(gain(), 1);
    EXPECT_TRUE(running->step());
    EXPECT_TRUE(running->hub().channels().empty());
    history().undo();
    EXPECT_TRUE(running->step());
    ASSERT_EQ(running->hub().channels().size(), 1U);
    EXPECT_EQ(running->hub().latest(running->hub().channels()[0].id)->values, (std::vector<double>{12}));
}

TEST_F(RunTest, RenamedBlockKeepsItsChannel)
{
    addSignal(gain(), 1);
    const editor::SignalEditor editor(model);
    const auto running = run({}, table());
    EXPECT_TRUE(running->step());
    history().renameBlock(at(u"Controller"), u"Regler");
    EXPECT_TRUE(running->step());
    EXPECT_EQ(running->hub().find(1)->blockPath, "plant/Regler/Gain");
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{10, 11}));
}

TEST_F(RunTest, RenamedModelKeepsItsRun)
{
    addSignal(gain(), 1);
    const auto running = run({}, table());
    EXPECT_TRUE(running->step());
    history().renameModel(u"works");
    EXPECT_TRUE(running->step());
    EXPECT_EQ(running->hub().find(1)->blockPath, "works/Controller/Gain");
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{10, 11}));
}

TEST_F(RunTest, ChartItemHasValuesWhenASourceGivesThem)
{
    addActivity(tank(), u"1");
    auto source = std::make_unique<FunctionSource>(
        std::vector<SourcePort>{{{&tank(), 0, ChartItem{1, "Self"}}, {}}},
        [](double time, const InputValues& /*inputs*/, std::span<double> values) { values[0] = time; });
    const auto running = run({.step = 1.0, .stop = 1.0}, std::move(source));
    running->runOn();
    EXPECT_EQ(running->hub().channels()[0].portName, "Full");
    EXPECT_EQ(running->hub().history(1).values, (std::vector<double>{0, 1}));
}

TEST_F(RunTest, ClientsAreResolvedAnewAfterEachEdit)
{
    addSignal(gain(), 1);
    addSignal(tank(), 1);
    addClient(0);
    const editor::SignalEditor editor(model);
    const auto running = run({}, table());
    const auto first = running->hub().clients();
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0].channel, 1U);
    EXPECT_EQ(first[0].valueIndex, 0U);
    EXPECT_EQ(first[0].portNumber, 1);
    EXPECT_EQ(first[0].alignedPath, (std::vector<std::string>{"plant/Controller/Gain"}));
    history().reorderOutputs(gain(), {2, 1, 3});
    history().renameBlock(gain(), u"Regler");
    EXPECT_TRUE(running->step());
    EXPECT_EQ(running->hub().clients()[0].portNumber, 2);
    EXPECT_EQ(running->hub().clients()[0].alignedPath, (std::vector<std::string>{"plant/Controller/Regler"}));
}

TEST_F(RunTest, NothingIsReadAgainWhereNothingChanged)
{
    class Counter : public HubConsumer {
    public:
        void clientsChanged(const std::vector<ResolvedClient>& /*clients*/) override { ++calls; }
        void step(const StepTime& /*time*/, std::span<const ChannelSamples> /*samples*/) override {}
        int calls = 0;
    };
    addSignal(gain(), 1);
    addClient(0);
    const auto running = run({}, table());
    Counter counter;
    const Subscription subscription = running->hub().subscribe(counter);
    const int before = counter.calls;
    running->runOn();
    EXPECT_EQ(counter.calls, before);
}

TEST_F(RunTest, ProbeGivesThePortsSamples)
{
    const auto running = run({}, table());
    const ChannelId probe = running->probe({&tank(), 1, {}});
    EXPECT_TRUE(running->step());
    EXPECT_EQ(running->hub().latest(probe)->values, (std::vector<double>{20}));
    EXPECT_EQ(running->latest({&tank(), 1})->values, (std::vector<double>{20}));
    EXPECT_FALSE(running->latest({&tank(), 0}).has_value());
}

TEST_F(RunTest, CheckpointCanEndTheRun)
{
    RunOptions options;
    options.checkpoint = [] { throw std::runtime_error("interrupt"); };
    const auto running = run(std::move(options), table());
    EXPECT_THROW(running->step(), std::runtime_error);
    EXPECT_EQ(running->state(), RunState::Ended);
}

}  // namespace
}  // namespace simulation
