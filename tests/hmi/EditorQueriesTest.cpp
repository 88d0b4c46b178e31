#include "hmi/InstrumentedSignals.hpp"

#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

using Source = InstrumentedSignals::Source;

rh::OwnedValue makeNumbers(const std::vector<double>& numbers)
{
    rh::OwnedValue value = rh::makeNumeric(rh::Dimensions(numbers.size(), 1), nvClassID::Double);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        rh::setElement(value.get(), i, numbers[i]);
    }
    return value;
}

rh::OwnedValue makeTexts(const std::vector<std::u16string>& texts)
{
    rh::OwnedValue value = rh::makeCells(rh::Dimensions(texts.size(), 1));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        rh::setCell(value.get(), i, rh::makeText(texts[i]));
    }
    return value;
}

rh::OwnedValue makeFlags(const std::vector<bool>& flags)
{
    rh::OwnedValue value = rh::makeLogicals(rh::Dimensions(flags.size(), 1));
    for (std::size_t i = 0; i < flags.size(); ++i) {
        rh::setElement(value.get(), i, flags[i] ? 1.0 : 0.0);
    }
    return value;
}

/// What the host answers: by result, made anew for every call.
using Results = std::array<std::function<rh::OwnedValue()>, 10>;

Results twoPorts()
{
    return {[] {
                return makeTexts({u"eins", u"\u00fc"});
            },
            [] {
                return makeNumbers({2.5, 3.5});
            },
            [] {
                return makeNumbers({1, 2});
            },
            [] {
                return makeNumbers({3, 4});
            },
            [] {
                return makeNumbers({5, 6});
            },
            [] {
                return makeFlags({true, false});
            },
            [] {
                return makeFlags({false, true});
            },
            [] {
                return makeTexts({u"acht", u"ACHT"});
            },
            [] {
                return makeFlags({true, true});
            },
            [] {
                return makeTexts({u"zehn", u"ZEHN"});
            }};
}

rh::HostFunction answer(Results results)
{
    return [results = std::move(results)](rh::HostFunctionCall& call) {
        for (std::size_t i = 0; i < results.size(); ++i) {
            call.setOutput(i, results[i] ? results[i]() : nullptr);
        }
    };
}

class EditorQueries : public LibraryTest {
protected:
    const std::vector<Source>& ask(const Results& results)
    {
        const rh::ScopedHostFunction function("getObservedPorts", answer(results));
        InstrumentedSignals::getObservedPorts(model.get(), "first", "second", sources, true, false);
        return sources;
    }

    /// The same with one result changed.
    const std::vector<Source>& askWith(std::size_t result, std::function<rh::OwnedValue()> made)
    {
        Results results = twoPorts();
        results.at(result - 1) = std::move(made);
        return ask(results);
    }

    static void expectOneWarning(const std::string& key)
    {
        ASSERT_EQ(rh::Warnings::reported().size(), 1U);
        EXPECT_EQ(rh::Warnings::reported()[0].id.key(), key);
    }

    rh::OwnedValue model = rh::makeText(u"plant");
    std::vector<Source> sources = std::vector<Source>(3);
};

// ---- observed ports -------------------------------------------------------------------------------------

TEST_F(EditorQueries, ANullModelHasNoObservedPortsAndNobodyIsAsked)
{
    const rh::ScopedHostFunction function("getObservedPorts", [](auto&) { ADD_FAILURE() << "asked"; });
    InstrumentedSignals::getObservedPorts(nullptr, "a", "b", sources, true, true);
    EXPECT_TRUE(sources.empty());
}

TEST_F(EditorQueries, TheHostGetsModelTextsAndSwitchesInThisOrder)
{
    std::vector<std::string> inputs;
    const rh::ScopedHostFunction function("getObservedPorts", [&](rh::HostFunctionCall& call) {
        EXPECT_EQ(call.outputCount(), 10U);
        ASSERT_EQ(call.inputs().size(), 5U);
        for (std::size_t i = 0; i < 3; ++i) {
            inputs.push_back(rh::utf8Text(call.input(i)));
        }
        for (std::size_t i = 3; i < 5; ++i) {
            EXPECT_EQ(rh::className(call.input(i)), "logical");
            inputs.emplace_back(rh::isTrueScalar(call.input(i)) ? "on" : "off");
        }
    });
    InstrumentedSignals::getObservedPorts(model.get(), "first", "zw\u00f6", sources, true, false);
    EXPECT_EQ(inputs, (std::vector<std::string>{"plant", "first", "zw\u00f6", "on", "off"}));
}

TEST_F(EditorQueries, NullTextsCountAsEmpty)
{
    std::vector<std::string> inputs;
    const rh::ScopedHostFunction function("getObservedPorts", [&](rh::HostFunctionCall& call) {
        inputs = {rh::className(call.input(1)), rh::utf8Text(call.input(1)), rh::className(call.input(2)),
                  rh::utf8Text(call.input(2))};
    });
    InstrumentedSignals::getObservedPorts(model.get(), nullptr, nullptr, sources, true, false);
    EXPECT_EQ(inputs, (std::vector<std::string>{"char", "", "char", ""}));
}

TEST_F(EditorQueries, EveryFieldIsFilledFromItsResult)
{
    ask(twoPorts());
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_EQ(sources[0].name, "eins");
    EXPECT_EQ(sources[1].name, "\u00fc");
    EXPECT_EQ(sources[1].handle, 3.5);
    EXPECT_EQ(sources[1].number1, 2);
    EXPECT_EQ(sources[1].number2, 4);
    EXPECT_EQ(sources[1].number3, 6);
    EXPECT_TRUE(sources[0].flag1);
    EXPECT_FALSE(sources[1].flag1);
    EXPECT_FALSE(sources[0].flag2);
    EXPECT_TRUE(sources[1].flag2);
}

TEST_F(EditorQueries, ResultEightIsATextAndResultNineTheLastFlag)
{
    askWith(9, [] { return makeFlags({false, true}); });
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_EQ(sources[0].text1, u"acht");
    EXPECT_EQ(sources[1].text1, u"ACHT");
    EXPECT_FALSE(sources[0].flag3);
    EXPECT_TRUE(sources[1].flag3);
    EXPECT_EQ(sources[0].text2, u"zehn");
    EXPECT_EQ(sources[1].text2, u"ZEHN");
}

TEST_F(EditorQueries, FlagsMayBeDoublesAndAHalfIsTrue)
{
    askWith(6, [] { return makeNumbers({0.5, 0.0}); });
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_TRUE(sources[0].flag1);
    EXPECT_FALSE(sources[1].flag1);
}

TEST_F(EditorQueries, NumbersAreTruncatedTowardZero)
{
    askWith(3, [] { return makeNumbers({2.9, -1.5}); });
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_EQ(sources[0].number1, 2);
    EXPECT_EQ(sources[1].number1, -1);
}

TEST_F(EditorQueries, TheFirstResultSizesTheList)
{
    EXPECT_EQ(askWith(1, [] { return makeTexts({u"only"}); }).size(), 1U);
    EXPECT_EQ(askWith(1, [] { return makeTexts({u"a", u"b", u"c"}); }).size(), 3U);
}

TEST_F(EditorQueries, MissingElementsOfOtherResultsAreZeroFalseAndEmpty)
{
    askWith(1, [] { return makeTexts({u"a", u"b", u"c"}); });
    ASSERT_EQ(sources.size(), 3U);
    const Source& last = sources[2];
    EXPECT_EQ(last.name, "c");
    EXPECT_EQ(last.handle, 0.0);
    EXPECT_EQ(last.number1 + last.number2 + last.number3, 0);
    EXPECT_FALSE(last.flag1 || last.flag2 || last.flag3);
    EXPECT_EQ(last.text1 + last.text2, u"");
}

TEST_F(EditorQueries, AResultOfAnyShapeIsReadElementByElement)
{
    const auto grid = [] {
        rh::OwnedValue cells = rh::makeCells(rh::Dimensions(2, 2));
        rh::setCell(cells.get(), 3, rh::makeText(u"last"));
        return cells;
    };
    askWith(1, grid);
    ASSERT_EQ(sources.size(), 4U);
    EXPECT_EQ(sources[0].name, "") << "an unset cell";
    EXPECT_EQ(sources[3].name, "last");
}

TEST_F(EditorQueries, ResultsThatAreNotGivenCountAsEmpty)
{
    Results names;
    names[0] = [] { return makeTexts({u"a"}); };
    ask(names);
    ASSERT_EQ(sources.size(), 1U);
    EXPECT_EQ(sources[0].name, "a");
    EXPECT_EQ(sources[0].handle, 0.0);
    EXPECT_TRUE(ask({}).empty());
}

TEST_F(EditorQueries, AHostErrorEmptiesTheListAndIsOneWarning)
{
    const rh::ScopedHostFunction function("getObservedPorts", fail);
    InstrumentedSignals::getObservedPorts(model.get(), "a", "b", sources, true, true);
    EXPECT_TRUE(sources.empty());
    expectOneWarning("Refused");
}

TEST_F(EditorQueries, AHostErrorAfterSomeResultsFreesThem)
{
    const rh::ScopedHostFunction function("getObservedPorts", [](rh::HostFunctionCall& call) {
        call.setOutput(0, makeTexts({u"a"}));
        call.setOutput(4, makeNumbers({1}));
        fail(call);
    });
    InstrumentedSignals::getObservedPorts(model.get(), "a", "b", sources, true, true);
    EXPECT_TRUE(sources.empty());
    expectOneWarning("Refused");
}

TEST_F(EditorQueries, AMissingHostFunctionEmptiesTheListAndIsOneWarning)
{
    InstrumentedSignals::getObservedPorts(model.get(), "a", "b", sources, true, true);
    EXPECT_TRUE(sources.empty());
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
}

TEST_F(EditorQueries, AResultThatCannotBeReadEmptiesTheListIsOneWarningAndFreesAllTen)
{
    const auto numbersInCells = [] {
        rh::OwnedValue cells = rh::makeCells(rh::Dimensions(2, 1));
        rh::setCell(cells.get(), 1, rh::makeDouble(1.0));
        return cells;
    };
    for (const std::size_t result : {1U, 8U, 10U}) {
        sources.resize(3);
        EXPECT_TRUE(askWith(result, numbersInCells).empty());
        EXPECT_EQ(rh::Warnings::take().size(), 1U) << result;
    }
    for (const std::size_t result : {2U, 3U, 4U, 5U, 6U, 7U, 9U}) {
        sources.resize(3);
        EXPECT_TRUE(askWith(result, [] { return makeTexts({u"a", u"b"}); }).empty());
        EXPECT_EQ(rh::Warnings::take().size(), 1U) << result;
    }
}

TEST_F(EditorQueries, AskingForPortsFreesAllWhenAnOperationFails)
{
    const rh::ScopedHostFunction function("getObservedPorts", answer(twoPorts()));
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto struck = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            std::vector<Source> found;
            InstrumentedSignals::getObservedPorts(model.get(), "a", "b", found, true, true);
        });
        EXPECT_GT(struck, 10U);
        rh::Warnings::clear();
    }
}

// ---- badges ---------------------------------------------------------------------------------------------

class Badges : public EditorQueries {
protected:
    void ask(const std::vector<double>& answered)
    {
        const rh::ScopedHostFunction function("getPortsWithBadges", [&](rh::HostFunctionCall& call) {
            EXPECT_EQ(call.outputCount(), 1U);
            EXPECT_EQ(call.inputs().size(), 1U);
            EXPECT_EQ(rh::utf8Text(call.input(0)), "plant");
            call.setOutput(0, makeNumbers(answered));
        });
        InstrumentedSignals::getPortsWithBadges(model.get(), handles);
    }

    std::set<double> handles = {7.5};
};

TEST_F(Badges, AnEmptyOrNullModelLeavesTheSetAndNobodyIsAsked)
{
    const rh::ScopedHostFunction function("getPortsWithBadges", [](auto&) { ADD_FAILURE() << "asked"; });
    InstrumentedSignals::getPortsWithBadges(nullptr, handles);
    InstrumentedSignals::getPortsWithBadges(rh::makeEmptyValue().get(), handles);
    InstrumentedSignals::getPortsWithBadges(rh::makeText(u"").get(), handles);
    EXPECT_EQ(handles, std::set<double>{7.5});
}

TEST_F(Badges, TheHandlesAreAddedToTheSet)
{
    ask({1.5, 2.5});
    EXPECT_EQ(handles, (std::set<double>{1.5, 2.5, 7.5}));
}

TEST_F(Badges, DuplicatesCollapse)
{
    ask({1.5, 7.5, 1.5});
    EXPECT_EQ(handles, (std::set<double>{1.5, 7.5}));
}

TEST_F(Badges, AskingTwiceGivesTheUnion)
{
    ask({1.5, 2.5});
    ask({2.5, 3.5});
    EXPECT_EQ(handles, (std::set<double>{1.5, 2.5, 3.5, 7.5}));
}

TEST_F(Badges, AnEmptyAnswerLeavesTheSet)
{
    ask({});
    EXPECT_EQ(handles, std::set<double>{7.5});
}

TEST_F(Badges, AMissingAnswerLeavesTheSet)
{
    const rh::ScopedHostFunction function("getPortsWithBadges", [](auto&) {});
    InstrumentedSignals::getPortsWithBadges(model.get(), handles);
    EXPECT_EQ(handles, std::set<double>{7.5});
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(Badges, AHostErrorLeavesTheSetAndIsOneWarning)
{
    const rh::ScopedHostFunction function("getPortsWithBadges", fail);
    InstrumentedSignals::getPortsWithBadges(model.get(), handles);
    EXPECT_EQ(handles, std::set<double>{7.5});
    expectOneWarning("Refused");
}

TEST_F(Badges, AnAnswerThatIsNoNumbersLeavesTheSetAndIsOneWarning)
{
    const rh::ScopedHostFunction function(
        "getPortsWithBadges", [](rh::HostFunctionCall& call) { call.setOutput(0, makeTexts({u"a"})); });
    InstrumentedSignals::getPortsWithBadges(model.get(), handles);
    EXPECT_EQ(handles, std::set<double>{7.5});
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
}

TEST_F(Badges, AskingFreesAllWhenAnOperationFails)
{
    const rh::ScopedHostFunction function(
        "getPortsWithBadges", [](rh::HostFunctionCall& call) { call.setOutput(0, makeNumbers({1.5})); });
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto struck = rh::walkFaults(rh::Faults::anyOperation, kind, [&] {
            std::set<double> found;
            InstrumentedSignals::getPortsWithBadges(model.get(), found);
        });
        EXPECT_GT(struck, 1U);
        rh::Warnings::clear();
    }
}

// ---- host errors outside of the call ------------------------------------------------------------------

/// Runs a query with a host error in each call in turn: it must return, with one warning and what `check`
/// finds.
void expectOneWarningForEachHostError(const std::function<void()>& query, const std::function<void()>& check)
{
    for (std::uint64_t nth = 1;; ++nth) {
        rh::Faults::arm(rh::Faults::anyOperation, rh::FaultKind::HostException, nth);
        EXPECT_NO_THROW(query()) << "call " << nth;
        if (!rh::Faults::disarm()) {
            EXPECT_TRUE(rh::Warnings::reported().empty());
            EXPECT_GT(nth, 2U);
            return;
        }
        EXPECT_EQ(rh::Warnings::take().size(), 1U) << "call " << nth;
        check();
    }
}

TEST_F(EditorQueries, AHostErrorAnywhereEmptiesTheListAndIsOneWarning)
{
    const rh::ScopedHostFunction function("getObservedPorts", answer(twoPorts()));
    expectOneWarningForEachHostError(
        [&] {
            sources.resize(3);
            InstrumentedSignals::getObservedPorts(model.get(), "first", "second", sources, true, false);
        },
        [&] { EXPECT_TRUE(sources.empty()); });
    EXPECT_EQ(sources.size(), 2U);
}

TEST_F(EditorQueries, ATextMayBeThatOfAFormerSource)
{
    std::string asked;
    const rh::ScopedHostFunction function("getObservedPorts", [&](rh::HostFunctionCall& call) {
        asked = rh::utf8Text(call.input(1));
        answer(twoPorts())(call);
    });
    sources[0].name = "a name that does not fit in place";
    InstrumentedSignals::getObservedPorts(model.get(), sources[0].name.c_str(), "", sources, true, false);
    EXPECT_EQ(asked, "a name that does not fit in place");
}

TEST_F(EditorQueries, ResultsOfAFailedCallAreScopedBeforeTheyAreDestroyed)
{
    rh::Journal::startRecording();
    const rh::ScopedHostFunction function("getObservedPorts", [](rh::HostFunctionCall& call) {
        call.setOutput(0, makeNumbers({1}));
        fail(call);
    });
    InstrumentedSignals::getObservedPorts(model.get(), "", "", sources, true, false);
    rh::Journal::stopRecording();
    EXPECT_EQ(rh::Journal::count("zmsvSetLocalScope"), 5U);  // four arguments and the result
    EXPECT_EQ(rh::Journal::count("nvDestroyArray"), 5U);
}

TEST_F(Badges, AHostErrorAnywhereLeavesTheSetAndIsOneWarning)
{
    const rh::ScopedHostFunction function(
        "getPortsWithBadges", [](rh::HostFunctionCall& call) { call.setOutput(0, makeNumbers({9})); });
    std::set<double> badges{7.0};
    expectOneWarningForEachHostError([&] { InstrumentedSignals::getPortsWithBadges(model.get(), badges); },
                                     [&] { EXPECT_EQ(badges, std::set<double>{7.0}); });
    EXPECT_EQ(badges, (std::set<double>{7.0, 9.0}));
}

}  // namespace
}  // namespace zm_hmi
