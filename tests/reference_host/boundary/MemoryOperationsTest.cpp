#include "host/Memory.hpp"

#include "reference_host/calls/Faults.hpp"
#include "reference_host/support/Ledger.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace reference_host;
using MemoryOperationsTest = HostTest;

class Descriptor : public HostAllocated {
public:
    int number = 0;
};

TEST_F(MemoryOperationsTest, GiveNullWhenToldThatMemoryIsShort)
{
    Faults::arm("nvAllocateZeroed", FaultKind::OutOfMemory, 1);
    EXPECT_EQ(nvAllocateZeroed(8), nullptr);
    Faults::arm("nvAllocateZeroed", FaultKind::Null, 1);
    EXPECT_THROW(std::make_unique<Descriptor>(), zmsvOutOfMemoryException);
    EXPECT_TRUE(Faults::disarm());
}

TEST_F(MemoryOperationsTest, CountABlockGivenBackTwiceAsAMisuse)
{
    expectMisuses(1);
    void* block = nvAllocateZeroed(8);
    nvFree(block);
    nvFree(block);
}

TEST_F(MemoryOperationsTest, CountForeignMemoryAsAMisuseAndLeaveIt)
{
    expectMisuses(1);
    auto number = std::make_unique<int>(5);
    nvFree(number.get());
    EXPECT_EQ(*number, 5);
}

TEST_F(MemoryOperationsTest, AreListedWhileTheBlockIsOpen)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    void* block = nvAllocateZeroed(48);
    ASSERT_EQ(Ledger::openSince(before).size(), 1u);
    EXPECT_NE(Ledger::openSince(before)[0].find("48 bytes, made by nvAllocateZeroed"), std::string::npos);
    nvFree(block);
    EXPECT_TRUE(Ledger::openSince(before).empty());
}

}  // namespace
