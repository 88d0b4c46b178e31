#include "hmi/InstrumentedSignals.hpp"

#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <list>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

class ChartActivityTest : public LibraryTest {
protected:
    InstrumentedSignals signals;
};

// ---- the chart domain -----------------------------------------------------------------------------

TEST_F(ChartActivityTest, ThreeDomainTypesAreTheChartDomain)
{
    EXPECT_TRUE(signals.isKestrowDomain(u"kw_state"));
    EXPECT_TRUE(signals.isKestrowDomain(u"kw_chart"));
    EXPECT_TRUE(signals.isKestrowDomain(u"kw_data"));
}

TEST_F(ChartActivityTest, OtherDomainTypesAreNot)
{
    for (const char16_t* other : {u"", u"kw_", u"kw_State", u"KW_STATE", u"kw_state ", u"kw_transition"}) {
        EXPECT_FALSE(signals.isKestrowDomain(other));
    }
}

// ---- entering and asking ----------------------------------------------------------------------------

class EachChartActivity : public ChartActivityTest, public testing::WithParamInterface<const char16_t*> {};

TEST_P(EachChartActivity, IsObservedOnceItIsEntered)
{
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, GetParam()));
    signals.add(makeSignal(stateValues("7", u"3", GetParam())));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, GetParam()));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_P(EachChartActivity, IsObservedForItsObjectOnly)
{
    signals.add(makeSignal(stateValues("7", u"3", GetParam())));
    EXPECT_FALSE(signals.isKWActivityObserved(u"8", 3.0, GetParam()));
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 4.0, GetParam()));
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Other"));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"8", 3.0));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 4.0));
}

TEST_P(EachChartActivity, IsKeptApartFromTheOthers)
{
    for (const char16_t* other : {u"Self", u"Child", u"Leaf", u"Data"}) {
        if (std::u16string(other) != GetParam()) {
            const SignalSpecificationPtr both[] = {makeSignal(stateValues("7", u"3", GetParam())),
                                                   makeSignal(stateValues("7", u"3", other))};
            signals.addToObservedKWObjectCache(both[0]);
            signals.addToObservedKWObjectCache(both[1]);
            signals.removeFromObservedKWObject(both[0]);
            EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, GetParam()));
            EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, other));
            EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
            signals.removeFromObservedKWObject(both[1]);
            EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Activities, EachChartActivity, testing::Values(u"Self", u"Child", u"Leaf", u"Data"),
                         [](const auto& test) {
                             const std::u16string name(test.param);
                             return std::string(name.begin(), name.end());
                         });

TEST_F(ChartActivityTest, DataOfAChartIsAnyActivityOfIt)
{
    SignalValues data = stateValues("7", u"3", u"Data");
    data.domainType = u"kw_data";
    signals.add(makeSignal(data));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(ChartActivityTest, AnUnknownActivityIsNotEntered)
{
    const SignalSpecificationPtr entry = makeSignal(stateValues("7", u"3", u"Entry"));
    signals.add(entry);
    EXPECT_EQ(signals.getCount(), 1U);
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Entry"));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(ChartActivityTest, ActivitiesAreComparedWithCase)
{
    signals.add(makeSignal(stateValues("7", u"3", u"self")));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(ChartActivityTest, RemovingAnUnknownActivityChangesNothing)
{
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.add(makeSignal(stateValues("7", u"3", u"Entry")));
    signals.remove(1);
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(ChartActivityTest, RemovingWhatWasNeverEnteredChangesNothing)
{
    signals.removeFromObservedKWObject(makeSignal(stateValues("7", u"3", u"Self")));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
}

TEST_F(ChartActivityTest, TwoSignalsForOneActivityShareTheEntry)
{
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.remove(0);
    EXPECT_EQ(signals.getCount(), 1U);
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(ChartActivityTest, AnObjectIsObservedUntilItsLastActivityGoes)
{
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.add(makeSignal(stateValues("7", u"3", u"Child")));
    signals.remove(0);
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Child"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
    signals.remove(0);
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(ChartActivityTest, AnObjectNeverSeenIsNotObservedAndMayBeEnteredLater)
{
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
    signals.add(makeSignal(stateValues("7", u"3", u"Leaf")));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

// ---- the texts of the keys ----------------------------------------------------------------------------

TEST_F(ChartActivityTest, LookupTextsAreAppendedInOrder)
{
    signals.setModelName(u"Gew\u00e4chs");
    std::list<std::string> parts = {"before"};
    signals.constructKWLookupStr(parts, "7", "3");
    EXPECT_EQ(parts, (std::list<std::string>{"before",
                                             "Gew\xc3\xa4"
                                             "chs",
                                             "7", "3"}));
    signals.constructKWLookupStrUsingActivity(parts, "8", "4", "Self");
    EXPECT_EQ(parts, (std::list<std::string>{"before",
                                             "Gew\xc3\xa4"
                                             "chs",
                                             "7", "3",
                                             "Gew\xc3\xa4"
                                             "chs",
                                             "8", "4", "Self"}));
}

TEST_F(ChartActivityTest, TheNumberOfAnObjectIsWrittenWithoutAPointWhereItIsWhole)
{
    signals.add(makeSignal(stateValues("7", u"12", u"Self")));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 12.0, u"Self"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 12.0));
}

TEST_F(ChartActivityTest, TheNumberOfAnObjectIsWrittenWithSeventeenDigits)
{
    signals.add(makeSignal(stateValues("7", u"0.10000000000000001", u"Self")));
    signals.add(makeSignal(stateValues("8", u"0.1", u"Self")));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 0.1, u"Self"));
    EXPECT_FALSE(signals.isKWActivityObserved(u"8", 0.1, u"Self")) << "the stored text has another form";
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"8", 0.1));
}

TEST_F(ChartActivityTest, AStoredNumberInAnotherFormIsNotFound)
{
    signals.add(makeSignal(stateValues("7", u"12.0", u"Self")));
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 12.0, u"Self"));
}

TEST_F(ChartActivityTest, AQueryTakesTheModelNameOffTheZid)
{
    signals.setModelName(u"Gew\u00e4chs");
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_TRUE(signals.isKWActivityObserved(u"Gew\u00e4chs:7", 3.0, u"Self"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"Gew\u00e4chs:7", 3.0));
    EXPECT_FALSE(signals.isKWActivityObserved(u"other:7", 3.0, u"Self"));
}

TEST_F(ChartActivityTest, AnEntryIsMadeFromTheZidAsItIsStored)
{
    signals.setModelName(u"plant");
    signals.add(makeSignal(stateValues("plant:7", u"3", u"Self")));
    EXPECT_FALSE(signals.isKWActivityObserved(u"plant:7", 3.0, u"Self"));
    EXPECT_TRUE(signals.isKWActivityObserved(u"plant:plant:7", 3.0, u"Self"));
}

TEST_F(ChartActivityTest, TheModelNameIsPartOfTheKey)
{
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.setModelName(u"plant");
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Self"));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
}

TEST_F(ChartActivityTest, TextsAreJoinedWithoutASeparator)
{
    signals.add(makeSignal(stateValues("1", u"23", u"Self")));
    EXPECT_TRUE(signals.isKWActivityObserved(u"12", 3.0, u"Self"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"12", 3.0));
}

TEST_F(ChartActivityTest, AMissingNumberIsAnEmptyText)
{
    signals.add(
        makeSignal({.zid = "71", .domainType = u"kw_state", .domainParams = {{u"Activity", u"Self"}}}));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 1.0, u"Self")) << "the joined texts are the same";
}

TEST_F(ChartActivityTest, ActivitiesCanBeEnteredAndRemovedByTheirTexts)
{
    signals.addToObservedKWActivity("7", "3", "Anything");
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 3.0, u"Anything"));
    EXPECT_FALSE(signals.isAnyKWActivityObserved(u"7", 3.0));
    signals.removeObservedKWActivity("7", "3", "Anything");
    EXPECT_FALSE(signals.isKWActivityObserved(u"7", 3.0, u"Anything"));
}

// ---- differences --------------------------------------------------------------------------------------

class ChartDifference : public LibraryTest {
protected:
    static std::vector<SignalValues> difference(const InstrumentedSignals& from,
                                                const InstrumentedSignals* to)
    {
        std::vector<SignalValues> found;
        for (const SignalSpecificationPtr& signal : from.setDifference_kw(to)) {
            found.push_back(valuesOf(*signal));
        }
        return found;
    }

    static void fill(InstrumentedSignals& signals, const std::vector<SignalValues>& all)
    {
        for (const SignalValues& values : all) {
            signals.add(makeSignal(values));
        }
    }

    /// What is left of one signal when another stands on the other side.
    static bool areCounterparts(const SignalValues& one, const SignalValues& other)
    {
        InstrumentedSignals left;
        InstrumentedSignals right;
        fill(left, {one});
        fill(right, {other});
        EXPECT_EQ(left.setDifference_kw(&right).size(), right.setDifference_kw(&left).size());
        return left.setDifference_kw(&right).empty();
    }
};

SignalValues sorted(SignalValues values)
{
    std::sort(values.domainParams.begin(), values.domainParams.end());
    return values;
}

TEST_F(ChartDifference, WithoutAnotherCollectionEveryChartElementIsLeftAndNoPort)
{
    InstrumentedSignals signals;
    const InstrumentedSignals empty;
    const SignalValues one = sorted(stateValues("7", u"3", u"Self"));
    const SignalValues two = sorted(stateValues("7", u"4", u"Child"));
    fill(signals, {portValues(u"A", 1), two, portValues(u"B", 1), one});
    EXPECT_EQ(difference(signals, nullptr), (std::vector<SignalValues>{two, one}));
    EXPECT_EQ(difference(signals, &empty), (std::vector<SignalValues>{two, one}));
}

TEST_F(ChartDifference, GivesTheVeryElements)
{
    InstrumentedSignals signals;
    fill(signals, {stateValues("7", u"3", u"Self")});
    EXPECT_EQ(signals.setDifference_kw(nullptr).front(), signals.get(0));
}

TEST_F(ChartDifference, OfACollectionWithItselfIsNothing)
{
    InstrumentedSignals signals;
    fill(signals, {stateValues("7", u"3", u"Self"), portValues(u"A", 1), stateValues("7", u"0", u"Child")});
    EXPECT_TRUE(signals.setDifference_kw(&signals).empty());
}

TEST_F(ChartDifference, CounterpartsHaveTheSameZidAndNumberWhateverTheActivity)
{
    EXPECT_TRUE(areCounterparts(stateValues("1", u"7", u"Self"), stateValues("1", u"7", u"Child")));
    EXPECT_FALSE(areCounterparts(stateValues("1", u"7", u"Self"), stateValues("2", u"7", u"Self")));
    EXPECT_FALSE(areCounterparts(stateValues("1", u"7", u"Self"), stateValues("1", u"8", u"Self")));
}

TEST_F(ChartDifference, CounterpartsWithNumberZeroHaveTheSameActivity)
{
    EXPECT_TRUE(areCounterparts(stateValues("1", u"0", u"Self"), stateValues("1", u"0", u"Self")));
    EXPECT_FALSE(areCounterparts(stateValues("1", u"0", u"Self"), stateValues("1", u"0", u"Child")));
    EXPECT_FALSE(areCounterparts(stateValues("1", u"0", u"Self"), stateValues("2", u"0", u"Self")));
}

TEST_F(ChartDifference, OnlyTheTextZeroIsNumberZero)
{
    EXPECT_TRUE(areCounterparts(stateValues("1", u"0.0", u"Self"), stateValues("1", u"0.0", u"Child")));
    EXPECT_FALSE(areCounterparts(stateValues("1", u"0", u"Self"), stateValues("1", u"00", u"Self")));
}

TEST_F(ChartDifference, AnActivityIsNotTakenForANumber)
{
    EXPECT_FALSE(areCounterparts(stateValues("1", u"0", u"5"), stateValues("1", u"5", u"5")));
}

TEST_F(ChartDifference, TheKindOfChartElementDoesNotMatter)
{
    SignalValues data = stateValues("1", u"7", u"Data");
    data.domainType = u"kw_data";
    EXPECT_TRUE(areCounterparts(stateValues("1", u"7", u"Self"), data));
}

TEST_F(ChartDifference, APortIsNoCounterpart)
{
    SignalValues notChart = stateValues("1", u"7", u"Self");
    notChart.domainType = u"bus";
    InstrumentedSignals left;
    InstrumentedSignals right;
    fill(left, {stateValues("1", u"7", u"Self")});
    fill(right, {notChart});
    EXPECT_EQ(left.setDifference_kw(&right).size(), 1U);
    EXPECT_TRUE(right.setDifference_kw(&left).empty());
}

TEST_F(ChartDifference, AnElementWithoutNumberOrActivityHasNoCounterpart)
{
    const SignalValues noNumber = {
        .zid = "1", .domainType = u"kw_state", .domainParams = {{u"Activity", u"Self"}}};
    const SignalValues noActivity = {
        .zid = "1", .domainType = u"kw_state", .domainParams = {{u"KZID", u"7"}}};
    EXPECT_FALSE(areCounterparts(noNumber, noNumber));
    EXPECT_FALSE(areCounterparts(noActivity, noActivity));
    EXPECT_FALSE(areCounterparts(noActivity, stateValues("1", u"7", u"Self")));
}

TEST_F(ChartDifference, EmptyTextsAreNumberAndActivityLikeOthers)
{
    EXPECT_TRUE(areCounterparts(stateValues("1", u"", u""), stateValues("1", u"", u"")));
    EXPECT_FALSE(areCounterparts(stateValues("1", u"", u""), stateValues("1", u"0", u"")));
}

// Element by element, as one would by hand.
std::vector<SignalSpecificationPtr> differenceByHand(const InstrumentedSignals& from,
                                                     const InstrumentedSignals& to)
{
    const auto isChart = [](const SignalSpecification& s) {
        return s.getDomainType() == u"kw_state" || s.getDomainType() == u"kw_chart" ||
               s.getDomainType() == u"kw_data";
    };
    const auto lacks = [](const SignalSpecification& s) {
        return s.getDomainParams().count(u"KZID") == 0 || s.getDomainParams().count(u"Activity") == 0;
    };
    const auto areCounterparts = [&](const SignalSpecification& a, const SignalSpecification& b) {
        if (lacks(a) || lacks(b) || a.getZID() != b.getZID()) {
            return false;
        }
        const std::u16string kzidA = a.getValueForDomainParams(u"KZID");
        const std::u16string kzidB = b.getValueForDomainParams(u"KZID");
        if (kzidA == u"0" && kzidB == u"0") {
            return a.getValueForDomainParams(u"Activity") == b.getValueForDomainParams(u"Activity");
        }
        return kzidA == kzidB;
    };
    std::vector<SignalSpecificationPtr> left;
    for (std::size_t i = 0; i < from.getCount(); ++i) {
        bool found = !isChart(*from.get(i));
        for (std::size_t j = 0; j < to.getCount() && !found; ++j) {
            found = isChart(*to.get(j)) && areCounterparts(*from.get(i), *to.get(j));
        }
        if (!found) {
            left.push_back(from.get(i));
        }
    }
    return left;
}

SignalValues anyChartValues()
{
    using Texts = std::vector<std::u16string>;
    const std::u16string absent = u"absent";
    const auto parameter = rc::gen::elementOf(Texts{absent, u"", u"0", u"1", u"Self"});
    SignalValues values = {
        .zid = *rc::gen::elementOf(std::vector<std::string>{"1", "2"}),
        .domainType = *rc::gen::elementOf(Texts{u"kw_state", u"kw_chart", u"kw_data", u"bus"})};
    for (const char16_t* name : {u"KZID", u"Activity"}) {
        const std::u16string value = *parameter;
        if (value != absent) {
            values.domainParams.emplace_back(name, value);
        }
    }
    return values;
}

RC_GTEST_FIXTURE_PROP(ChartDifference, IsWhatComparingElementByElementGives, ())
{
    InstrumentedSignals from;
    InstrumentedSignals to;
    for (InstrumentedSignals* signals : {&from, &to}) {
        const int count = *rc::gen::inRange(0, 8);
        for (int i = 0; i < count; ++i) {
            signals->add(makeSignal(anyChartValues()));
        }
    }
    RC_ASSERT(from.setDifference_kw(&to) == differenceByHand(from, to));
}

}  // namespace
}  // namespace zm_hmi
