#include "tests/support/OperationWalk.hpp"

#include "host/OwnedArray.hpp"
#include "host/Text.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest-spi.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace operation_walk {
namespace {

/// A list with a count beside it, which its lookups go by.
struct List {
    std::vector<std::unique_ptr<std::u16string>> texts;
    std::size_t count = 0;
    OwnedArray held;  // a value that a failing operation leaves behind

    std::string state() const { return std::to_string(texts.size()); }
    void checkLookups(const std::string& where) const { EXPECT_EQ(count, texts.size()) << where; }
};

std::unique_ptr<List> makeList()
{
    return std::make_unique<List>();
}

/// Walks an operation through all failures; returns how often it failed.
std::size_t walkAll(const Operation<List>& operation)
{
    std::size_t failures = 0;
    for (const Failure& failure : everyFailure()) {
        failures += walk<List>(operation, failure, makeList);
    }
    return failures;
}

std::string addSafely(List& list)
{
    auto text = std::make_unique<std::u16string>(toUtf16("converted by the host"));
    list.texts.push_back(std::move(text));
    ++list.count;
    return "added";
}

std::string addTooEarly(List& list)
{
    list.texts.push_back(nullptr);
    list.texts.back() = std::make_unique<std::u16string>(toUtf16("converted by the host"));
    ++list.count;
    return "added";
}

std::string addAndHold(List& list)
{
    list.held = makeDouble(1.0);
    const std::string result = addSafely(list);
    list.held = nullptr;
    return result;
}

class OperationWalk : public reference_host::HostTest {};

TEST_F(OperationWalk, ASafeOperationPasses)
{
    EXPECT_GE(walkAll({.name = "add", .run = addSafely}), 4U);
}

TEST_F(OperationWalk, AHalfDoneChangeIsFound)
{
    testing::TestPartResultArray found;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &found);
        walkAll({.name = "add", .run = addTooEarly});
    }
    EXPECT_GT(found.size(), 0);
}

TEST_F(OperationWalk, AnExceptionToTheRuleIsCheckedByItsOwnExpectation)
{
    std::size_t asked = 0;
    walkAll({.name = "add",
             .run =
                 [](List& list) {
                     ++list.count;
                     list.texts.push_back(nullptr);
                     toUtf16("converted by the host");
                     return std::string();
                 },
             .afterException =
                 [&](List& list, const std::string& before) {
                     ++asked;
                     EXPECT_EQ(before, "0");
                     EXPECT_LE(list.state(), "1");
                     list.count = list.texts.size();
                 },
             .canBeRetried = false});
    EXPECT_GT(asked, 0U);
}

TEST_F(OperationWalk, AValueThatStaysOpenIsFound)
{
    testing::TestPartResultArray found;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &found);
        walk<List>({.name = "add", .run = addAndHold}, everyFailure().front(), makeList);
    }
    EXPECT_GT(found.size(), 0);
}

}  // namespace
}  // namespace operation_walk
