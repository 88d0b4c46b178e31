#include "reference_host/calls/Journal.hpp"

#include "host/OwnedArray.hpp"
#include "reference_host/calls/BoundaryCall.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace reference_host;
using JournalTest = HostTest;

void leaf(int number)
{
    BoundaryCall({"leaf"}, number).run([&] { return number; });
}

void branch()
{
    BoundaryCall({"branch"}, "of two").run([] {
        leaf(1);
        leaf(2);
        return 3;
    });
}

TEST_F(JournalTest, IsOffUnlessAskedFor)
{
    leaf(1);
    EXPECT_TRUE(Journal::entries().empty());
}

TEST_F(JournalTest, KeepsCallsInTheOrderOfTheirBeginning)
{
    Journal::startRecording();
    branch();
    leaf(4);
    const std::vector<JournalEntry> entries = Journal::entries();
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[0].text(), "branch(\"of two\") -> 3");
    EXPECT_EQ(entries[1].text(), "leaf(1) -> 1");
    EXPECT_EQ(entries[3].text(), "leaf(4) -> 4");
    EXPECT_EQ(entries[0].depth, 0u);
    EXPECT_EQ(entries[1].depth, 1u);
    EXPECT_EQ(entries[3].depth, 0u);
    EXPECT_EQ(Journal::count("leaf"), 3u);
}

TEST_F(JournalTest, KeepsWhatItHasWhenItStops)
{
    Journal::startRecording();
    leaf(1);
    Journal::stopRecording();
    leaf(2);
    EXPECT_EQ(Journal::count("leaf"), 1u);
}

TEST_F(JournalTest, StartsAgainFromNone)
{
    Journal::startRecording();
    leaf(1);
    Journal::startRecording();
    leaf(2);
    ASSERT_EQ(Journal::entries().size(), 1u);
    EXPECT_EQ(Journal::entries()[0].text(), "leaf(2) -> 2");
}

TEST_F(JournalTest, DoesNotWriteAResultIntoAnotherCallsEntry)
{
    Journal::startRecording();
    BoundaryCall({"outer"}, 1).run([] {
        Journal::clear();
        leaf(2);
        return 7;
    });
    ASSERT_EQ(Journal::entries().size(), 1u);
    EXPECT_EQ(Journal::entries()[0].text(), "leaf(2) -> 2");
}

TEST_F(JournalTest, MaySwitchOnAndOffWithinACall)
{
    BoundaryCall({"outer"}, 1).run([] {
        Journal::startRecording();
        leaf(2);
    });
    BoundaryCall({"outer"}, 1).run([] { Journal::stopRecording(); });
    EXPECT_EQ(Journal::count("leaf"), 1u);
    EXPECT_EQ(Journal::entries().back().text(), "outer(1)");
}

TEST_F(JournalTest, StreamsALineForEachCallIndentedByItsDepth)
{
    std::ostringstream stream;
    Journal::streamTo(&stream);
    leaf(0);
    branch();
    Journal::streamTo(nullptr);
    leaf(5);
    EXPECT_EQ(stream.str(),
              "leaf(0) -> 0\n"
              "branch(\"of two\") ...\n"
              "  leaf(1) -> 1\n"
              "  leaf(2) -> 2\n"
              "... branch -> 3\n");
}

TEST_F(JournalTest, StreamsTheEndOfACallWithoutAResult)
{
    std::ostringstream stream;
    Journal::streamTo(&stream);
    BoundaryCall({"outer"}, 1).run([] { leaf(2); });
    EXPECT_EQ(stream.str(),
              "outer(1) ...\n"
              "  leaf(2) -> 2\n"
              "... outer -> done\n");
}

TEST_F(JournalTest, StreamsWithoutRecording)
{
    std::ostringstream stream;
    Journal::streamTo(&stream);
    leaf(1);
    EXPECT_TRUE(Journal::entries().empty());
}

}  // namespace
