#include "host/HostCall.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/support/FaultWalk.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using namespace reference_host;

class CallOperationsTest : public HostTest {
protected:
    static void answer(HostFunctionCall& call) { call.setOutput(0, reference_host::makeDouble(42)); }

    static void fillAndFail(HostFunctionCall& call)
    {
        call.setOutput(0, reference_host::makeDouble(1));
        throw zmsvException(zmsvMessageId("catalog", "HalfWay"), "half way");
    }

    static void refuse(HostFunctionCall&) { throw std::runtime_error("never heard of it"); }

    const ScopedHostFunction m_answer{"test.answer", answer};
    const ScopedHostFunction m_fillAndFail{"test.fillAndFail", fillAndFail};
    const ScopedHostFunction m_refuse{"test.refuse", refuse};
};

TEST_F(CallOperationsTest, FillTheCallersSlots)
{
    const auto outputs = callHost<1>("test.answer");
    EXPECT_EQ(nvGetScalar(outputs[0].get()), 42.0);
    const HostCallResult<1> result = callHostNoThrow<1>("test.answer");
    EXPECT_TRUE(result.succeeded);
    EXPECT_EQ(nvGetScalar(result.outputs[0].get()), 42.0);
}

TEST_F(CallOperationsTest, WarnOnceAndThrowNothingWhenTheFunctionFails)
{
    const OwnedArray input = asTemporary(::makeDouble(1));
    EXPECT_FALSE(callHostNoThrow<1>("test.refuse", input.get()).succeeded);
    ASSERT_EQ(Warnings::reported().size(), 1u);
    EXPECT_EQ(Warnings::reported()[0].text, "never heard of it");
}

TEST_F(CallOperationsTest, LetWhatTheFunctionThrowsPass)
{
    EXPECT_THROW(callHost<1>("test.refuse"), std::runtime_error);
    EXPECT_THROW(callHost<1>("test.fillAndFail"), zmsvException);
}

TEST_F(CallOperationsTest, LeaveWhatWasFilledBeforeAFailureToTheCaller)
{
    nvArray* slot = nullptr;
    zmsvDiscardDiagnostic(zmsvFEVAL_NoThrow(1, &slot, 0, nullptr, "test.fillAndFail", true));
    ASSERT_NE(slot, nullptr);
    nvDestroyArray(slot);
}

TEST_F(CallOperationsTest, PassTheContextOn)
{
    int number = 0;
    const ScopedHostFunction function("test.context",
                                      [](HostFunctionCall& call) { *static_cast<int*>(call.context()) = 7; });
    EXPECT_EQ(zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "test.context", &number, true), nullptr);
    EXPECT_EQ(number, 7);
}

TEST_F(CallOperationsTest, DescribeTheFailureInTheExceptionSlot)
{
    nvArray* raised = nullptr;
    nvArray* slot = nullptr;
    zmsvDiscardDiagnostic(zmsvFEVAL_NoThrow(1, &slot, 0, nullptr, "test.fillAndFail", true, &raised));
    const OwnedArray filled(slot);
    const OwnedArray exception(raised);
    EXPECT_EQ(nvArrayToStdString(nvGetField(raised, 0, "identifier")), "catalog:HalfWay");
    EXPECT_EQ(nvArrayToStdString(nvGetField(raised, 0, "message")), "half way");
}

TEST_F(CallOperationsTest, LeaveTheExceptionSlotAloneOnSuccess)
{
    nvArray* raised = nullptr;
    EXPECT_EQ(zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "test.answer", true, &raised), nullptr);
    EXPECT_EQ(raised, nullptr);
}

TEST_F(CallOperationsTest, RefuseASlotThatIsFilled)
{
    expectMisuses(1);
    const OwnedArray value = ::makeDouble(1);
    nvArray* slot = value.get();
    EXPECT_THROW(zmsvFEVAL(1, &slot, 0, nullptr, "test.answer"), zmsvException);
    EXPECT_EQ(slot, value.get());
}

TEST_F(CallOperationsTest, RefuseNullInputsAndImpossibleCounts)
{
    const nvArray* inputs[] = {nullptr};
    EXPECT_THROW(zmsvFEVAL(0, nullptr, 1, inputs, "test.answer"), zmsvException);
    EXPECT_THROW(zmsvFEVAL(0, nullptr, 1, nullptr, "test.answer"), zmsvException);
    EXPECT_THROW(zmsvFEVAL(1, nullptr, 0, nullptr, "test.answer"), zmsvException);
    EXPECT_THROW(zmsvFEVAL(-1, nullptr, 0, nullptr, "test.answer"), zmsvException);
    EXPECT_THROW(zmsvFEVAL(0, nullptr, 0, nullptr, nullptr), zmsvException);
}

TEST_F(CallOperationsTest, TakeABorrowedFieldAsInput)
{
    const OwnedValue record = makeStruct(Dimensions(1, 1), {"Number"});
    reference_host::setField(record.get(), 0, "Number", reference_host::makeDouble(5));
    const ScopedHostFunction twice("test.twice", [](HostFunctionCall& call) {
        call.setOutput(0, reference_host::makeDouble(2 * scalar(call.input(0))));
    });
    const auto outputs = callHost<1>("test.twice", nvGetField(record.get(), 0, "Number"));
    EXPECT_EQ(nvGetScalar(outputs[0].get()), 10.0);
}

TEST_F(CallOperationsTest, AreToldToFailWithADiagnostic)
{
    for (const FaultKind kind : {FaultKind::Diagnostic, FaultKind::HostException}) {
        Faults::arm("zmsvFEVAL_NoThrow", kind, 1);
        EXPECT_FALSE(callHostNoThrow<1>("test.answer").succeeded);
        EXPECT_TRUE(Faults::disarm());
        EXPECT_EQ(Warnings::take().at(0).id.key(), "InjectedFault");
    }
}

TEST_F(CallOperationsTest, AreToldToGiveNothing)
{
    Faults::arm(Faults::anyOperation, FaultKind::Null, 1);
    const HostCallResult<1> result = callHostNoThrow<1>("test.answer");
    EXPECT_TRUE(result.succeeded);
    EXPECT_EQ(result.outputs[0], nullptr);
    Faults::arm(Faults::anyOperation, FaultKind::Null, 1);
    EXPECT_EQ(callHost<1>("test.answer")[0], nullptr);
}

TEST_F(CallOperationsTest, ThrowWhenMemoryIsShortAtTheCallItself)
{
    Faults::arm("zmsvFEVAL_NoThrow", FaultKind::OutOfMemory, 1);
    EXPECT_THROW(callHostNoThrow<1>("test.answer"), zmsvOutOfMemoryException);
    EXPECT_TRUE(Warnings::reported().empty());
}

TEST_F(CallOperationsTest, TurnShortMemoryWithinTheFunctionIntoADiagnostic)
{
    const ScopedHostFunction function("test.greedy", [](HostFunctionCall&) { zmsvThrowOutOfMemory(); });
    EXPECT_FALSE(callHostNoThrow<1>("test.greedy").succeeded);
    EXPECT_EQ(Warnings::take().at(0).id.key(), "OutOfMemory");
}

TEST_F(CallOperationsTest, LoseNothingWhereverTheyFail)
{
    const auto body = [] {
        const OwnedArray input = asTemporary(::makeString(std::u16string(u"in")));
        const HostCallResult<1> result = callHostNoThrow<1>("test.answer", input.get());
        callHost<1>("test.answer", input.get());
    };
    // Making and scoping the input, two calls and the scopes of their outputs.
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::OutOfMemory, body), 6u);
    EXPECT_EQ(walkFaults("zmsvFEVAL_NoThrow", FaultKind::Diagnostic, body), 1u);
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::Null, body), 2u);
}

TEST_F(CallOperationsTest, AreJournaledWithTheFunctionInputsAndOutputs)
{
    const OwnedArray input = ::makeString(std::u16string(u"in"));
    Journal::startRecording();
    const HostCallResult<1> result = callHostNoThrow<1>("test.answer", input.get());
    const std::string in = "#" + std::to_string(input->serial) + " \"in\"";
    const std::string out = "#" + std::to_string(result.outputs[0]->serial) + " double 42";
    EXPECT_EQ(Journal::entries().at(0).text(),
              "zmsvFEVAL_NoThrow(\"test.answer\", [" + in + "], 1, true) -> [" + out + "]");
}

}  // namespace
