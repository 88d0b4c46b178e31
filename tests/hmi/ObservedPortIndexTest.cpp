#include "hmi/InstrumentedSignals.hpp"

#include "reference_host/classes/ObjectAccess.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

// Queries by handle and port are answered by an index beside the port map. These are the cases in which the
// entries of the map answer otherwise than handle and port of the elements suggest.

namespace zm_hmi {
namespace {

namespace rh = reference_host;

// Each path has, with output port 1 and without a model, the key of a handle and port.
const std::u16string pathOf281070 = u"XNfIbdwOACHD";     // 281070, port 1
const std::u16string pathOfUnbound12 = u"37xP62wD2jho";  // 12.5, port 0
const std::u16string pathOfMinusZero = u"JGGtYQ7iIPQb";  // -0.0, port 3
const std::u16string pathOfZero = u"zV173cBdSnY0";       // 0.0, port 3

class ObservedPortIndex : public LibraryTest {
protected:
    SignalSpecificationPtr add(const SignalValues& values)
    {
        signals.add(makeSignal(values));
        return signals.get(signals.getCount() - 1);
    }

    /// Asks until the index, which is not exact after a change from outside, is made anew.
    void askOften() const
    {
        for (int i = 0; i < 20; ++i) {
            signals.isPortObserved(777.0, 7);
        }
    }

    InstrumentedSignals signals;
};

std::size_t pathKey(const std::u16string& path)
{
    return SignalSpecification::getNonCachedInfoHash(path, u"", 1, 0, u"");
}

TEST_F(ObservedPortIndex, ThePathsHaveTheKeysOfHandles)
{
    EXPECT_EQ(pathKey(pathOf281070), SignalSpecification::getCachedInfoHash(281070, 1));
    EXPECT_EQ(pathKey(pathOfUnbound12), SignalSpecification::getCachedInfoHash(12.5, 0));
    EXPECT_EQ(pathKey(pathOfMinusZero), SignalSpecification::getCachedInfoHash(-0.0, 3));
    EXPECT_EQ(pathKey(pathOfZero), SignalSpecification::getCachedInfoHash(0.0, 3));
}

TEST_F(ObservedPortIndex, AnEntryUnderThePathAnswersForTheHandleWithTheSameKey)
{
    const SignalSpecificationPtr record = add(portValues(pathOf281070, 1));
    EXPECT_FALSE(signals.isPortObserved(281070, 1));
    record->setCachedInfo(281070, 1);  // from outside
    EXPECT_TRUE(signals.isPortObserved(281070, 1));
    askOften();
    EXPECT_TRUE(signals.isPortObserved(281070, 1));
}

TEST_F(ObservedPortIndex, RemovalByPathTakesTheEntryOfTheHandleWithTheSameKey)
{
    add({.blockPath = pathOf281070,
         .outputPort = 1,
         .logicalPort = 2,
         .cachedHandle = 281070,
         .cachedPort = 1});
    EXPECT_TRUE(signals.isPortObserved(281070, 1));
    signals.removeFromObservedPortMap(makeSignal(portValues(pathOf281070, 1)));
    EXPECT_FALSE(signals.isPortObserved(281070, 1));
    askOften();
    EXPECT_FALSE(signals.isPortObserved(281070, 1));
}

TEST_F(ObservedPortIndex, RemovalByPathLeavesTheEntryOfAnotherRecordWithTheSameHandle)
{
    add({.blockPath = pathOf281070,
         .outputPort = 1,
         .logicalPort = 2,
         .cachedHandle = 281070,
         .cachedPort = 1});
    add({.blockPath = u"Other", .outputPort = 1, .cachedHandle = 281070, .cachedPort = 1});
    signals.removeFromObservedPortMap(makeSignal(portValues(pathOf281070, 1)));
    EXPECT_TRUE(signals.isPortObserved(281070, 1));
}

TEST_F(ObservedPortIndex, AnUnboundRecordAnswersForPortZeroOfTheHandleWithTheSameKey)
{
    const SignalSpecificationPtr record =
        add({.blockPath = pathOfUnbound12, .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 0});
    EXPECT_TRUE(signals.isPortObserved(12.5, 0));
    EXPECT_TRUE(signals.isPortObserved(3.5, pathOfUnbound12, u"", 1, 4, 0));  // binds
    EXPECT_FALSE(signals.isPortObserved(12.5, 0)) << "it is bound to another handle now";
    EXPECT_TRUE(signals.isPortObserved(3.5, 4));
}

TEST_F(ObservedPortIndex, BothZerosAreEqualButHaveDifferentKeys)
{
    add({.blockPath = pathOfMinusZero, .outputPort = 1, .cachedHandle = 0.0, .cachedPort = 3});
    EXPECT_TRUE(signals.isPortObserved(0.0, 3)) << "under its own key";
    EXPECT_TRUE(signals.isPortObserved(-0.0, 3)) << "under the key of its path";
    signals.remove(0);
    EXPECT_FALSE(signals.isPortObserved(0.0, 3));
    EXPECT_FALSE(signals.isPortObserved(-0.0, 3));
}

TEST_F(ObservedPortIndex, TheOtherZeroToo)
{
    add({.blockPath = pathOfZero, .outputPort = 1, .cachedHandle = -0.0, .cachedPort = 3});
    EXPECT_TRUE(signals.isPortObserved(0.0, 3));
    EXPECT_TRUE(signals.isPortObserved(-0.0, 3));
}

TEST_F(ObservedPortIndex, AZeroThatChangesItsSignStaysUnderItsKey)
{
    const SignalSpecificationPtr record =
        add({.blockPath = u"A", .outputPort = 1, .cachedHandle = -0.0, .cachedPort = 3});
    EXPECT_TRUE(signals.isPortObserved(-0.0, 3));
    EXPECT_FALSE(signals.isPortObserved(0.0, 3));
    record->setCachedInfo(0.0, 3);
    EXPECT_TRUE(signals.isPortObserved(-0.0, 3))
        << "the values are equal, and the entry is under the old key";
    EXPECT_FALSE(signals.isPortObserved(0.0, 3));
    askOften();
    EXPECT_TRUE(signals.isPortObserved(-0.0, 3));
    EXPECT_FALSE(signals.isPortObserved(0.0, 3));
}

TEST_F(ObservedPortIndex, ARecordBoundByAnotherCollectionIsNotFoundByTheOldHandle)
{
    const SignalSpecificationPtr record = add(portValues(u"A", 1));
    InstrumentedSignals other;
    other.add(record);
    EXPECT_TRUE(other.isPortObserved(2.5, u"A", u"", 1, 1, 0));
    EXPECT_TRUE(other.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(2.5, 1)) << "entered there, not here";
    signals.updateObservedPortMap();
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(3.5, u"A", u"", 1, 2, 0)) << "bound already";
    record->setCachedInfo(0.0, 0);
    EXPECT_TRUE(other.isPortObserved(3.5, u"A", u"", 1, 2, 0));
    EXPECT_FALSE(signals.isPortObserved(2.5, 1)) << "rebound there";
}

TEST_F(ObservedPortIndex, ARecordChangedAwayAndBackIsFoundAgain)
{
    const SignalSpecificationPtr record =
        add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    record->setCachedInfo(3.5, 1);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(3.5, 1)) << "still under the key of the old handle";
    askOften();
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(3.5, 1));
    record->setCachedInfo(2.5, 1);
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
    askOften();
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
}

TEST_F(ObservedPortIndex, ARecordRenumberedFromOutsideIsNotFoundByTheOldPort)
{
    const SignalSpecificationPtr record =
        add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    record->renumberPortIndex(2);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(2.5, 2));
}

TEST_F(ObservedPortIndex, ARecordReadAnewFromAnObjectIsNotFoundByTheOldHandle)
{
    const SignalSpecificationPtr record =
        add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    record->setFromNVCOS(makeSignalObject({.cachedHandle = 3.5, .cachedPort = 1}).get(), u"");
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(3.5, 1));
}

TEST_F(ObservedPortIndex, NotANumberIsNeverFound)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const SignalSpecificationPtr record =
        add({.blockPath = u"A", .outputPort = 1, .cachedHandle = nan, .cachedPort = 1});
    EXPECT_FALSE(signals.isPortObserved(nan, 1));
    record->setCachedInfo(2.5, 1);
    record->setCachedInfo(nan, 1);
    EXPECT_FALSE(signals.isPortObserved(nan, 1));
    askOften();
    EXPECT_FALSE(signals.isPortObserved(nan, 1));
}

TEST_F(ObservedPortIndex, RemovingOneOfTwoDuplicatesTakesTheEntriesOfBoth)
{
    const SignalValues values = {.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1};
    add(values);
    add(values);
    signals.remove(0);
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    signals.updateObservedPortMap();
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
}

TEST_F(ObservedPortIndex, ReplacingARecordByItselfKeepsIt)
{
    const SignalSpecificationPtr record =
        add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    signals.set(0, record);
    EXPECT_TRUE(signals.isPortObserved(2.5, 1));
    EXPECT_EQ(record.use_count(), 2 + 2) << "entered once under each key";
}

TEST_F(ObservedPortIndex, ReplacingARecordWhosePathHasTheKeyOfTheNewHandleKeepsTheNewOne)
{
    add(portValues(pathOf281070, 1));
    const SignalSpecificationPtr record = makeSignal({.blockPath = pathOf281070,
                                                      .outputPort = 1,
                                                      .logicalPort = 1,
                                                      .cachedHandle = 281070,
                                                      .cachedPort = 1});
    signals.set(0, record);
    EXPECT_TRUE(signals.isPortObserved(281070, 1));
    EXPECT_EQ(record.use_count(), 2 + 2) << "entered twice under one key";
}

TEST_F(ObservedPortIndex, ACopyFollowsTheRecordsOfTheOriginal)
{
    const rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
    InstrumentedSignals& original = *InstrumentedSignals::getFromNVArray(object.get());
    const SignalSpecificationPtr record =
        makeSignal({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    original.add(record);
    const OwnedArray copied = original.copy(false);
    InstrumentedSignals& copy = *InstrumentedSignals::getFromNVArray(copied.get());
    EXPECT_TRUE(copy.isPortObserved(2.5, 1));
    record->setCachedInfo(3.5, 1);
    EXPECT_FALSE(copy.isPortObserved(2.5, 1)) << "its entries refer to the records of the original";
    EXPECT_FALSE(original.isPortObserved(2.5, 1));
    copy.updateObservedPortMap();
    EXPECT_TRUE(copy.isPortObserved(2.5, 1)) << "now they refer to the clones";
}

TEST_F(ObservedPortIndex, TheIndexFollowsRenumbering)
{
    add({.blockPath = u"A", .outputPort = 1, .cachedHandle = 2.5, .cachedPort = 1});
    add({.blockPath = u"A", .outputPort = 2, .cachedHandle = 2.5, .cachedPort = 2});
    signals.renumberPorts(2.5, u"A", "", {0, 3});
    EXPECT_FALSE(signals.isPortObserved(2.5, 1));
    EXPECT_FALSE(signals.isPortObserved(2.5, 2));
    EXPECT_TRUE(signals.isPortObserved(2.5, 3));
}

}  // namespace
}  // namespace zm_hmi
