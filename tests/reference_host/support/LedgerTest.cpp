#include "reference_host/support/Ledger.hpp"

#include "host/OwnedArray.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

using namespace reference_host;
using LedgerTest = HostTest;

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

TEST_F(LedgerTest, ListsOpenValuesWithTheirPlaceOfCreation)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    const OwnedArray value(nvCreateDoubleScalar(2));
    const std::vector<std::string> open = Ledger::openSince(before);
    ASSERT_EQ(open.size(), 1u);
    EXPECT_TRUE(contains(open[0], "double 2, made by nvCreateDoubleScalar, called from ")) << open[0];
}

TEST_F(LedgerTest, ListsTheOldestValueFirst)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    const OwnedValue first = reference_host::makeDouble(1);
    const OwnedValue second = reference_host::makeDouble(2);
    const std::vector<std::string> open = Ledger::openSince(before);
    ASSERT_EQ(open.size(), 2u);
    EXPECT_TRUE(contains(open[0], "double 1"));
}

TEST_F(LedgerTest, ListsOnlyWhatIsNewerThanTheSnapshot)
{
    const OwnedValue older = reference_host::makeDouble(1);
    const Ledger::Snapshot before = Ledger::snapshot();
    EXPECT_TRUE(Ledger::openSince(before).empty());
}

TEST_F(LedgerTest, LeavesOutWhatAContainerHolds)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    reference_host::setCell(cells.get(), 0, reference_host::makeDouble(1));
    EXPECT_EQ(Ledger::openSince(before).size(), 1u);
}

TEST_F(LedgerTest, LeavesOutWhatIsMeantToLive)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    const OwnedValue constant = reference_host::makeDouble(1);
    declareMeantToLive(constant.get());
    EXPECT_TRUE(Ledger::openSince(before).empty());
}

TEST_F(LedgerTest, ForgetsTheDeclarationWithTheValue)
{
    nvArray* declared = reference_host::makeDouble(1).release();
    declareMeantToLive(declared);
    destroyValue(declared);
    const Ledger::Snapshot before = Ledger::snapshot();
    std::vector<OwnedValue> values;
    while (values.empty() || values.back().get() != declared) {
        values.push_back(reference_host::makeDouble(1));
        ASSERT_LT(values.size(), 100000u);
        destroyValue(reference_host::makeDouble(1).release());
    }
    EXPECT_EQ(Ledger::openSince(before).size(), values.size());
}

TEST_F(LedgerTest, CountsValuesThatAreAlive)
{
    const std::size_t before = liveValues();
    const OwnedValue value = reference_host::makeDouble(1);
    EXPECT_EQ(liveValues(), before + 1);
}

TEST_F(LedgerTest, ListsCountersThatHaveGrown)
{
    LedgerCounter& counter = Ledger::counter("test things");
    const Ledger::Snapshot before = Ledger::snapshot();
    counter.open();
    counter.open();
    EXPECT_EQ(Ledger::openSince(before), std::vector<std::string>{"2 test things open"});
    counter.declareMeantToLive();
    EXPECT_EQ(Ledger::openSince(before), std::vector<std::string>{"1 test things open"});
    counter.close();
    EXPECT_TRUE(Ledger::openSince(before).empty());
    counter.close();
    counter.declareMeantToLive(-1);
}

TEST_F(LedgerTest, HasOneCounterForEachName)
{
    EXPECT_EQ(&Ledger::counter("test things"), &Ledger::counter("test things"));
    EXPECT_NE(&Ledger::counter("test things"), &Ledger::counter("other test things"));
}

TEST_F(LedgerTest, ListsMisusesSinceTheSnapshot)
{
    expectMisuses(2);
    Ledger::recordMisuse("before");
    const Ledger::Snapshot snapshot = Ledger::snapshot();
    Ledger::recordMisuse("after");
    EXPECT_EQ(Ledger::openSince(snapshot), std::vector<std::string>{"misuse: after"});
}

TEST_F(LedgerTest, ReportsValuesByClassAndPlace)
{
    const OwnedArray first(nvCreateLogicalScalar(true));
    std::vector<OwnedValue> texts;
    for (int i = 0; i < 3; ++i) {
        texts.push_back(makeText(std::string_view("text")));
    }
    const std::string report = Ledger::report();
    EXPECT_TRUE(contains(report, "  1 logical, made by nvCreateLogicalScalar, called from ")) << report;
    EXPECT_TRUE(contains(report, "  3 char, made by host code\n")) << report;
}

// Each in a process of its own, where nothing else is open.
using LedgerDeathTest = HostTest;

TEST_F(LedgerDeathTest, ReportsThatNothingIsOpen)
{
    EXPECT_EXIT(
        {
            std::cerr << Ledger::report();
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "^nothing is open\n$");
}

TEST_F(LedgerDeathTest, EndsAProgramWithItsOwnCodeWhenAllIsClosed)
{
    EXPECT_EXIT(
        {
            reference_host::makeDouble(1);
            std::exit(Ledger::close(0));
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(LedgerDeathTest, EndsAProgramWithAListWhenAValueIsLeft)
{
    EXPECT_EXIT(
        {
            nvCreateDoubleScalar(1);
            std::exit(Ledger::close(0));
        },
        ::testing::ExitedWithCode(3), "not closed.*\n1 live value\n  1 double, made by nvCreateDoubleScalar");
}

TEST_F(LedgerDeathTest, KeepsTheCodeOfAProgramThatFailed)
{
    EXPECT_EXIT(
        {
            nvCreateDoubleScalar(1);
            std::exit(Ledger::close(1));
        },
        ::testing::ExitedWithCode(1), "not closed");
}

}  // namespace
