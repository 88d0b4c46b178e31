#include "reference_host/observers/ObservedPorts.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace editor {
namespace {

namespace rh = reference_host;
using Paths = std::vector<std::string>;

class ObservedPorts : public EditorTest {
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        addSignal(at(u"Controller"), 1);
        addSignal(at(u"Controller/Gain"), 3);
        addSignal(u"plant/Tank", "", 9, u"nowhere");
        addActivity(at(u"Tank"), u"1");
        addClient(1);
    }

    /// Asks the host function; the results stay until the next question.
    Paths ask(const std::u16string& system = {}, const std::u16string& domainType = {},
              bool atEveryDepth = true, bool goneToo = true)
    {
        const rh::OwnedValue name = rh::makeText(u"plant");
        const rh::OwnedValue start = rh::makeText(system);
        const rh::OwnedValue domain = rh::makeText(domainType);
        const rh::OwnedValue depth = rh::makeLogical(atEveryDepth);
        const rh::OwnedValue gone = rh::makeLogical(goneToo);
        const std::vector<const nvArray*> inputs = {name.get(), start.get(), domain.get(), depth.get(),
                                                    gone.get()};
        results = rh::HostFunctions::call("getObservedPorts", inputs, 10);
        Paths paths;
        for (std::size_t i = 0; i < rh::elementCount(results[7].get()); ++i) {
            paths.push_back(rh::utf8Text(rh::cell(results[7].get(), i)));
        }
        return paths;
    }

    double numberOf(std::size_t result, std::size_t i) const
    {
        return rh::element(results.at(result - 1).get(), i);
    }
    std::string textOf(std::size_t result, std::size_t i) const
    {
        return rh::utf8Text(rh::cell(results.at(result - 1).get(), i));
    }

    std::vector<rh::OwnedValue> results;
};

TEST_F(ObservedPorts, EverySignalIsOneElementOfEveryResult)
{
    EXPECT_EQ(ask(), (Paths{"plant/Controller", "plant/Controller/Gain", "plant/Tank", "plant/Tank"}));
    for (const rh::OwnedValue& result : results) {
        EXPECT_EQ(rh::elementCount(result.get()), 4U);
    }
}

TEST_F(ObservedPorts, TheResultsSayWhatIsObserved)
{
    ask();
    EXPECT_EQ(textOf(1, 1), records()[1].uuid);
    EXPECT_EQ(numberOf(2, 1), at(u"Controller/Gain").handle());
    EXPECT_EQ(numberOf(3, 1), 3.0);
    EXPECT_EQ(numberOf(4, 1), 0.0);
    EXPECT_EQ(numberOf(5, 1), 2.0);
    EXPECT_EQ(numberOf(6, 1), 1.0) << "it exists";
    EXPECT_EQ(numberOf(7, 1), 1.0) << "a client observes it";
    EXPECT_EQ(numberOf(7, 0), 0.0);
    EXPECT_EQ(numberOf(9, 1), 0.0);
    EXPECT_EQ(textOf(10, 1), "w") << "the port's name";
    EXPECT_EQ(textOf(10, 2), "nowhere") << "the signal's own";
    EXPECT_EQ(numberOf(6, 2), 0.0) << "no such port";
}

TEST_F(ObservedPorts, AChartObjectHasNoPortAndBearsItsOwnName)
{
    ask();
    EXPECT_EQ(numberOf(3, 3), 0.0);
    EXPECT_EQ(numberOf(9, 3), 1.0);
    EXPECT_EQ(textOf(10, 3), "Full");
}

TEST_F(ObservedPorts, ASystemLimitsWhatIsAskedFor)
{
    EXPECT_EQ(ask(u"Controller"), Paths{"plant/Controller/Gain"});
    EXPECT_EQ(ask(u"plant/Controller"), Paths{"plant/Controller/Gain"});
    EXPECT_EQ(ask(u"plant").size(), 4U);
}

TEST_F(ObservedPorts, ASystemsOwnBlocksAloneOnDemand)
{
    EXPECT_EQ(ask(u"", u"", false), (Paths{"plant/Controller", "plant/Tank", "plant/Tank"}));
}

TEST_F(ObservedPorts, ADomainTypeLimitsWhatIsAskedFor)
{
    EXPECT_EQ(ask(u"", u"kw_state").size(), 1U);
    EXPECT_EQ(ask(u"", u"kw_chart").size(), 0U);
}

TEST_F(ObservedPorts, WhatIsGoneIsLeftOutOnDemand)
{
    EXPECT_EQ(ask(u"", u"", true, false), (Paths{"plant/Controller", "plant/Controller/Gain", "plant/Tank"}));
}

TEST_F(ObservedPorts, NothingIsObservedWithoutSignals)
{
    model->setObservers(nullptr);
    EXPECT_TRUE(ask().empty());
}

TEST_F(ObservedPorts, BadgesAreOnBlocksWithAnObservedPortOrChartObject)
{
    const rh::OwnedValue name = rh::makeText(u"plant");
    const std::vector<const nvArray*> inputs = {name.get()};
    const auto badges = rh::HostFunctions::call("getPortsWithBadges", inputs, 1);
    ASSERT_EQ(rh::elementCount(badges[0].get()), 3U);
    EXPECT_EQ(rh::element(badges[0].get(), 0), at(u"Controller").handle());
    EXPECT_EQ(rh::element(badges[0].get(), 1), at(u"Controller/Gain").handle());
    EXPECT_EQ(rh::element(badges[0].get(), 2), at(u"Tank").handle());
}

TEST_F(ObservedPorts, AModelThatIsNotOpenIsAHostError)
{
    rh::OpenModels::closeAll();
    EXPECT_THROW(ask(), zmsvException);
}

}  // namespace
}  // namespace editor
