#include "host/HostCall.hpp"

#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr const char* unknown = "Zelmar.NoSuchFunction";

TEST(HostFunction, ThatIsUnknownIsAHostErrorNamingIt)
{
    expectHostError(unknown, [] { zmsvFEVAL(0, nullptr, 0, nullptr, unknown); });
}

TEST(HostFunction, ThatIsUnknownIsADiagnosticWhereNothingIsThrown)
{
    zmsvDiagnostic* diagnostic = zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, unknown, true);
    ASSERT_NE(diagnostic, nullptr);
    expectHostError(unknown, [&] { zmsvThrowIExceptionFromDiagnostic(diagnostic, nullptr); });
}

TEST(HostFunction, FailsAlikeWithAContext)
{
    zmsvDiagnostic* diagnostic =
        zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, unknown, static_cast<void*>(nullptr), true);
    ASSERT_NE(diagnostic, nullptr);
    zmsvDiscardDiagnostic(diagnostic);
}

TEST(HostFunction, LeavesItsInputsWithTheCallerWhenItFails)
{
    const OwnedArray input = asTemporary(makeDouble(5));
    const nvArray* inputs[] = {input.get()};
    nvArray* outputs[] = {nullptr};
    zmsvDiscardDiagnostic(zmsvFEVAL_NoThrow(1, outputs, 1, inputs, unknown, true));
    EXPECT_EQ(outputs[0], nullptr);
    EXPECT_EQ(nvGetScalar(input.get()), 5.0);
}

TEST(HostFunction, FillsTheExceptionSlotWhenItFails)
{
    nvArray* raised = nullptr;
    zmsvDiscardDiagnostic(zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, unknown, true, &raised));
    EXPECT_NE(raised, nullptr);
    nvDestroyArray(raised);
}

TEST(HostFunction, CalledWithoutThrowingFallsBackWhenItFails)
{
    const OwnedArray input = asTemporary(makeDouble(5));
    const HostCallResult<1> result = callHostNoThrow<1>(unknown, input.get());
    EXPECT_FALSE(result.succeeded);
    EXPECT_EQ(result.outputs[0], nullptr);
}

TEST(HostFunction, CalledThrowingPassesTheHostsErrorOn)
{
    expectHostError(unknown, [] { callHost<1>(unknown); });
}

}  // namespace
