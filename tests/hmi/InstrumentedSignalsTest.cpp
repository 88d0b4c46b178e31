#include "hmi/InstrumentedSignals.hpp"

#include "host/Exceptions.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

class InstrumentedSignalsTest : public LibraryTest {};

zmPort* port(std::uintptr_t address)
{
    return reinterpret_cast<zmPort*>(address);  // never looked into
}

/// Makes the collection remember an editor's port, which every change of the observed ports forgets.
void rememberPort(InstrumentedSignals& signals)
{
    signals.cacheZMPorts({port(1)});
    ASSERT_TRUE(signals.isZMPortObserved(port(1)));
}

bool remembersPort(const InstrumentedSignals& signals)
{
    return signals.isZMPortObserved(port(1));
}

std::vector<std::u16string> paths(const InstrumentedSignals& signals)
{
    std::vector<std::u16string> found;
    for (std::size_t i = 0; i < signals.getCount(); ++i) {
        found.push_back(signals.get(i)->getBlockPath());
    }
    return found;
}

void addPorts(InstrumentedSignals& signals, const std::vector<std::u16string>& blockPaths)
{
    for (const std::u16string& path : blockPaths) {
        signals.add(makeSignal(portValues(path, 1)));
    }
}

bool isObserved(InstrumentedSignals& signals, const std::u16string& path, int outputPort = 1)
{
    return signals.isPortObserved(0.0, path, u"", outputPort, 0, 0);
}

/// Expects the element-index error with this count.
template <class Action>
void expectInvalidIndex(std::uint64_t count, Action action)
{
    try {
        action();
        FAIL() << "nothing was thrown";
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().catalog(), "dvx_hmi_foundation:errors");
        EXPECT_EQ(error.id().key(), "InvalidElementIndex");
        EXPECT_EQ(error.id().arguments(), std::vector<zmsvMessageArgument>{zmsvMessageArgument(count)});
    }
}

// ---- a new collection -----------------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, ANewCollectionIsEmpty)
{
    const InstrumentedSignals signals;
    EXPECT_EQ(signals.getCount(), 0U);
    EXPECT_EQ(signals.getModelName(), u"");
    EXPECT_FALSE(signals.isAnyPortObserved());
    EXPECT_FALSE(signals.isZMPortObserved(port(1)));
    EXPECT_FALSE(signals.isZMPortObserved(nullptr));
    EXPECT_FALSE(signals.isKWActivityObserved(u"1", 1.0, u"Self"));
}

// ---- elements ---------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, AddingAppends)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B", u"A"});
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"A", u"B", u"A"}));
}

TEST_F(InstrumentedSignalsTest, ElementsAreTheVeryRecordsThatWereAdded)
{
    InstrumentedSignals signals;
    const SignalSpecificationPtr signal = makeSignal(portValues(u"A", 1));
    signals.add(signal);
    EXPECT_EQ(signals.get(0), signal);
}

TEST_F(InstrumentedSignalsTest, AnElementThatIsHeldOutlivesItsRemoval)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A"});
    const SignalSpecificationPtr held = signals.get(0);
    signals.remove(0);
    EXPECT_EQ(held->getBlockPath(), u"A");
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(InstrumentedSignalsTest, EndingTheCollectionReleasesItsElements)
{
    const SignalSpecificationPtr signal =
        makeSignal({.blockPath = u"A", .cachedHandle = 1.0, .cachedPort = 1});
    {
        InstrumentedSignals signals;
        signals.add(signal);
        signals.add(signal);
    }
    EXPECT_EQ(signal.use_count(), 1);
}

TEST_F(InstrumentedSignalsTest, InsertingPutsTheElementBeforeTheIndex)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B"});
    signals.insert(1, makeSignal(portValues(u"X", 1)));
    signals.insert(0, makeSignal(portValues(u"Y", 1)));
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"Y", u"A", u"X", u"B"}));
    EXPECT_TRUE(isObserved(signals, u"X"));
}

TEST_F(InstrumentedSignalsTest, InsertingAtTheCountAppends)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B"});
    signals.insert(2, makeSignal(portValues(u"X", 1)));
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"A", u"B", u"X"}));
}

TEST_F(InstrumentedSignalsTest, InsertingAnElementOfTheCollectionItself)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B"});
    const SignalSpecificationPtr& own = signals.get(1);
    signals.insert(0, own);
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"B", u"A", u"B"}));
}

TEST_F(InstrumentedSignalsTest, AddingChartElementsEntersTheChartCaches)
{
    InstrumentedSignals signals;
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_FALSE(signals.isAnyPortObserved());
}

TEST_F(InstrumentedSignalsTest, SettingReplacesTheElement)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B"});
    signals.set(0, makeSignal(portValues(u"X", 1)));
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"X", u"B"}));
    EXPECT_TRUE(isObserved(signals, u"X"));
    EXPECT_FALSE(isObserved(signals, u"A"));
}

TEST_F(InstrumentedSignalsTest, SettingAnElementToItselfKeepsItObservedOnce)
{
    InstrumentedSignals signals;
    const SignalSpecificationPtr signal = makeSignal(portValues(u"A", 1));
    signals.add(signal);
    signals.set(0, signals.get(0));
    EXPECT_TRUE(isObserved(signals, u"A"));
    EXPECT_EQ(signal.use_count(), 3) << "ours, the list's and one entry's";
}

TEST_F(InstrumentedSignalsTest, SettingReleasesTheOldElement)
{
    InstrumentedSignals signals;
    const SignalSpecificationPtr signal = makeSignal(portValues(u"A", 1));
    signals.add(signal);
    signals.set(0, makeSignal(portValues(u"B", 1)));
    EXPECT_EQ(signal.use_count(), 1);
}

TEST_F(InstrumentedSignalsTest, SettingOverAChartElementLeavesItInTheChartCaches)
{
    InstrumentedSignals signals;
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.set(0, makeSignal(portValues(u"A", 1)));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(InstrumentedSignalsTest, SettingOverAChartElementUnobservesAPortOfTheSamePathAndPort)
{
    InstrumentedSignals signals;
    SignalValues state = stateValues("7", u"3", u"Self");
    state.blockPath = u"Chart";
    state.outputPort = 1;
    signals.add(makeSignal(portValues(u"Chart", 1)));
    signals.add(makeSignal(state));
    ASSERT_TRUE(isObserved(signals, u"Chart"));
    signals.set(1, makeSignal(portValues(u"B", 1)));
    EXPECT_FALSE(isObserved(signals, u"Chart"));
}

TEST_F(InstrumentedSignalsTest, RemovingByIndexMovesLaterElementsDown)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B", u"C"});
    signals.remove(1);
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"A", u"C"}));
    EXPECT_FALSE(isObserved(signals, u"B"));
    EXPECT_TRUE(isObserved(signals, u"C"));
}

TEST_F(InstrumentedSignalsTest, RemovingByIndexErasesChartActivity)
{
    InstrumentedSignals signals;
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.remove(0);
    EXPECT_EQ(signals.getCount(), 0U);
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(InstrumentedSignalsTest, RemovingAChartElementByIndexLeavesAPortOfTheSamePathObserved)
{
    InstrumentedSignals signals;
    SignalValues state = stateValues("7", u"3", u"Self");
    state.blockPath = u"Chart";
    state.outputPort = 1;
    signals.add(makeSignal(portValues(u"Chart", 1)));
    signals.add(makeSignal(state));
    signals.remove(1);
    EXPECT_TRUE(isObserved(signals, u"Chart"));
}

// ---- removing by specification ----------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, RemovingBySpecificationTakesTheFirstOfTheSameSignal)
{
    InstrumentedSignals signals;
    SignalValues second = portValues(u"A", 1);
    second.signalName = u"second";
    addPorts(signals, {u"B", u"A"});
    signals.add(makeSignal(second));
    signals.remove(*makeSignal(portValues(u"A", 1)));
    ASSERT_EQ(paths(signals), (std::vector<std::u16string>{u"B", u"A"}));
    EXPECT_EQ(signals.get(1)->getSignalName(), u"second");
}

TEST_F(InstrumentedSignalsTest, RemovingBySpecificationFindsByCachedHandle)
{
    InstrumentedSignals signals;
    signals.add(makeSignal({.blockPath = u"A", .cachedHandle = 2.5, .cachedPort = 1}));
    signals.remove(*makeSignal({.blockPath = u"Elsewhere", .cachedHandle = 2.5, .cachedPort = 1}));
    EXPECT_EQ(signals.getCount(), 0U);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isAnyPortObserved());
}

TEST_F(InstrumentedSignalsTest, RemovingBySpecificationWithoutAMatchDoesNothing)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A"});
    rememberPort(signals);
    signals.remove(*makeSignal(portValues(u"B", 1)));
    EXPECT_EQ(signals.getCount(), 1U);
    EXPECT_TRUE(remembersPort(signals));
}

TEST_F(InstrumentedSignalsTest, RemovingBySpecificationLeavesAChartElementInTheChartCaches)
{
    InstrumentedSignals signals;
    const SignalSpecificationPtr state = makeSignal(stateValues("7", u"3", u"Self"));
    signals.add(state);
    signals.remove(*state);
    EXPECT_EQ(signals.getCount(), 0U);
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(InstrumentedSignalsTest, RemovingAChartElementBySpecificationUnobservesAPortOfTheSamePathAndPort)
{
    InstrumentedSignals signals;
    SignalValues state = stateValues("7", u"3", u"Self");
    state.blockPath = u"Chart";
    state.outputPort = 1;
    signals.add(makeSignal(state));
    signals.add(makeSignal(portValues(u"Chart", 1)));
    signals.remove(*makeSignal(portValues(u"Chart", 1)));
    ASSERT_EQ(signals.getCount(), 1U);
    EXPECT_EQ(signals.get(0)->getDomainType(), u"") << "the state stood first";
    EXPECT_FALSE(isObserved(signals, u"Chart"));
}

TEST_F(InstrumentedSignalsTest, RemovingBySpecificationWithAnElementOfTheCollectionItself)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B"});
    signals.remove(*signals.get(0));  // the list holds its last owner
    EXPECT_EQ(paths(signals), std::vector<std::u16string>{u"B"});
}

TEST_F(InstrumentedSignalsTest, APointerAddedTwiceStandsTwiceAndIsRemovedOnce)
{
    InstrumentedSignals signals;
    const SignalSpecificationPtr signal =
        makeSignal({.blockPath = u"A", .cachedHandle = 2.5, .cachedPort = 1});
    signals.add(signal);
    signals.add(signal);
    EXPECT_EQ(signal.use_count(), 7) << "ours, two in the list, two under each of two keys";
    signals.remove(*signal);
    EXPECT_EQ(signals.getCount(), 1U);
    EXPECT_EQ(signals.get(0), signal);
    EXPECT_EQ(signal.use_count(), 2) << "removal takes every entry of the port";
}

// ---- the port cache ---------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, EveryChangeOfAPortElementForgetsThePortCache)
{
    InstrumentedSignals signals;
    const auto forgets = [&](const char* what, const auto& change) {
        rememberPort(signals);
        change();
        EXPECT_FALSE(remembersPort(signals)) << what;
    };
    forgets("add", [&] { signals.add(makeSignal(portValues(u"A", 1))); });
    forgets("insert", [&] { signals.insert(0, makeSignal(portValues(u"B", 1))); });
    forgets("set", [&] { signals.set(0, makeSignal(portValues(u"C", 1))); });
    forgets("remove by index", [&] { signals.remove(0); });
    forgets("remove by specification", [&] { signals.remove(*makeSignal(portValues(u"A", 1))); });
}

TEST_F(InstrumentedSignalsTest, AddingInsertingAndSettingChartElementsForgetsThePortCache)
{
    InstrumentedSignals signals;
    const auto forgets = [&](const char* what, const auto& change) {
        rememberPort(signals);
        change();
        EXPECT_FALSE(remembersPort(signals)) << what;
    };
    const SignalSpecificationPtr state = makeSignal(stateValues("7", u"3", u"Self"));
    forgets("add", [&] { signals.add(state); });
    forgets("insert", [&] { signals.insert(0, state); });
    forgets("set", [&] { signals.set(0, state); });
    forgets("remove by specification", [&] { signals.remove(*state); });
}

TEST_F(InstrumentedSignalsTest, RemovingAChartElementByIndexKeepsThePortCache)
{
    InstrumentedSignals signals;
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    rememberPort(signals);
    signals.remove(0);
    EXPECT_TRUE(remembersPort(signals));
}

TEST_F(InstrumentedSignalsTest, UpdatingWithoutPortElementsKeepsThePortCache)
{
    InstrumentedSignals signals;
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    rememberPort(signals);
    signals.updateObservedPortMap();
    EXPECT_TRUE(remembersPort(signals));
}

TEST_F(InstrumentedSignalsTest, UpdatingWithAPortElementForgetsThePortCache)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A"});
    rememberPort(signals);
    signals.updateObservedPortMap();
    EXPECT_FALSE(remembersPort(signals));
}

// ---- indices ----------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, IndexSevenOfThreeIsAnErrorWithTheCount)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B", u"C"});
    expectInvalidIndex(3, [&] { signals.get(7); });
}

TEST_F(InstrumentedSignalsTest, TheCountIsNoIndexOfAnElement)
{
    InstrumentedSignals signals;
    addPorts(signals, {u"A", u"B"});
    rememberPort(signals);
    expectInvalidIndex(2, [&] { signals.get(2); });
    expectInvalidIndex(2, [&] { signals.remove(2); });
    expectInvalidIndex(2, [&] { signals.set(2, makeSignal(portValues(u"X", 1))); });
    expectInvalidIndex(2, [&] { signals.insert(3, makeSignal(portValues(u"X", 1))); });
    EXPECT_EQ(paths(signals), (std::vector<std::u16string>{u"A", u"B"}));
    EXPECT_FALSE(isObserved(signals, u"X"));
    EXPECT_TRUE(remembersPort(signals));
}

TEST_F(InstrumentedSignalsTest, AnEmptyCollectionHasNoIndex)
{
    InstrumentedSignals signals;
    expectInvalidIndex(0, [&] { signals.get(0); });
    expectInvalidIndex(0, [&] { signals.remove(0); });
    expectInvalidIndex(0, [&] { signals.get(SIZE_MAX); });
}

// ---- comparing ----------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, EqualCollectionsHaveEqualElementsInOrder)
{
    InstrumentedSignals one;
    InstrumentedSignals other;
    EXPECT_TRUE(one.isEqual(&other)) << "both empty";
    EXPECT_FALSE(one.isEqual(nullptr));
    addPorts(one, {u"A", u"B"});
    EXPECT_FALSE(one.isEqual(&other)) << "counts differ";
    addPorts(other, {u"A", u"B"});
    EXPECT_TRUE(one.isEqual(&other));
    other.set(1, makeSignal(portValues(u"C", 1)));
    EXPECT_FALSE(one.isEqual(&other));
}

TEST_F(InstrumentedSignalsTest, ElementsInAnotherOrderAreUnequal)
{
    InstrumentedSignals one;
    InstrumentedSignals other;
    addPorts(one, {u"A", u"B"});
    addPorts(other, {u"B", u"A"});
    EXPECT_FALSE(one.isEqual(&other));
}

TEST_F(InstrumentedSignalsTest, ComparingLooksAtNeitherModelNameNorLookups)
{
    InstrumentedSignals one;
    InstrumentedSignals other;
    addPorts(one, {u"A"});
    addPorts(other, {u"A"});
    other.setModelName(u"plant");
    other.removeFromObservedPortMap(other.get(0));
    EXPECT_TRUE(one.isEqual(&other));
}

// ---- the model name -----------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, SettingTheModelNameLeavesTheElementsAsTheyAre)
{
    InstrumentedSignals signals;
    signals.setModelName(u"plant");
    signals.add(makeSignal(distinctValues()));
    signals.setModelName(u"factory");
    EXPECT_EQ(signals.getModelName(), u"factory");
    EXPECT_EQ(valuesOf(*signals.get(0)), distinctValues());
}

TEST_F(InstrumentedSignalsTest, SettingTheModelNameDoesNotRebuildTheLookups)
{
    InstrumentedSignals signals;
    signals.setModelName(u"plant");
    addPorts(signals, {u"A"});
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.setModelName(u"factory");
    EXPECT_TRUE(signals.isAnyPortObserved());
    EXPECT_FALSE(isObserved(signals, u"A")) << "entered under the old name";
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    signals.updateObservedPortMap();
    EXPECT_TRUE(isObserved(signals, u"A"));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
}

// ---- any port -----------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsTest, ChartActivitiesAreNoObservedPorts)
{
    InstrumentedSignals signals;
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    EXPECT_FALSE(signals.isAnyPortObserved());
    addPorts(signals, {u"A"});
    EXPECT_TRUE(signals.isAnyPortObserved());
    signals.remove(1);
    EXPECT_FALSE(signals.isAnyPortObserved());
}

}  // namespace
}  // namespace zm_hmi
