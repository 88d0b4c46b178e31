#include "reference_host/calls/Faults.hpp"

#include "host/Exceptions.hpp"
#include "host/OwnedArray.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace reference_host;
using FaultsTest = HostTest;

TEST_F(FaultsTest, StrikeTheNthCallOnce)
{
    Faults::arm("nvCreateDoubleScalar", FaultKind::OutOfMemory, 2);
    EXPECT_NO_THROW(makeDouble(1));
    EXPECT_THROW(makeDouble(2), zmsvOutOfMemoryException);
    EXPECT_NO_THROW(makeDouble(3));
    EXPECT_TRUE(Faults::disarm());
}

TEST_F(FaultsTest, PassOverOtherOperations)
{
    Faults::arm("nvCreateDoubleScalar", FaultKind::OutOfMemory, 1);
    EXPECT_NO_THROW(makeLogical(true));
    EXPECT_FALSE(Faults::hasFired());
    EXPECT_THROW(makeDouble(1), zmsvOutOfMemoryException);
    EXPECT_TRUE(Faults::hasFired());
}

TEST_F(FaultsTest, PassOverOperationsThatCannotFailInTheirWay)
{
    const OwnedArray value = makeDouble(1);
    Faults::arm(Faults::anyOperation, FaultKind::Null, 1);
    EXPECT_NO_THROW(makeDouble(1));
    EXPECT_EQ(nvGetCell(value.get(), 0), nullptr);
    EXPECT_TRUE(Faults::disarm());
}

TEST_F(FaultsTest, ThatAreTakenBackDoNotStrike)
{
    Faults::arm("nvCreateDoubleScalar", FaultKind::OutOfMemory, 1);
    EXPECT_FALSE(Faults::disarm());
    EXPECT_NO_THROW(makeDouble(1));
}

TEST_F(FaultsTest, ThatAreArmedAgainForgetTheFirst)
{
    Faults::arm("nvCreateDoubleScalar", FaultKind::OutOfMemory, 1);
    EXPECT_THROW(makeDouble(1), zmsvOutOfMemoryException);
    Faults::arm("nvCreateLogicalScalar", FaultKind::HostException, 1);
    EXPECT_FALSE(Faults::hasFired());
    EXPECT_NO_THROW(makeDouble(1));
    EXPECT_THROW(makeLogical(true), zmsvException);
}

}  // namespace
