#include "hmi/InstrumentedSignals.hpp"

#include "hmi_foundation/ModelPath.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/RebindingAccess.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

zmPort* somePort()
{
    return reinterpret_cast<zmPort*>(std::uintptr_t{8});  // never looked into
}

/// The agreed steps, one after the other, through the collection's other operations.
void renumberStepByStep(InstrumentedSignals& signals, double blockHandle, const std::u16string& blockPath,
                        const std::string& zid, const std::vector<int>& newNumbers)
{
    const std::u16string path = zm_hmi_foundation::RemoveModelFromPath(blockPath, signals.getModelName());
    const std::string relativeZID = zm_hmi_foundation::RemoveModelFromZID(zid, signals.getModelName());
    std::vector<std::size_t> deleted;
    bool changed = false;
    for (std::size_t i = 0; i < signals.getCount(); ++i) {
        const SignalSpecificationPtr signal = signals.get(i);
        if (signal->getCachedBlockHandle() != blockHandle && signal->getBlockPath() != path &&
            signal->getZID() != relativeZID) {
            continue;
        }
        const int p = signal->getOutputPortIndex();
        if (p < 1 || p > static_cast<int>(newNumbers.size())) {
            continue;
        }
        const int n = newNumbers[static_cast<std::size_t>(p) - 1];
        if (n == p) {
            continue;
        }
        if (n == 0) {
            deleted.push_back(i);
        } else {
            signals.removeFromObservedPortMap(signal);
            signal->renumberPortIndex(n);
            signals.addToObservedPortMap(signal);
        }
        changed = true;
    }
    for (auto index = deleted.rbegin(); index != deleted.rend(); ++index) {
        signals.remove(*index);
    }
    if (changed) {
        signals.cacheZMPorts({});
        signals.updateObservedPortMap();
    }
}

class PortRenumbering : public LibraryTest {
protected:
    PortRenumbering() { signals.setModelName(u"m"); }

    SignalSpecificationPtr add(const SignalValues& values)
    {
        signals.add(makeSignal(values));
        return signals.get(signals.getCount() - 1);
    }

    /// A signal on a port of block "A", which has ZID "1" and handle 2.5.
    SignalSpecificationPtr addPort(int number)
    {
        return add(
            {.blockPath = u"A", .zid = "1", .outputPort = number, .cachedHandle = 2.5, .cachedPort = number});
    }

    void renumber(const std::vector<int>& newNumbers)
    {
        signals.renumberPorts(2.5, u"m/A", "m:1", newNumbers);
    }

    bool isObservedByPath(const std::u16string& path, int port)
    {
        return signals.isPortObserved(0.0, path, u"", port, 0, 0);
    }

    std::vector<int> outputPorts() const
    {
        std::vector<int> ports;
        for (std::size_t i = 0; i < signals.getCount(); ++i) {
            ports.push_back(signals.get(i)->getOutputPortIndex());
        }
        return ports;
    }

    InstrumentedSignals signals;
};

// ---- moved ports ----------------------------------------------------------------------------------------

TEST_F(PortRenumbering, TwoPortsSwapAndStayObservedUnderTheirNewKeys)
{
    const SignalSpecificationPtr first = addPort(1);
    const SignalSpecificationPtr second = addPort(2);
    renumber({2, 1});
    EXPECT_EQ(first->getOutputPortIndex(), 2);
    EXPECT_EQ(first->getCachedPortIdx(), 2);
    EXPECT_EQ(second->getOutputPortIndex(), 1);
    EXPECT_EQ(second->getCachedPortIdx(), 1);
    for (const int port : {1, 2}) {
        EXPECT_TRUE(signals.isPortObserved(2.5, port)) << port;
        EXPECT_TRUE(isObservedByPath(u"A", port)) << port;
    }
}

TEST_F(PortRenumbering, SwappedPortsAnswerForTheirOwnSignal)
{
    const SignalSpecificationPtr first = addPort(1);
    addPort(2);
    renumber({2, 1});
    signals.remove(0);
    EXPECT_EQ(first->getOutputPortIndex(), 2);
    EXPECT_FALSE(signals.isPortObserved(2.5, 2));
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
}

TEST_F(PortRenumbering, AMovedPortIsNotObservedUnderItsOldKeys)
{
    addPort(1);
    renumber({3});
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(isObservedByPath(u"A", 1));
    EXPECT_TRUE(signals.isPortObserved(2.5, 3));
    EXPECT_TRUE(isObservedByPath(u"A", 3));
}

TEST_F(PortRenumbering, TheLogicalPortStaysAndStaysInTheKey)
{
    const SignalSpecificationPtr signal = add({.blockPath = u"A", .outputPort = 1, .logicalPort = 7});
    renumber({2});
    EXPECT_EQ(signal->getOutputPortIndex(), 2);
    EXPECT_EQ(signal->getLogicalPortIndex(), 7);
    EXPECT_TRUE(signals.isPortObserved(0.0, u"A", u"", 2, 0, 7));
}

TEST_F(PortRenumbering, TheOrderOfTheSignalsStays)
{
    addPort(1);
    add(portValues(u"B", 9));
    addPort(2);
    addPort(3);
    renumber({3, 1, 2});
    EXPECT_EQ(outputPorts(), (std::vector<int>{3, 9, 1, 2}));
}

TEST_F(PortRenumbering, EverySignalOfAPortMoves)
{
    const SignalSpecificationPtr one = addPort(1);
    const SignalSpecificationPtr element = add({.blockPath = u"A", .subPath = u"x", .outputPort = 1});
    renumber({4});
    EXPECT_EQ(one->getOutputPortIndex(), 4);
    EXPECT_EQ(element->getOutputPortIndex(), 4);
    EXPECT_TRUE(signals.isPortObserved(0.0, u"A", u"x", 4, 0, 0));
}

// ---- deleted ports --------------------------------------------------------------------------------------

TEST_F(PortRenumbering, TheSignalOfADeletedPortGoesAndThoseBehindMoveUp)
{
    addPort(1);
    const SignalSpecificationPtr second = addPort(2);
    renumber({0, 1});
    ASSERT_EQ(signals.getCount(), 1U);
    EXPECT_EQ(signals.get(0), second);
    EXPECT_EQ(second->getOutputPortIndex(), 1);
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(2.5, 2));
}

TEST_F(PortRenumbering, TwoSignalsOnDeletedPortsAtDifferentIndicesBothGo)
{
    for (int i = 0; i < 10; ++i) {
        add(portValues(u"other", i));
    }
    signals.insert(3, makeSignal({.blockPath = u"A", .outputPort = 2}));
    signals.insert(7, makeSignal({.blockPath = u"A", .outputPort = 1}));
    renumber({0, 0, 1});
    EXPECT_EQ(outputPorts(), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_FALSE(isObservedByPath(u"A", 1));
    EXPECT_FALSE(isObservedByPath(u"A", 2));
}

TEST_F(PortRenumbering, AllPortsDeletedLeaveNothingObserved)
{
    addPort(1);
    addPort(2);
    renumber({0, 0});
    EXPECT_EQ(signals.getCount(), 0U);
    EXPECT_FALSE(signals.isAnyPortObserved());
}

TEST_F(PortRenumbering, ADeletedPortTakesTheEntriesOfNoOtherSignal)
{
    addPort(1);
    add({.blockPath = u"B", .outputPort = 1, .cachedHandle = 3.5, .cachedPort = 1});
    renumber({0});
    EXPECT_TRUE(signals.isPortObserved(3.5, 1));
    EXPECT_TRUE(isObservedByPath(u"B", 1));
}

TEST_F(PortRenumbering, AHeldSignalOutlivesItsRemoval)
{
    const SignalSpecificationPtr held = addPort(1);
    renumber({0});
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(held->getOutputPortIndex(), 1);
}

// ---- what is left alone ---------------------------------------------------------------------------------

TEST_F(PortRenumbering, APortBeyondTheMappingIsLeftAlone)
{
    const SignalSpecificationPtr second = addPort(2);
    renumber({1});
    EXPECT_EQ(second->getOutputPortIndex(), 2);
    renumber({3});
    EXPECT_EQ(second->getOutputPortIndex(), 2);
}

TEST_F(PortRenumbering, APortNumberOfZeroOrLessIsLeftAlone)
{
    const SignalSpecificationPtr none = addPort(0);
    const SignalSpecificationPtr negative = addPort(-1);
    renumber({5, 6});
    EXPECT_EQ(none->getOutputPortIndex(), 0);
    EXPECT_EQ(negative->getOutputPortIndex(), -1);
}

TEST_F(PortRenumbering, AnEmptyMappingChangesNothing)
{
    addPort(1);
    renumber({});
    EXPECT_EQ(outputPorts(), std::vector<int>{1});
}

TEST_F(PortRenumbering, AnotherBlockIsLeftAlone)
{
    const SignalSpecificationPtr other =
        add({.blockPath = u"B", .zid = "2", .outputPort = 1, .cachedHandle = 3.5, .cachedPort = 1});
    renumber({2});
    EXPECT_EQ(other->getOutputPortIndex(), 1);
}

TEST_F(PortRenumbering, APortMappedToItselfKeepsItsUnboundState)
{
    const SignalSpecificationPtr signal = add(portValues(u"A", 1));
    renumber({1});
    EXPECT_EQ(signal->getCachedPortIdx(), 0);
}

// ---- whose block it is ----------------------------------------------------------------------------------

TEST_F(PortRenumbering, AMatchByPathCountsWhateverTheHandle)
{
    const SignalSpecificationPtr signal =
        add({.blockPath = u"A", .zid = "9", .outputPort = 1, .cachedHandle = 77.5, .cachedPort = 1});
    renumber({2});
    EXPECT_EQ(signal->getOutputPortIndex(), 2);
    EXPECT_TRUE(signals.isPortObserved(77.5, 2));
}

TEST_F(PortRenumbering, AMatchByHandleCountsWhateverThePath)
{
    const SignalSpecificationPtr signal =
        add({.blockPath = u"old", .zid = "9", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    renumber({2});
    EXPECT_EQ(signal->getOutputPortIndex(), 2);
}

TEST_F(PortRenumbering, AMatchByZIDCountsWhateverPathAndHandle)
{
    const SignalSpecificationPtr signal = add({.blockPath = u"old", .zid = "1", .outputPort = 1});
    renumber({2});
    EXPECT_EQ(signal->getOutputPortIndex(), 2);
}

TEST_F(PortRenumbering, PathAndZIDMayComeWithoutTheModelName)
{
    const SignalSpecificationPtr byPath = add({.blockPath = u"A", .zid = "9", .outputPort = 1});
    const SignalSpecificationPtr byZID = add({.blockPath = u"old", .zid = "1", .outputPort = 1});
    signals.renumberPorts(2.5, u"A", "1", {2});
    EXPECT_EQ(byPath->getOutputPortIndex(), 2);
    EXPECT_EQ(byZID->getOutputPortIndex(), 2);
}

TEST_F(PortRenumbering, AnotherModelsBlockIsNotOurs)
{
    const SignalSpecificationPtr signal = add({.blockPath = u"A", .zid = "1", .outputPort = 1});
    signals.renumberPorts(2.5, u"n/A", "n:1", {2});
    EXPECT_EQ(signal->getOutputPortIndex(), 1);
}

TEST_F(PortRenumbering, HandleZeroIsEveryUnboundSignals)
{
    const SignalSpecificationPtr unbound = add(portValues(u"B", 1));
    signals.renumberPorts(0.0, u"m/A", "m:1", {2});
    EXPECT_EQ(unbound->getOutputPortIndex(), 2);
    EXPECT_EQ(unbound->getCachedPortIdx(), 2);
    EXPECT_EQ(unbound->getCachedBlockHandle(), 0.0);
    EXPECT_TRUE(signals.isPortObserved(0.0, 2));
}

TEST_F(PortRenumbering, ANotANumberHandleIsNobodys)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const SignalSpecificationPtr signal =
        add({.blockPath = u"B", .zid = "2", .outputPort = 1, .cachedHandle = nan, .cachedPort = 1});
    signals.renumberPorts(nan, u"m/A", "m:1", {2});
    EXPECT_EQ(signal->getOutputPortIndex(), 1);
}

// ---- chart elements -------------------------------------------------------------------------------------

TEST_F(PortRenumbering, AChartElementIsRenumberedLikeAnyOther)
{
    SignalValues state = stateValues("1", u"3", u"Self");
    state.outputPort = 1;
    const SignalSpecificationPtr signal = add(state);
    renumber({2});
    EXPECT_EQ(signal->getOutputPortIndex(), 2);
    EXPECT_TRUE(signals.isKWActivityObserved(u"m:1", 3.0, u"Self"));
    EXPECT_FALSE(signals.isAnyPortObserved());
}

TEST_F(PortRenumbering, AChartElementOfADeletedPortLeavesTheChartCaches)
{
    SignalValues state = stateValues("1", u"3", u"Self");
    state.outputPort = 1;
    add(state);
    renumber({0});
    EXPECT_EQ(signals.getCount(), 0U);
    EXPECT_FALSE(signals.isKWActivityObserved(u"m:1", 3.0, u"Self"));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"m:1", 3.0));
}

TEST_F(PortRenumbering, ATwinOfADeletedChartElementStaysObserved)
{
    SignalValues state = stateValues("1", u"3", u"Self");
    add(state);
    state.outputPort = 1;
    add(state);
    renumber({0});
    EXPECT_EQ(signals.getCount(), 1U);
    EXPECT_TRUE(signals.isKWActivityObserved(u"m:1", 3.0, u"Self"));
}

// ---- the port map and the port cache --------------------------------------------------------------------

TEST_F(PortRenumbering, AChangeForgetsThePortCache)
{
    addPort(1);
    signals.cacheZMPorts({somePort()});
    renumber({2});
    EXPECT_FALSE(signals.isZMPortObserved(somePort()));
}

TEST_F(PortRenumbering, AChangeOfAChartElementForgetsThePortCacheToo)
{
    SignalValues state = stateValues("1", u"3", u"Self");
    state.outputPort = 1;
    add(state);
    signals.cacheZMPorts({somePort()});
    renumber({2});
    EXPECT_FALSE(signals.isZMPortObserved(somePort()));
}

TEST_F(PortRenumbering, NoChangeKeepsPortCacheAndMapAsTheyAre)
{
    const SignalSpecificationPtr signal = addPort(1);
    signals.addToObservedPortMap(signal);
    signals.cacheZMPorts({somePort()});
    renumber({1, 3});
    EXPECT_TRUE(signals.isZMPortObserved(somePort()));
    EXPECT_EQ(signal.use_count(), 2 + 4) << "the second set of entries";
}

TEST_F(PortRenumbering, AChangeRebuildsTheMapOfAllSignals)
{
    addPort(1);
    const SignalSpecificationPtr other = add(portValues(u"B", 1));
    signals.addToObservedPortMap(other);
    renumber({2});
    EXPECT_EQ(other.use_count(), 2 + 1) << "duplicates are gone";
}

TEST_F(PortRenumbering, AChangeAloneRebuildsAlsoWhenItOnlyDeletes)
{
    add(portValues(u"B", 1));
    add(portValues(u"B", 1));
    addPort(1);
    signals.remove(0);
    ASSERT_FALSE(isObservedByPath(u"B", 1)) << "removed with its twin";
    renumber({0});
    EXPECT_TRUE(isObservedByPath(u"B", 1));
}

TEST_F(PortRenumbering, ASignalThatStandsTwiceInTheListMovesTwice)
{
    const SignalSpecificationPtr signal = addPort(1);
    signals.add(signal);
    renumber({2, 3});
    EXPECT_EQ(signal->getOutputPortIndex(), 3);
}

TEST_F(PortRenumbering, AnInverseMappingBringsThePortsBack)
{
    for (const int port : {1, 2, 3, 4}) {
        addPort(port);
    }
    renumber({2, 4, 1, 3});
    EXPECT_EQ(outputPorts(), (std::vector<int>{2, 4, 1, 3}));
    renumber({3, 1, 4, 2});
    EXPECT_EQ(outputPorts(), (std::vector<int>{1, 2, 3, 4}));
}

// ---- the short way and the literal one ------------------------------------------------------------------

// Small pools, so that the same ports come up again and again. Two paths share a key, and one has the key 0.
SignalValues anySignal()
{
    SignalValues values = {
        .blockPath = *rc::gen::element<std::u16string>(u"A", u"A", u"Gain", u"zsvaRe0ZzMma", u"M73TK7FOsLMa"),
        .zid = *rc::gen::element<std::string>("1", "2", ""),
        .subPath = *rc::gen::element<std::u16string>(u"", u"", u"x"),
        .outputPort = *rc::gen::element(0, 1, 1, 2, 2, 3, 5),
        .logicalPort = *rc::gen::element(0, 0, 0, 1, 2),
        .cachedHandle = *rc::gen::element(0.0, 0.0, 1.5, 2.5),
        .cachedPort = *rc::gen::element(0, 0, 1, 2)};
    if (*rc::gen::inRange(0, 3) == 0) {
        values.domainType = u"kw_state";
        values.domainParams = {{u"KZID", *rc::gen::element<std::u16string>(u"2", u"3")},
                               {u"Activity", *rc::gen::element<std::u16string>(u"Self", u"Child", u"Entry")}};
    }
    return values;
}

/// Two collections with equal elements that went through the same.
struct Pair {
    InstrumentedSignals shortWay;
    InstrumentedSignals literal;

    template <class Work>
    void both(Work work)
    {
        work(shortWay);
        work(literal);
    }

    void fill(const std::u16string& modelName)
    {
        both([&](InstrumentedSignals& signals) { signals.setModelName(modelName); });
        const int count = *rc::gen::inRange(0, 24);
        for (int i = 0; i < count; ++i) {
            const bool isUsedAgain = i > 0 && *rc::gen::inRange(0, 8) == 0;
            const SignalValues values = anySignal();
            const auto again = static_cast<std::size_t>(*rc::gen::inRange(0, std::max(i, 1)));
            both([&](InstrumentedSignals& signals) {
                signals.add(isUsedAgain ? signals.get(again) : makeSignal(values));
            });
        }
        disturb();
    }

    /// What edits leave behind: entries that stand twice, entries that a twin's removal took, a port cache.
    void disturb()
    {
        if (shortWay.getCount() > 0 && *rc::gen::inRange(0, 2) == 0) {
            const auto index = *rc::gen::inRange<std::size_t>(0, shortWay.getCount());
            both([&](InstrumentedSignals& signals) { signals.addToObservedPortMap(signals.get(index)); });
            const auto removed = *rc::gen::inRange<std::size_t>(0, shortWay.getCount());
            both([&](InstrumentedSignals& signals) { signals.remove(removed); });
        }
        both([&](InstrumentedSignals& signals) { signals.cacheZMPorts({somePort()}); });
    }

    void compareElements() const
    {
        RC_ASSERT(shortWay.getCount() == literal.getCount());
        for (std::size_t i = 0; i < literal.getCount(); ++i) {
            RC_ASSERT(valuesOf(*shortWay.get(i)) == valuesOf(*literal.get(i)));
            RC_ASSERT(shortWay.get(i).use_count() == literal.get(i).use_count());
        }
    }

    void compareLookups()
    {
        RC_ASSERT(shortWay.isZMPortObserved(somePort()) == literal.isZMPortObserved(somePort()));
        RC_ASSERT(shortWay.isAnyPortObserved() == literal.isAnyPortObserved());
        for (const char16_t* zid : {u"1", u"2", u""}) {
            for (const double kzid : {2.0, 3.0}) {
                for (const char16_t* activity : {u"Self", u"Child", u"Entry"}) {
                    RC_ASSERT(shortWay.isKWActivityObserved(zid, kzid, activity) ==
                              literal.isKWActivityObserved(zid, kzid, activity));
                }
                RC_ASSERT(shortWay.isAnyKWActivityObserved(zid, kzid) ==
                          literal.isAnyKWActivityObserved(zid, kzid));
            }
        }
        for (const double handle : {0.0, 1.5, 2.5}) {
            for (int port = 0; port < 8; ++port) {
                RC_ASSERT(shortWay.isPortObserved(handle, port) == literal.isPortObserved(handle, port));
            }
        }
    }

    /// Which of the unbound signals under one key is bound first shows the order that they stand in.
    void compareOrder()
    {
        double handle = 1000.5;
        for (const char16_t* path : {u"A", u"Gain", u"zsvaRe0ZzMma", u"M73TK7FOsLMa"}) {
            for (int port = 0; port < 8; ++port) {
                for (int logical = 0; logical < 3; ++logical) {
                    for (int repeat = 0; repeat < 3; ++repeat, ++handle) {
                        RC_ASSERT(shortWay.isPortObserved(handle, path, u"", port, 1, logical) ==
                                  literal.isPortObserved(handle, path, u"", port, 1, logical));
                    }
                }
            }
        }
        compareElements();
    }
};

RC_GTEST_FIXTURE_PROP(PortRenumbering, DoesWhatTheStepsDoOneAfterTheOther, ())
{
    Pair pair;
    pair.fill(*rc::gen::element<std::u16string>(u"m", u""));
    const int edits = *rc::gen::inRange(1, 4);
    for (int i = 0; i < edits; ++i) {
        const double handle = *rc::gen::element(2.5, 1.5, 0.0);
        const auto path = *rc::gen::element<std::u16string>(u"m/A", u"A", u"m/Gain", u"M73TK7FOsLMa");
        const auto zid = *rc::gen::element<std::string>("m:1", "2", "m:9", "");
        const auto numbers = *rc::gen::container<std::vector<int>>(rc::gen::element(0, 1, 1, 2, 3, 4, 7, -1));
        pair.shortWay.renumberPorts(handle, path, zid, numbers);
        renumberStepByStep(pair.literal, handle, path, zid, numbers);
        pair.compareElements();
        pair.compareLookups();
    }
    pair.compareOrder();
}

RC_GTEST_FIXTURE_PROP(PortRenumbering, OfSeveralBlocksIsThatOfOneAfterTheOther, ())
{
    Pair pair;
    pair.fill(*rc::gen::element<std::u16string>(u"m", u""));
    std::vector<InstrumentedSignals::PortNumbers> blocks;
    const int count = *rc::gen::inRange(0, 5);
    for (int i = 0; i < count; ++i) {
        blocks.push_back({*rc::gen::element(2.5, 1.5, 0.0, -0.0, std::numeric_limits<double>::quiet_NaN()),
                          *rc::gen::element<std::u16string>(u"m/A", u"A", u"m/Gain", u"M73TK7FOsLMa"),
                          *rc::gen::element<std::string>("m:1", "2", "m:9", ""),
                          *rc::gen::container<std::vector<int>>(rc::gen::element(0, 1, 1, 2, 3, 4, 7, -1))});
    }
    pair.shortWay.renumberPorts(blocks);
    for (const auto& [handle, path, zid, numbers] : blocks) {
        renumberStepByStep(pair.literal, handle, path, zid, numbers);
    }
    pair.compareElements();
    pair.compareLookups();
    pair.compareOrder();
}

// ---- rebinding ------------------------------------------------------------------------------------------

/// The host function in place of the one that rebinds; keeps what it was given.
class Rebinding : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        rh::describeClass("Zelmar.HMI.StreamingClients");
        HostTest::SetUp();
    }

    struct Call {
        std::size_t outputCount;
        std::vector<std::string> classes;
        bool flag;
    };

    std::vector<Call> calls;
    rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
    rh::ScopedHostFunction function{
        "applyRebindingRules", [this](rh::HostFunctionCall& call) {
            calls.push_back({call.outputCount(),
                             {rh::className(call.input(0)), rh::className(call.input(1))},
                             rh::isTrueScalar(call.input(1))});
            EXPECT_EQ(call.inputs().size(), 2U);
        }};
};

TEST_F(Rebinding, NullDoesNothingAndCallsNobody)
{
    InstrumentedSignals::applyRebindingRules(nullptr, true);
    EXPECT_TRUE(calls.empty());
}

TEST_F(Rebinding, TheHostGetsTheObjectAndTheFlagAndIsAskedForNothing)
{
    InstrumentedSignals::applyRebindingRules(object.get(), true);
    InstrumentedSignals::applyRebindingRules(object.get(), false);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].classes, (std::vector<std::string>{"Zelmar.HMI.InstrumentedSignals", "logical"}));
    EXPECT_EQ(calls[0].outputCount, 0U);
    EXPECT_TRUE(calls[0].flag);
    EXPECT_FALSE(calls[1].flag);
}

TEST_F(Rebinding, AHostFailureIsOneWarning)
{
    const rh::ScopedHostFunction failing("applyRebindingRules", fail);
    InstrumentedSignals::applyRebindingRules(object.get(), true);
    ASSERT_EQ(rh::Warnings::reported().size(), 1U);
    EXPECT_EQ(rh::Warnings::reported()[0].id.key(), "Refused");
}

TEST_F(Rebinding, AMissingHostFunctionIsOneWarning)
{
    rh::HostFunctions::remove("applyRebindingRules");
    InstrumentedSignals::applyRebindingRules(object.get(), true);
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
}

TEST_F(Rebinding, TheHostFunctionMayChangeTheCollection)
{
    InstrumentedSignals& signals = *InstrumentedSignals::getFromNVArray(object.get());
    const rh::ScopedHostFunction adding("applyRebindingRules", [](rh::HostFunctionCall& call) {
        const rh::OwnedValue signal = makeSignalObject(portValues(u"A", 1));
        rh::ObjectAccess::callMethod(call.input(0), "add", {signal.get()});
    });
    InstrumentedSignals::applyRebindingRules(object.get(), true);
    EXPECT_EQ(signals.getCount(), 1U);
}

TEST_F(Rebinding, AValueWithoutACollectionIsPassedOnAndNothingIsReset)
{
    rh::OwnedValue empty = rh::makeEmptyValue();
    rh::OwnedValue number = rh::makeDouble(1.0);
    rh::OwnedValue signal = makeSignalObject({});
    rh::OwnedValue clients = rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients");
    for (const nvArray* value : {empty.get(), number.get(), signal.get(), clients.get()}) {
        InstrumentedSignals::applyRebindingRules(value, true);
    }
    EXPECT_EQ(calls.size(), 4U);
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(Rebinding, NoRebindingIsPendingAfterwards)
{
    bool& pending = RebindingAccess::pending(*InstrumentedSignals::getFromNVArray(object.get()));
    pending = true;
    InstrumentedSignals::applyRebindingRules(object.get(), true);
    EXPECT_FALSE(pending);
    pending = true;
    const rh::ScopedHostFunction failing("applyRebindingRules", fail);
    InstrumentedSignals::applyRebindingRules(object.get(), true);
    EXPECT_FALSE(pending);
}

TEST_F(Rebinding, NoRebindingIsPendingAfterShortMemory)
{
    bool& pending = RebindingAccess::pending(*InstrumentedSignals::getFromNVArray(object.get()));
    rh::walkFaults(rh::Faults::anyOperation, rh::FaultKind::OutOfMemory, [&] {
        pending = true;
        try {
            InstrumentedSignals::applyRebindingRules(object.get(), true);
        } catch (...) {
            EXPECT_FALSE(pending);
            throw;
        }
        EXPECT_FALSE(pending);
    });
}

TEST_F(Rebinding, OfTwoObjectsTheFirstIsTaken)
{
    const rh::OwnedValue second = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
    const rh::OwnedValue both = rh::ObjectAccess::makeObjectArray(
        "Zelmar.HMI.InstrumentedSignals",
        {rh::objects(object.get()).front(), rh::objects(second.get()).front()});
    bool& ofFirst = RebindingAccess::pending(*InstrumentedSignals::getFromNVArray(object.get()));
    bool& ofSecond = RebindingAccess::pending(*InstrumentedSignals::getFromNVArray(second.get()));
    ofFirst = true;
    ofSecond = true;
    InstrumentedSignals::applyRebindingRules(both.get(), true);
    EXPECT_EQ(calls.size(), 1U);
    EXPECT_FALSE(ofFirst);
    EXPECT_TRUE(ofSecond);
}

TEST_F(Rebinding, EverythingIsFreedWhenAnOperationFails)
{
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto struck = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            InstrumentedSignals::applyRebindingRules(object.get(), true);
        });
        EXPECT_GT(struck, 0U);
        rh::Warnings::clear();
    }
}

}  // namespace
}  // namespace zm_hmi
