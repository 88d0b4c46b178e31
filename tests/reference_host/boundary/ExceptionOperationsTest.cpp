#include "host/Exceptions.hpp"

#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/Journal.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace reference_host;
using ExceptionsTest = HostTest;

TEST_F(ExceptionsTest, ThrowingForShortMemoryIsJournaledAndNeverToldToFail)
{
    Journal::startRecording();
    Faults::arm(Faults::anyOperation, FaultKind::HostException, 1);
    EXPECT_THROW(zmsvThrowOutOfMemory(), zmsvOutOfMemoryException);
    EXPECT_FALSE(Faults::disarm());
    EXPECT_EQ(Journal::count("zmsvThrowOutOfMemory"), 1u);
}

}  // namespace
