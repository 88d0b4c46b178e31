#include "reference_host/values/Value.hpp"

#include "host/Containers.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/reference_host/values/Misuse.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace reference_host;
using ValueTest = HostTest;

OwnedValue makeCell(OwnedValue element)
{
    OwnedValue cells = makeCells(Dimensions(1, 1));
    setCell(cells.get(), 0, std::move(element));
    return cells;
}

TEST_F(ValueTest, DestroyedTwiceIsAMisuseThatNamesTheValue)
{
    expectMisuses(1);
    nvArray* value = makeDouble(2).release();
    const std::string name = "#" + std::to_string(value->serial);
    nvDestroyArray(value);
    const std::string text = misusedWith("ValueIsDead", [&] { nvDestroyArray(value); });
    EXPECT_NE(text.find("nvDestroyArray"), std::string::npos) << text;
    EXPECT_NE(text.find(name), std::string::npos) << text;
}

TEST_F(ValueTest, DestroyedTwiceIsNoticedAThousandValuesLater)
{
    expectMisuses(1);
    nvArray* value = makeDouble(2).release();
    nvDestroyArray(value);
    for (int i = 0; i < 1000; ++i) {
        makeText(std::string_view("another"));
    }
    misusedWith("ValueIsDead", [&] { nvDestroyArray(value); });
}

TEST_F(ValueTest, ReadAfterItsEndIsAMisuse)
{
    expectMisuses(3);
    nvArray* value = makeDouble(2).release();
    nvDestroyArray(value);
    misusedWith("ValueIsDead", [&] { nvGetScalar(value); });
    misusedWith("ValueIsDead", [&] { nvCreateDeepCopy(value); });
    misusedWith("ValueIsDead", [&] { zmsvSetLocalScope(value); });
}

TEST_F(ValueTest, HeldByAContainerIsNotDestroyed)
{
    expectMisuses(1);
    nvArray* held = makeDouble(2).release();
    const OwnedValue cells = makeCell(OwnedValue(held));
    const std::string text = misusedWith("ValueIsHeld", [&] { nvDestroyArray(held); });
    EXPECT_NE(text.find("double 2"), std::string::npos) << text;
}

TEST_F(ValueTest, HeldByAContainerIsNeitherScopedNorWritten)
{
    expectMisuses(4);
    nvArray* held = makeDouble(2).release();
    const OwnedValue cells = makeCell(OwnedValue(held));
    misusedWith("ValueIsHeld", [&] { nvSetArrayScope(held, nvScope::Temporary); });
    misusedWith("ValueIsHeld", [&] { zmsvSetLocalScope(held); });
    misusedWith("ValueIsHeld", [&] { zmsvSetPersistentScope(held); });
    misusedWith("ValueIsHeld", [&] { nvGetDataPointer(held); });
}

TEST_F(ValueTest, EndsWithItsContainer)
{
    expectMisuses(1);
    nvArray* held = makeDouble(2).release();
    makeCell(makeCell(OwnedValue(held))).reset();
    EXPECT_EQ(held->ownership, Ownership::Dead);
    misusedWith("ValueIsDead", [&] { nvGetScalar(held); });
}

TEST_F(ValueTest, IsPersistentForGood)
{
    expectMisuses(3);
    const OwnedValue value = makeDouble(2);
    setScope(value.get(), Scope::Persistent);
    misusedWith("ValueIsPersistent", [&] { zmsvSetLocalScope(value.get()); });
    misusedWith("ValueIsPersistent", [&] { nvSetArrayScope(value.get(), nvScope::CallerOwned); });
    misusedWith("ValueIsPersistent", [&] { zmsvSetPersistentScope(value.get()); });
    EXPECT_EQ(value->scope, Scope::Persistent);
}

TEST_F(ValueTest, RemembersTheScopeThatItWasGiven)
{
    const OwnedValue value = makeDouble(2);
    EXPECT_EQ(value->scope, Scope::None);
    nvSetArrayScope(value.get(), nvScope::Temporary);
    EXPECT_EQ(value->scope, Scope::Temporary);
    zmsvSetLocalScope(value.get());
    EXPECT_EQ(value->scope, Scope::Local);
    nvSetArrayScope(value.get(), nvScope::CallerOwned);
    EXPECT_EQ(value->scope, Scope::CallerOwned);
}

TEST_F(ValueTest, LentToACallIsNeitherDestroyedNorScopedNorStored)
{
    expectMisuses(4);
    const OwnedValue value = makeDouble(2);
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    const Loan loan(value.get());
    misusedWith("ValueIsLent", [&] { nvDestroyArray(value.get()); });
    misusedWith("ValueIsLent", [&] { zmsvSetLocalScope(value.get()); });
    misusedWith("ValueIsLent", [&] { nvSetCell(cells.get(), 0, value.get()); });
    misusedWith("ValueIsLent", [&] { nvGetDataPointer(value.get()); });
}

TEST_F(ValueTest, IsItsOwnersAgainAfterEveryLoan)
{
    OwnedValue value = makeDouble(2);
    {
        Loan first(value.get());
        const Loan second(value.get());
        const Loan moved(std::move(first));
        EXPECT_EQ(value->loans, 2u);
    }
    EXPECT_EQ(value->loans, 0u);
    EXPECT_NO_THROW(value.reset());
}

TEST_F(ValueTest, LentFromAContainerThatEndsIsAMisuse)
{
    expectMisuses(1);
    OwnedValue cells = makeCell(makeDouble(2));
    {
        const Loan loan(cell(cells.get(), 0));
        cells.reset();
        ASSERT_EQ(misuses(), 1u);
        EXPECT_NE(Ledger::misuses().back().find("double 2"), std::string::npos) << Ledger::misuses().back();
    }
}

TEST_F(ValueTest, InTheHeaderOfALentOneKnowsNothingOfThatLoan)
{
    expectMisuses(1);
    nvArray* header = makeDouble(2).release();
    OwnedValue cells = makeCell(OwnedValue(header));
    OwnedValue reused;
    {
        const Loan loan(header);
        cells.reset();
        for (int i = 0; i < 100000 && reused.get() != header; ++i) {
            reused = makeDouble(3);
        }
        ASSERT_EQ(reused.get(), header);
        EXPECT_EQ(reused->loans, 0u);
    }
    EXPECT_EQ(reused->loans, 0u);
}

TEST_F(ValueTest, ThatIsDeadIsNotLent)
{
    expectMisuses(1);
    nvArray* value = makeDouble(2).release();
    destroyValue(value);
    misusedWith("ValueIsDead", [&] { const Loan loan(value); });
}

TEST_F(ValueTest, OfNullIsLentAsNothing)
{
    EXPECT_NO_THROW(const Loan loan(nullptr));
}

TEST_F(ValueTest, HasTheNextSerialNumber)
{
    const OwnedValue first = makeDouble(1);
    const OwnedValue second = makeDouble(2);
    EXPECT_EQ(second->serial, first->serial + 1);
}

TEST_F(ValueTest, KnowsTheOperationThatMadeIt)
{
    const OwnedValue byHost = makeDouble(1);
    EXPECT_EQ(byHost->madeBy.operation, nullptr);
    const OwnedValue byLibrary(nvCreateDoubleScalar(1));
    EXPECT_STREQ(byLibrary->madeBy.operation, "nvCreateDoubleScalar");
    EXPECT_NE(byLibrary->madeBy.caller, nullptr);
}

}  // namespace
