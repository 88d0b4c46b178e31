#include "reference_host/diagram/SignalRebinding.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ClassObjects.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace editor {
namespace {

namespace rh = reference_host;
using Places = std::vector<std::string>;

class SignalRebinding : public EditorTest {
protected:
    void rebind(bool removeUnbound = false) { rh::rebindSignals(signals.get(), removeUnbound); }

    /// The keys of the warnings, which are taken.
    static Places warnings()
    {
        Places keys;
        for (const rh::Warning& warning : rh::Warnings::take()) {
            keys.push_back(warning.id.key());
        }
        return keys;
    }

    rh::Block& gain() { return at(u"Controller/Gain"); }
};

TEST_F(SignalRebinding, ASignalFoundByItsZIDTakesOnPathAndHandle)
{
    addSignal(u"plant/Old/Gain", "plant:2", 2);
    rebind();
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 2"});
    EXPECT_TRUE(isObserved(gain(), 2));
    EXPECT_TRUE(warnings().empty());
}

TEST_F(SignalRebinding, TheUUIDOfAPortDecidesBeforeTheNumber)
{
    addSignal(gain(), 3);
    const nvArray* collection = signals.get();
    const rh::OwnedValue one = rh::makeNumber(1, nvClassID::UInt32);
    const auto signal = rh::ClassObjects::callMethod(collection, "get", {one.get()});
    rh::ClassObjects::setProperty(signal.front().get(), "OutputPortIndex_", rh::makeDouble(1).get());
    rh::ClassObjects::callMethod(collection, "set", {one.get(), signal.front().get()});
    ASSERT_EQ(places(), Places{"plant/Controller/Gain 1"});
    rebind();
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 3"});
}

TEST_F(SignalRebinding, WhereTheZIDLeadsNowhereThePathDoes)
{
    addSignal(u"plant/Tank", "plant:99", 2);
    rebind();
    EXPECT_EQ(places(), Places{"plant/Tank 2"});
    EXPECT_EQ(records()[0].zid, at(u"Tank").zid());
}

TEST_F(SignalRebinding, TheZIDDecidesBeforeThePath)
{
    addSignal(u"plant/Tank", "plant:2", 2);
    rebind();
    EXPECT_EQ(places(), Places{"plant/Controller/Gain 2"});
}

TEST_F(SignalRebinding, ANumberThatIsNotThereGivesWayToTheName)
{
    addSignal(u"plant/Tank", "", 7, u"flow");
    rebind();
    EXPECT_EQ(places(), Places{"plant/Tank 2"});
}

TEST_F(SignalRebinding, ANumberThatIsThereDecidesBeforeTheName)
{
    addSignal(u"plant/Tank", "", 1, u"flow");
    rebind();
    EXPECT_EQ(places(), Places{"plant/Tank 1"});
}

TEST_F(SignalRebinding, WhatNoLongerExistsIsReportedAndStays)
{
    addSignal(u"plant/Gone", "plant:99", 1);
    addSignal(u"plant/Tank", "", 7, u"no such port");
    addActivity(at(u"Tank"), u"5");
    addActivity(gain(), u"0");
    rebind();
    EXPECT_EQ(warnings(), (Places{"SignalUnbound", "SignalUnbound", "ActivityUnbound", "ActivityUnbound"}));
    EXPECT_EQ(places().size(), 4U);
}

TEST_F(SignalRebinding, WhatNoLongerExistsIsRemovedOnDemand)
{
    addSignal(u"plant/Gone", "plant:99", 1);
    addSignal(at(u"Tank"), 1);
    addSignal(u"plant/Tank", "", 7);
    rebind(true);
    EXPECT_EQ(places(), Places{"plant/Tank 1"});
    EXPECT_EQ(warnings().size(), 2U);
}

TEST_F(SignalRebinding, AChartObjectFollowsItsBlock)
{
    addActivity(at(u"Tank"), u"1");
    model->rename(at(u"Tank"), u"Basin");
    rebind();
    EXPECT_EQ(places(), Places{"plant/Basin 0"});
    EXPECT_TRUE(warnings().empty());
}

TEST_F(SignalRebinding, DomainParametersKeepTheirOrder)
{
    addActivity(at(u"Tank"), u"1");
    const std::string before = persisted();
    model->rename(at(u"Tank"), u"Basin");
    rebind();
    model->rename(at(u"Basin"), u"Tank");
    EXPECT_EQ(persisted(), before);
}

TEST_F(SignalRebinding, TheHostFunctionTakesACollectionAndAFlag)
{
    addSignal(u"plant/Gone", "", 1);
    const rh::OwnedValue flag = rh::makeLogical(true);
    rh::HostFunctions::call("applyRebindingRules", std::array<const nvArray*, 2>{signals.get(), flag.get()},
                            0);
    EXPECT_TRUE(places().empty());
    EXPECT_EQ(warnings().size(), 1U);
    EXPECT_THROW(rh::HostFunctions::call("applyRebindingRules",
                                         std::array<const nvArray*, 2>{clients.get(), flag.get()}, 0),
                 zmsvException);
}

}  // namespace
}  // namespace editor
