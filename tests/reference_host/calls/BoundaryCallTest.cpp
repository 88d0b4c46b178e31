#include "reference_host/calls/BoundaryCall.hpp"

#include "reference_host/calls/Journal.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

namespace {

using namespace reference_host;
using BoundaryCallTest = HostTest;

int half(int number)
{
    return BoundaryCall({"half"}, number).run([&] {
        if (number % 2 != 0) {
            throwHostError("InjectedFault");
        }
        return number / 2;
    });
}

std::string lastEntry()
{
    return Journal::entries().empty() ? "none" : Journal::entries().back().text();
}

TEST_F(BoundaryCallTest, HandsOnWhatTheBodyReturns)
{
    EXPECT_EQ(half(6), 3);
}

TEST_F(BoundaryCallTest, NamesItsOperationInErrors)
{
    try {
        half(3);
        FAIL() << "returned";
    } catch (const zmsvException& error) {
        EXPECT_STREQ(error.what(), "half: was told to fail");
    }
}

TEST_F(BoundaryCallTest, IsTheSiteOfWhatIsMadeInside)
{
    OwnedValue made;
    BoundaryCall({"outer"}, 1).run([&] {
        BoundaryCall({"inner"}, 2).run([] {});
        made = makeDouble(1);
    });
    EXPECT_STREQ(made->madeBy.operation, "outer");
    EXPECT_EQ(CallSite::current().operation, nullptr);
}

TEST_F(BoundaryCallTest, IsOverAlsoWhenTheBodyThrows)
{
    EXPECT_THROW(half(3), zmsvException);
    EXPECT_EQ(CallSite::current().operation, nullptr);
}

TEST_F(BoundaryCallTest, TurnsTheStandardLibrarysMemoryErrorsIntoTheHosts)
{
    EXPECT_THROW(BoundaryCall({"op"}, 1).run([] { throw std::bad_alloc(); }), zmsvOutOfMemoryException);
    EXPECT_THROW(BoundaryCall({"op"}, 1).run([] { throw std::length_error("long"); }),
                 zmsvOutOfMemoryException);
}

TEST_F(BoundaryCallTest, LetsOtherExceptionsPass)
{
    EXPECT_THROW(BoundaryCall({"op"}, 1).run([] { throw std::runtime_error("odd"); }), std::runtime_error);
    EXPECT_THROW(BoundaryCall({"op"}, 1).run([] { throw 3; }), int);
}

TEST_F(BoundaryCallTest, DoesNotRunTheBodyThatAFaultStrikes)
{
    bool hasRun = false;
    Faults::arm("op", FaultKind::OutOfMemory, 1);
    EXPECT_THROW(BoundaryCall({"op"}, 1).run([&] { hasRun = true; }), zmsvOutOfMemoryException);
    EXPECT_FALSE(hasRun);
}

TEST_F(BoundaryCallTest, GivesNullInPlaceOfAPointer)
{
    int number = 0;
    Faults::arm("op", FaultKind::Null, 1);
    const BoundaryCall::Fault none = BoundaryCall({"op"}, 1).fault();
    EXPECT_EQ(none, BoundaryCall::Fault::None);
    EXPECT_EQ(BoundaryCall({"op", CanFail::ThrowingOrNull}, 1).run([&] { return &number; }), nullptr);
    EXPECT_EQ(BoundaryCall({"op", CanFail::ThrowingOrNull}, 1).run([&] { return &number; }), &number);
}

TEST_F(BoundaryCallTest, CannotFailWhereNothingMayBeThrown)
{
    Faults::arm(Faults::anyOperation, FaultKind::OutOfMemory, 1);
    EXPECT_EQ(BoundaryCall({"op", CanFail::Never}, 1).runNoThrow([] { return 4; }), 4);
    EXPECT_FALSE(Faults::disarm());
}

TEST_F(BoundaryCallTest, JournalsArgumentsResultAndFailure)
{
    Journal::startRecording();
    half(6);
    EXPECT_EQ(lastEntry(), "half(6) -> 3");
    EXPECT_THROW(half(3), zmsvException);
    EXPECT_EQ(lastEntry(), "half(3) -> threw: half: was told to fail");
    Faults::arm("half", FaultKind::OutOfMemory, 1);
    EXPECT_THROW(half(6), zmsvOutOfMemoryException);
    EXPECT_EQ(lastEntry(), "half(6) -> threw: out of memory");
}

}  // namespace
