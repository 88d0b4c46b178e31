#include "reference_host/observers/SignalRebinding.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
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

    /// Whether a signal with no handle is found by path and number.
    bool isObservedByPath(const std::u16string& path, std::size_t number) const
    {
        const rh::OwnedValue asked = rh::ObjectAccess::construct("Zelmar.HMI.SignalSpecification");
        rh::ObjectAccess::setProperty(asked.get(), "BlockPath_", rh::makeText(path).get());
        rh::ObjectAccess::setProperty(asked.get(), "OutputPortIndex_",
                                      rh::makeDouble(static_cast<double>(number)).get());
        return rh::isTrueScalar(
            rh::ObjectAccess::callMethod(signals.get(), "isPortObserved", {asked.get()}).front().get());
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
    const auto signal = rh::ObjectAccess::callMethod(collection, "get", {one.get()});
    rh::ObjectAccess::setProperty(signal.front().get(), "OutputPortIndex_", rh::makeDouble(1).get());
    rh::ObjectAccess::callMethod(collection, "set", {one.get(), signal.front().get()});
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

TEST_F(SignalRebinding, SignalsThatChangePlacesStayObserved)
{
    rh::Block& tank = at(u"Tank");
    addSignal(tank, 1);
    addSignal(gain(), 1);
    addSignal(u"plant/Tank", tank.zid(), 2);
    model->rename(tank, u"Former");
    model->move(gain(), root());
    model->rename(at(u"Gain"), u"Tank");
    model->rename(at(u"Former"), u"Gain");
    model->move(at(u"Gain"), at(u"Controller"));
    rebind();
    ASSERT_EQ(places(), (Places{"plant/Controller/Gain 1", "plant/Tank 1", "plant/Controller/Gain 2"}));
    for (std::size_t number : {1U, 2U}) {
        EXPECT_TRUE(isObservedByPath(u"plant/Controller/Gain", number)) << number;
        EXPECT_TRUE(isObserved(at(u"Controller/Gain"), number)) << number;
    }
    EXPECT_TRUE(isObservedByPath(u"plant/Tank", 1));
    EXPECT_TRUE(isObserved(at(u"Tank"), 1));
}

TEST_F(SignalRebinding, PortsThatChangePlacesStayObserved)
{
    for (const std::size_t number : {1U, 2U, 3U}) {
        addSignal(gain(), number);
    }
    const auto setUUID = [this](double number, const std::string& uuid) {
        rh::ObjectAccess::callStatic(
            rh::signalsClass, "setUUIDForBlock",
            {rh::makeDouble(gain().handle()).get(), rh::makeNumber(number, nvClassID::UInt32).get(),
             rh::makeText(uuid).get()});
    };
    const std::vector<rh::SignalRecord> before = records();
    setUUID(2, before[0].uuid);
    setUUID(3, before[1].uuid);
    setUUID(1, before[2].uuid);
    rebind();
    ASSERT_EQ(places(),
              (Places{"plant/Controller/Gain 2", "plant/Controller/Gain 3", "plant/Controller/Gain 1"}));
    for (const std::size_t number : {1U, 2U, 3U}) {
        EXPECT_TRUE(isObserved(gain(), number)) << number;
        EXPECT_TRUE(isObservedByPath(u"plant/Controller/Gain", number)) << number;
    }
}

TEST_F(SignalRebinding, ARemovedSignalTakesNoEntryOfAnotherAlong)
{
    addSignal(gain(), 3);
    addSignal(u"plant/Controller/Gain", at(u"Tank").zid(), 3);
    rebind(true);
    ASSERT_EQ(places(), Places{"plant/Controller/Gain 3"});
    EXPECT_TRUE(isObservedByPath(u"plant/Controller/Gain", 3));
    EXPECT_EQ(warnings().size(), 1U);
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
