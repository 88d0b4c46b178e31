#include "tests/support/FaultWalk.hpp"

#include "host/OwnedArray.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using FaultWalkTest = reference_host::HostTest;
using reference_host::FaultKind;
using reference_host::Faults;

TEST_F(FaultWalkTest, FailsEachCallOnceAndThenGetsThrough)
{
    int throughs = 0;
    const auto calls = reference_host::walkFaults(Faults::anyOperation, FaultKind::OutOfMemory, [&] {
        const OwnedArray first = makeDouble(1);
        const OwnedArray second = makeDouble(2);
        nvGetScalar(second.get());
        ++throughs;
    });
    EXPECT_EQ(calls, 3u);
    EXPECT_EQ(throughs, 1);
}

TEST_F(FaultWalkTest, FailsOnlyTheOperationThatWasNamed)
{
    const auto calls = reference_host::walkFaults("nvGetScalar", FaultKind::HostException, [] {
        const OwnedArray value = makeDouble(1);
        nvGetScalar(value.get());
        nvGetScalar(value.get());
    });
    EXPECT_EQ(calls, 2u);
}

TEST_F(FaultWalkTest, NoticesWhatABodyLeavesOpenWhenItFails)
{
    EXPECT_NONFATAL_FAILURE(
        {
            nvArray* left = nullptr;
            reference_host::walkFaults("nvGetScalar", FaultKind::OutOfMemory, [&] {
                nvDestroyArray(left);
                left = nvCreateDoubleScalar(1);
                nvGetScalar(left);
                nvDestroyArray(left);
                left = nullptr;
            });
        },
        "left open");
}

TEST_F(FaultWalkTest, NoticesABodyThatFailsWithoutAFault)
{
    EXPECT_NONFATAL_FAILURE(
        reference_host::walkFaults("nvGetScalar", FaultKind::OutOfMemory, [] { nvGetScalar(nullptr); }),
        "thrown without a fault");
}

}  // namespace
