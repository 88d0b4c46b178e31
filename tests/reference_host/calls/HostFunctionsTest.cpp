#include "reference_host/calls/HostFunctions.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace {

using namespace reference_host;

/// Gives the names in the table, and the resolver, back as they were.
class HostFunctionsTest : public HostTest {
protected:
    static void sum(HostFunctionCall& call)
    {
        double total = 0;
        for (const nvArray* input : call.inputs()) {
            total += scalar(input);
        }
        call.setOutput(0, makeDouble(total));
    }

    const ScopedHostFunction m_sum{"test.sum", sum};
};

std::string keyOf(const std::function<void()>& body)
{
    try {
        body();
    } catch (const zmsvException& error) {
        return error.id().key();
    }
    return "returned";
}

TEST_F(HostFunctionsTest, AreCalledFromHostCode)
{
    const OwnedValue one = makeDouble(1);
    const OwnedValue two = makeDouble(2);
    const nvArray* inputs[] = {one.get(), two.get()};
    const std::vector<OwnedValue> outputs = HostFunctions::call("test.sum", inputs, 1);
    ASSERT_EQ(outputs.size(), 1u);
    EXPECT_EQ(scalar(outputs[0].get()), 3.0);
}

TEST_F(HostFunctionsTest, HaveNullForAnOutputThatTheyDoNotGive)
{
    const std::vector<OwnedValue> outputs = HostFunctions::call("test.sum", {}, 3);
    ASSERT_EQ(outputs.size(), 3u);
    EXPECT_NE(outputs[0], nullptr);
    EXPECT_EQ(outputs[2], nullptr);
}

TEST_F(HostFunctionsTest, LoseAnOutputThatNobodyAskedFor)
{
    EXPECT_TRUE(HostFunctions::call("test.sum", {}, 0).empty());
}

TEST_F(HostFunctionsTest, LeaveNothingBehindWhenTheyFail)
{
    const ScopedHostFunction failing("test.failing", [](HostFunctionCall& call) {
        call.setOutput(1, makeDouble(1));
        throw std::runtime_error("half way");
    });
    EXPECT_THROW(HostFunctions::call("test.failing", {}, 2), std::runtime_error);
}

TEST_F(HostFunctionsTest, MaySetAnOutputAgain)
{
    const ScopedHostFunction twice("test.twice", [](HostFunctionCall& call) {
        call.setOutput(0, makeDouble(1));
        call.setOutput(0, makeDouble(2));
    });
    EXPECT_EQ(scalar(HostFunctions::call("test.twice", {}, 1)[0].get()), 2.0);
}

TEST_F(HostFunctionsTest, AreLentTheirInputs)
{
    expectMisuses(1);
    const OwnedValue input = makeDouble(1);
    const ScopedHostFunction greedy("test.greedy", [&](HostFunctionCall&) { nvDestroyArray(input.get()); });
    const nvArray* inputs[] = {input.get()};
    EXPECT_EQ(keyOf([&] { HostFunctions::call("test.greedy", inputs, 0); }), "ValueIsLent");
    EXPECT_EQ(scalar(input.get()), 1.0);
}

TEST_F(HostFunctionsTest, SayWhenAnInputIsMissing)
{
    const ScopedHostFunction picky("test.picky", [](HostFunctionCall& call) { scalar(call.input(1)); });
    const OwnedValue one = makeDouble(1);
    const nvArray* inputs[] = {one.get()};
    EXPECT_EQ(keyOf([&] { HostFunctions::call("test.picky", inputs, 0); }), "TooFewInputs");
}

TEST_F(HostFunctionsTest, ThatNobodyKnowsAreAHostError)
{
    EXPECT_EQ(keyOf([] { HostFunctions::call("test.unknown", {}, 0); }), "UnknownFunction");
}

TEST_F(HostFunctionsTest, AreNotDefinedTwice)
{
    EXPECT_EQ(keyOf([] { HostFunctions::define("test.sum", sum); }), "FunctionExists");
}

TEST_F(HostFunctionsTest, AreDefinedListedAndRemoved)
{
    HostFunctions::define("test.other", sum);
    EXPECT_TRUE(HostFunctions::isDefined("test.other"));
    const std::vector<std::string> names = HostFunctions::names();
    EXPECT_EQ(std::count(names.begin(), names.end(), "test.other"), 1);
    EXPECT_TRUE(HostFunctions::remove("test.other"));
    EXPECT_FALSE(HostFunctions::remove("test.other"));
    EXPECT_FALSE(HostFunctions::isDefined("test.other"));
}

TEST_F(HostFunctionsTest, RedefinedForABlockAreBackAfterIt)
{
    {
        const ScopedHostFunction other("test.sum",
                                       [](HostFunctionCall& call) { call.setOutput(0, makeDouble(99)); });
        EXPECT_EQ(scalar(HostFunctions::call("test.sum", {}, 1)[0].get()), 99.0);
    }
    EXPECT_EQ(scalar(HostFunctions::call("test.sum", {}, 1)[0].get()), 0.0);
}

TEST_F(HostFunctionsTest, MayRemoveThemselvesWhileTheyRun)
{
    std::string name = "test.once";
    HostFunctions::define(name, [name](HostFunctionCall& call) {
        HostFunctions::remove(name);
        call.setOutput(0, makeText(name));
    });
    EXPECT_EQ(utf8Text(HostFunctions::call("test.once", {}, 1)[0].get()), "test.once");
    EXPECT_FALSE(HostFunctions::isDefined("test.once"));
}

TEST_F(HostFunctionsTest, MayCallOneAnother)
{
    const ScopedHostFunction outer("test.outer", [](HostFunctionCall& call) {
        std::vector<OwnedValue> inner = HostFunctions::call("test.sum", call.inputs(), 1);
        call.setOutput(0, std::move(inner[0]));
    });
    const OwnedValue one = makeDouble(1);
    const nvArray* inputs[] = {one.get()};
    EXPECT_EQ(scalar(HostFunctions::call("test.outer", inputs, 1)[0].get()), 1.0);
}

}  // namespace
