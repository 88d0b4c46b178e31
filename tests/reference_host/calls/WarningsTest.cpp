#include "reference_host/calls/Warnings.hpp"

#include "host/Calls.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace reference_host;
using WarningsTest = HostTest;

void warn(const char* text)
{
    zmsvReportAsWarning(zmsvCreateDiagnostic(zmsvMessageId("catalog", "Key", {std::uint64_t{2}}), text));
}

TEST_F(WarningsTest, CarryWhatTheDiagnosticCarried)
{
    warn("the text");
    ASSERT_EQ(Warnings::reported().size(), 1u);
    const Warning& warning = Warnings::reported()[0];
    EXPECT_EQ(warning.id.catalog(), "catalog");
    EXPECT_EQ(warning.id.key(), "Key");
    EXPECT_EQ(std::get<std::uint64_t>(warning.id.arguments().at(0)), 2u);
    EXPECT_EQ(warning.text, "the text");
}

TEST_F(WarningsTest, AreTakenOnce)
{
    warn("first");
    warn("second");
    const std::vector<Warning> taken = Warnings::take();
    ASSERT_EQ(taken.size(), 2u);
    EXPECT_EQ(taken[1].text, "second");
    EXPECT_TRUE(Warnings::reported().empty());
}

TEST_F(WarningsTest, ReachTheListenerAsTheyCome)
{
    std::string heard;
    Warnings::setListener([&](const Warning& warning) { heard += warning.text; });
    warn("a");
    warn("b");
    Warnings::setListener({});
    warn("c");
    EXPECT_EQ(heard, "ab");
    EXPECT_EQ(Warnings::reported().size(), 3u);
}

TEST_F(WarningsTest, AreKeptWhenTheListenerThrows)
{
    Warnings::setListener([](const Warning&) { throw std::runtime_error("listener"); });
    EXPECT_NO_THROW(warn("kept"));
    EXPECT_EQ(Warnings::reported().size(), 1u);
}

}  // namespace
