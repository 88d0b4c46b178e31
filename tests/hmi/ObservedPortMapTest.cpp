#include "hmi/InstrumentedSignals.hpp"

#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

class ObservedPortMap : public LibraryTest {
protected:
    SignalSpecificationPtr add(const SignalValues& values)
    {
        signals.add(makeSignal(values));
        return signals.get(signals.getCount() - 1);
    }

    /// How often the map refers to a signal that we hold once and the list once.
    static long entriesOf(const SignalSpecificationPtr& signal) { return signal.use_count() - 2; }

    /// The full query for a port without sub-path and logical port.
    bool isObserved(double handle, const std::u16string& path, int outputPort, int portNumber)
    {
        return signals.isPortObserved(handle, path, u"", outputPort, portNumber, 0);
    }

    InstrumentedSignals signals;
};

const SignalValues unbound = portValues(u"A", 1);
const SignalValues bound = {.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1};

// ---- entering ---------------------------------------------------------------------------------------

TEST_F(ObservedPortMap, ASignalWithoutACachedPortStandsUnderOneKey)
{
    EXPECT_EQ(entriesOf(add(unbound)), 1);
}

TEST_F(ObservedPortMap, ASignalWithACachedPortStandsUnderTwoKeys)
{
    EXPECT_EQ(entriesOf(add(bound)), 2);
}

TEST_F(ObservedPortMap, ACachedHandleWithoutAPortDoesNotCount)
{
    const SignalSpecificationPtr signal = add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5});
    EXPECT_EQ(entriesOf(signal), 1);
    EXPECT_FALSE(signals.isPortObserved(2.5, 0));
}

TEST_F(ObservedPortMap, ACachedPortWithoutAHandleCounts)
{
    const SignalSpecificationPtr signal = add({.blockPath = u"A", .outputPort = 1, .cachedPort = 3});
    EXPECT_EQ(entriesOf(signal), 2);
    EXPECT_TRUE(signals.isPortObserved(0.0, 3));
}

TEST_F(ObservedPortMap, EnteringTwiceStandsTwice)
{
    const SignalSpecificationPtr signal = add(bound);
    signals.addToObservedPortMap(signal);
    EXPECT_EQ(entriesOf(signal), 4);
}

TEST_F(ObservedPortMap, ANonCachedKeyOfZeroIsNotEntered)
{
    const SignalSpecificationPtr signal = add(portValues(u"M73TK7FOsLMa", 1));
    ASSERT_EQ(signal->getSourceKeyNonCached(u""), 0U);
    EXPECT_EQ(entriesOf(signal), 0);
    EXPECT_FALSE(signals.isAnyPortObserved());
    EXPECT_FALSE(isObserved(0.0, u"M73TK7FOsLMa", 1, 0));
}

TEST_F(ObservedPortMap, ANonCachedKeyOfZeroLeavesTheCachedKey)
{
    const SignalSpecificationPtr signal =
        add({.blockPath = u"M73TK7FOsLMa", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    EXPECT_EQ(entriesOf(signal), 1);
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
}

TEST_F(ObservedPortMap, ACachedKeyOfZeroIsNotEntered)
{
    const SignalSpecificationPtr signal = add(
        {.blockPath = u"A", .outputPort = 1, .cachedHandle = 1.6122492007444271, .cachedPort = 2145007537});
    ASSERT_EQ(signal->getSourceKeyCached(), 0U);
    EXPECT_EQ(entriesOf(signal), 1);
    EXPECT_FALSE(signals.isPortObserved(1.6122492007444271, 2145007537));
    EXPECT_TRUE(isObserved(0.0, u"A", 1, 0));
}

TEST_F(ObservedPortMap, KeysOfZeroForgetNoPortCache)
{
    const SignalSpecificationPtr signal = makeSignal(portValues(u"M73TK7FOsLMa", 1));
    const auto port = reinterpret_cast<zmPort*>(std::uintptr_t{1});
    signals.cacheZMPorts({port});
    signals.addToObservedPortMap(signal);
    EXPECT_TRUE(signals.isZMPortObserved(port));
}

TEST_F(ObservedPortMap, ChartSignalsAreNotEntered)
{
    SignalValues state = stateValues("7", u"3", u"Self");
    state.cachedHandle = 2.5;
    state.cachedPort = 1;
    EXPECT_EQ(entriesOf(add(state)), 0);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
}

TEST_F(ObservedPortMap, TheModelNameIsPartOfTheKey)
{
    signals.setModelName(u"plant");
    add(unbound);
    EXPECT_TRUE(isObserved(0.0, u"A", 1, 0));
    signals.setModelName(u"");
    EXPECT_FALSE(isObserved(0.0, u"A", 1, 0));
    EXPECT_FALSE(isObserved(0.0, u"plant/A", 1, 0)) << "the same key, but another block path";
}

// ---- removing ---------------------------------------------------------------------------------------

TEST_F(ObservedPortMap, RemovingTakesBothEntries)
{
    const SignalSpecificationPtr signal = add(bound);
    signals.removeFromObservedPortMap(signal);
    EXPECT_EQ(entriesOf(signal), 0);
    EXPECT_FALSE(signals.isAnyPortObserved());
}

TEST_F(ObservedPortMap, RemovingMatchesByValueNotByPointer)
{
    const SignalSpecificationPtr signal = add(unbound);
    const SignalSpecificationPtr twin = add(unbound);
    signals.removeFromObservedPortMap(makeSignal(unbound));
    EXPECT_EQ(entriesOf(signal), 0);
    EXPECT_EQ(entriesOf(twin), 0);
}

TEST_F(ObservedPortMap, RemovingTakesDuplicatesOfRepeatedAdds)
{
    const SignalSpecificationPtr signal = add(bound);
    signals.add(signal);
    signals.add(signal);
    signals.remove(0);
    EXPECT_EQ(signal.use_count(), 3) << "ours and two in the list";
    EXPECT_FALSE(signals.isAnyPortObserved());
}

TEST_F(ObservedPortMap, RemovingMatchesTheLogicalPortThroughTheKeyAlone)
{
    const SignalSpecificationPtr signal = add({.blockPath = u"A", .outputPort = 2, .logicalPort = 0});
    signals.removeFromObservedPortMap(makeSignal({.blockPath = u"A", .outputPort = 2, .logicalPort = 2}));
    EXPECT_EQ(entriesOf(signal), 0);
}

TEST_F(ObservedPortMap, RemovingReachesOnlyTheOwnKeys)
{
    const SignalSpecificationPtr element = add({.blockPath = u"A", .subPath = u"x", .outputPort = 1});
    const SignalSpecificationPtr logical = add({.blockPath = u"A", .outputPort = 1, .logicalPort = 2});
    signals.removeFromObservedPortMap(makeSignal(unbound));
    EXPECT_EQ(entriesOf(element), 1);
    EXPECT_EQ(entriesOf(logical), 1);
}

TEST_F(ObservedPortMap, RemovingLeavesAnotherPortThatSharesTheNonCachedKey)
{
    const SignalSpecificationPtr gain = add(portValues(u"Gain", 1));
    const SignalSpecificationPtr other = add(portValues(u"zsvaRe0ZzMma", 1));
    ASSERT_EQ(gain->getSourceKeyNonCached(u""), other->getSourceKeyNonCached(u""));
    signals.removeFromObservedPortMap(gain);
    EXPECT_EQ(entriesOf(gain), 0);
    EXPECT_EQ(entriesOf(other), 1);
}

TEST_F(ObservedPortMap, RemovingTakesTheCachedEntryOfAnotherPathWithTheSameHandleAndPort)
{
    const SignalSpecificationPtr elsewhere =
        add({.blockPath = u"B", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    signals.removeFromObservedPortMap(makeSignal(bound));
    EXPECT_EQ(entriesOf(elsewhere), 1);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_TRUE(isObserved(0.0, u"B", 1, 0));
}

TEST_F(ObservedPortMap, RemovingReachesTheCachedEntryOfAMovedSignal)
{
    const SignalSpecificationPtr signal = add(bound);
    signals.removeFromObservedPortMap(
        makeSignal({.blockPath = u"Moved", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1}));
    EXPECT_EQ(entriesOf(signal), 1);
}

TEST_F(ObservedPortMap, RemovingLooksAtTheEntriesAsTheyAreNow)
{
    const SignalSpecificationPtr signal = add(bound);
    const SignalSpecificationPtr elsewhere =
        makeSignal({.blockPath = u"B", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    signal->setCachedInfo(2.5, 9);
    signals.removeFromObservedPortMap(elsewhere);
    EXPECT_EQ(entriesOf(signal), 2) << "another port under the same key";
    signal->setCachedInfo(9.5, 1);
    signals.removeFromObservedPortMap(elsewhere);
    EXPECT_EQ(entriesOf(signal), 2) << "another handle under the same key";
    signal->setCachedInfo(2.5, 1);
    signals.removeFromObservedPortMap(elsewhere);
    EXPECT_EQ(entriesOf(signal), 1);
}

TEST_F(ObservedPortMap, RemovingANotANumberHandleLeavesItsCachedEntry)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const SignalSpecificationPtr signal =
        add({.blockPath = u"A", .outputPort = 1, .cachedHandle = nan, .cachedPort = 1});
    ASSERT_EQ(entriesOf(signal), 2);
    signals.removeFromObservedPortMap(signal);
    EXPECT_EQ(entriesOf(signal), 1);
}

TEST_F(ObservedPortMap, RemovingWhatIsNotThereKeepsThePortCache)
{
    add(unbound);
    const auto port = reinterpret_cast<zmPort*>(std::uintptr_t{1});
    signals.cacheZMPorts({port});
    signals.removeFromObservedPortMap(makeSignal(portValues(u"B", 1)));
    EXPECT_TRUE(signals.isZMPortObserved(port));
    signals.removeFromObservedPortMap(makeSignal(unbound));
    EXPECT_FALSE(signals.isZMPortObserved(port));
}

// ---- updating ---------------------------------------------------------------------------------------

TEST_F(ObservedPortMap, UpdatingEntersEveryElementOnce)
{
    const SignalSpecificationPtr signal = add(bound);
    signals.addToObservedPortMap(signal);
    signals.updateObservedPortMap();
    EXPECT_EQ(entriesOf(signal), 2);
}

TEST_F(ObservedPortMap, UpdatingBringsBackWhatTheRemovalOfATwinTook)
{
    add(unbound);
    add(unbound);
    signals.remove(0);
    ASSERT_FALSE(isObserved(0.0, u"A", 1, 0));
    signals.updateObservedPortMap();
    EXPECT_TRUE(isObserved(0.0, u"A", 1, 0));
}

TEST_F(ObservedPortMap, UpdatingKeepsTheChartCaches)
{
    const SignalSpecificationPtr state = add(stateValues("7", u"3", u"Self"));
    signals.remove(*state);
    signals.updateObservedPortMap();
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
}

// ---- the cached query -------------------------------------------------------------------------------

TEST_F(ObservedPortMap, CachedQueryNeedsHandleAndPort)
{
    add(bound);
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(2.5, 2));
    EXPECT_FALSE(signals.isPortObserved(3.5, 1));
    EXPECT_FALSE(signals.isPortObserved(std::nextafter(2.5, 3.0), 1));
}

TEST_F(ObservedPortMap, CachedQueryTellsNegativeZeroFromZero)
{
    add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 0.0, .cachedPort = 1});
    EXPECT_TRUE(signals.isPortObserved(0.0, 1));
    EXPECT_FALSE(signals.isPortObserved(-0.0, 1));
}

TEST_F(ObservedPortMap, CachedQueryNeverFindsNotANumber)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    add({.blockPath = u"A", .outputPort = 1, .cachedHandle = nan, .cachedPort = 1});
    EXPECT_FALSE(signals.isPortObserved(nan, 1));
}

TEST_F(ObservedPortMap, CachedQueryLooksAtTheRecordAsItIsNow)
{
    const SignalSpecificationPtr signal = add(bound);
    signal->setCachedInfo(9.0, 9);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(9.0, 9)) << "entered under the old key";
}

// ---- the full query -----------------------------------------------------------------------------------

TEST_F(ObservedPortMap, FullQueryAnswersByHandleWhateverThePath)
{
    add(bound);
    EXPECT_TRUE(isObserved(2.5, u"Nowhere", 7, 1));
}

TEST_F(ObservedPortMap, FullQueryComparesPathAndOutputPort)
{
    add({.blockPath = u"A", .outputPort = 1, .logicalPort = 4});
    EXPECT_TRUE(signals.isPortObserved(0.0, u"A", u"", 1, 0, 4));
    EXPECT_FALSE(signals.isPortObserved(0.0, u"A", u"", 2, 0, 4)) << "the same key, another output port";
    EXPECT_FALSE(signals.isPortObserved(0.0, u"B", u"", 1, 0, 4));
    add(portValues(u"Gain", 1));
    EXPECT_FALSE(isObserved(0.0, u"zsvaRe0ZzMma", 1, 0)) << "the same key, another path";
}

TEST_F(ObservedPortMap, FullQueryTakesSubPathAndLogicalPortThroughTheKeyAlone)
{
    add({.blockPath = u"A", .subPath = u"x", .outputPort = 2});
    EXPECT_TRUE(signals.isPortObserved(0.0, u"A", u"x", 2, 0, 0));
    EXPECT_FALSE(signals.isPortObserved(0.0, u"A", u"", 2, 0, 0));
    EXPECT_TRUE(signals.isPortObserved(0.0, u"A", u"x", 2, 0, 2)) << "logical port 2 makes the same key";
    EXPECT_TRUE(signals.isPortObserved(0.0, u"A", u"x", 2, 0, -5));
    EXPECT_FALSE(signals.isPortObserved(0.0, u"A", u"x", 2, 0, 1));
}

TEST_F(ObservedPortMap, FullQueryWithPortZeroLeavesTheSignalUnbound)
{
    const SignalSpecificationPtr signal = add(unbound);
    EXPECT_TRUE(isObserved(2.5, u"A", 1, 0));
    EXPECT_EQ(valuesOf(*signal), unbound);
    EXPECT_EQ(entriesOf(signal), 1);
}

TEST_F(ObservedPortMap, FullQueryBindsAnUnboundSignal)
{
    const SignalSpecificationPtr signal = add(unbound);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_TRUE(isObserved(2.5, u"A", 1, 1));
    EXPECT_EQ(valuesOf(*signal), bound);
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
}

TEST_F(ObservedPortMap, FullQueryEntersABoundSignalASecondTimeUnderItsNonCachedKey)
{
    const SignalSpecificationPtr signal = add(unbound);
    isObserved(2.5, u"A", 1, 1);
    EXPECT_EQ(entriesOf(signal), 3);
    isObserved(2.5, u"A", 1, 1);
    EXPECT_EQ(entriesOf(signal), 3) << "found by handle from now on";
}

TEST_F(ObservedPortMap, FullQueryForgetsThePortCacheWhereItBinds)
{
    add(unbound);
    const auto port = reinterpret_cast<zmPort*>(std::uintptr_t{1});
    signals.cacheZMPorts({port});
    isObserved(2.5, u"A", 1, 0);
    isObserved(2.5, u"B", 1, 1);
    EXPECT_TRUE(signals.isZMPortObserved(port));
    isObserved(2.5, u"A", 1, 1);
    EXPECT_FALSE(signals.isZMPortObserved(port));
}

TEST_F(ObservedPortMap, FullQueryBindsOneSignalOfSeveral)
{
    const SignalSpecificationPtr one = add(unbound);
    const SignalSpecificationPtr other = add(unbound);
    EXPECT_TRUE(isObserved(2.5, u"A", 1, 1));
    EXPECT_EQ((one->getCachedPortIdx() != 0 ? 1 : 0) + (other->getCachedPortIdx() != 0 ? 1 : 0), 1);
    EXPECT_TRUE(isObserved(3.5, u"A", 1, 1)) << "the other one is still unbound";
    EXPECT_FALSE(isObserved(4.5, u"A", 1, 1));
}

TEST_F(ObservedPortMap, FullQueryDoesNotFindASignalThatIsBoundToAnotherPort)
{
    add(bound);
    EXPECT_FALSE(isObserved(2.5, u"A", 1, 2));
}

TEST_F(ObservedPortMap, FullQueryDoesNotFindASignalThatIsBoundToAnotherHandle)
{
    add(bound);
    EXPECT_FALSE(isObserved(3.5, u"A", 1, 1));
}

TEST_F(ObservedPortMap, FullQueryGoesPastABoundSignalToAnUnboundOne)
{
    add(bound);
    const SignalSpecificationPtr second = add(unbound);
    add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 7.5, .cachedPort = 4});
    EXPECT_TRUE(isObserved(3.5, u"A", 1, 1));
    EXPECT_EQ(second->getCachedBlockHandle(), 3.5);
}

TEST_F(ObservedPortMap, FullQueryBindsToNotANumberOnceAndNeverFindsItAgain)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    add(unbound);
    EXPECT_TRUE(isObserved(nan, u"A", 1, 1));
    EXPECT_FALSE(isObserved(nan, u"A", 1, 1));
    EXPECT_TRUE(isObserved(nan, u"A", 1, 0));
}

TEST_F(ObservedPortMap, FullQueryBindsManySignalsWhileTheMapGrows)
{
    for (int i = 0; i < 1000; ++i) {
        add(portValues(u"A", i));
    }
    for (int i = 0; i < 1000; ++i) {
        EXPECT_TRUE(isObserved(2.5, u"A", i, i + 1)) << i;
    }
    for (int i = 0; i < 1000; ++i) {
        EXPECT_TRUE(signals.isPortObserved(2.5, i + 1)) << i;
    }
}

// ---- the specification query --------------------------------------------------------------------------

TEST_F(ObservedPortMap, SpecificationQueryAsksWithTheRecordsOwnValues)
{
    add({.blockPath = u"A", .subPath = u"x", .outputPort = 1, .logicalPort = 4});
    const SignalSpecificationPtr same =
        makeSignal({.blockPath = u"A", .subPath = u"x", .outputPort = 1, .logicalPort = 4});
    const SignalSpecificationPtr other = makeSignal({.blockPath = u"A", .outputPort = 1, .logicalPort = 4});
    EXPECT_TRUE(signals.isPortObserved(same.get()));
    EXPECT_FALSE(signals.isPortObserved(other.get()));
}

TEST_F(ObservedPortMap, SpecificationQueryBindsWithTheRecordsCachedHandle)
{
    const SignalSpecificationPtr signal = add(unbound);
    EXPECT_TRUE(signals.isPortObserved(makeSignal(bound).get()));
    EXPECT_EQ(valuesOf(*signal), bound);
}

TEST_F(ObservedPortMap, SpecificationQueryMayAskWithAnElement)
{
    const SignalSpecificationPtr signal = add(unbound);
    EXPECT_TRUE(signals.isPortObserved(signal.get()));
    EXPECT_EQ(valuesOf(*signal), unbound);
}

// ---- the port cache -----------------------------------------------------------------------------------

zmPort* port(std::uintptr_t address)
{
    return reinterpret_cast<zmPort*>(address);  // never looked into
}

TEST_F(ObservedPortMap, PortCacheHoldsThePortsOfTheLastCall)
{
    signals.cacheZMPorts({port(1), port(2)});
    EXPECT_TRUE(signals.isZMPortObserved(port(1)));
    EXPECT_TRUE(signals.isZMPortObserved(port(2)));
    EXPECT_FALSE(signals.isZMPortObserved(port(3)));
    signals.cacheZMPorts({port(3), port(3)});
    EXPECT_FALSE(signals.isZMPortObserved(port(1)));
    EXPECT_TRUE(signals.isZMPortObserved(port(3)));
}

TEST_F(ObservedPortMap, CachingNoPortsEmptiesThePortCache)
{
    signals.cacheZMPorts({port(1)});
    signals.cacheZMPorts({});
    EXPECT_FALSE(signals.isZMPortObserved(port(1)));
}

TEST_F(ObservedPortMap, QueriesThatChangeNothingKeepThePortCache)
{
    add(bound);
    signals.cacheZMPorts({port(1)});
    isObserved(2.5, u"A", 1, 1);
    isObserved(2.5, u"B", 1, 1);
    signals.isPortObserved(2.5, 1);
    signals.isAnyPortObserved();
    EXPECT_TRUE(signals.isZMPortObserved(port(1)));
}

}  // namespace
}  // namespace zm_hmi
