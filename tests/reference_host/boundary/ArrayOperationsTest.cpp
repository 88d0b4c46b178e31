#include "host/OwnedArray.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/values/Value.hpp"
#include "tests/reference_host/values/Misuse.hpp"
#include "tests/support/FaultWalk.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace reference_host;
using ArrayOperationsTest = HostTest;

/// As the journal names a value.
std::string nameOf(const OwnedArray& value)
{
    return "#" + std::to_string(value->serial);
}

std::string lastEntry()
{
    const std::vector<JournalEntry> entries = Journal::entries();
    return entries.empty() ? "none" : entries.back().text();
}

TEST_F(ArrayOperationsTest, AreJournaledWithArgumentsAndResult)
{
    Journal::startRecording();
    const OwnedArray value(nvCreateDoubleScalar(2));
    EXPECT_EQ(lastEntry(), "nvCreateDoubleScalar(2) -> " + nameOf(value) + " double 2");
    nvGetScalarInt(value.get());
    EXPECT_EQ(lastEntry(), "nvGetScalarInt(" + nameOf(value) + " double 2) -> 2");
    nvIsA(value.get(), "char");
    EXPECT_EQ(lastEntry(), "nvIsA(" + nameOf(value) + " double 2, \"char\") -> false");
    nvSetArrayScope(value.get(), nvScope::CallerOwned);
    EXPECT_EQ(lastEntry(), "nvSetArrayScope(" + nameOf(value) + " double 2, 4)");
}

TEST_F(ArrayOperationsTest, AreJournaledWhenTheyFail)
{
    Journal::startRecording();
    EXPECT_THROW(nvGetScalar(nullptr), zmsvException);
    EXPECT_EQ(lastEntry(), "nvGetScalar(null) -> threw: nvGetScalar: an argument that must be there is null");
}

TEST_F(ArrayOperationsTest, ThatTestAnswerForADeadValueAsForNullAndTellTheLedger)
{
    expectMisuses(6);
    nvArray* value = nvCreateLogicalScalar(true);
    nvDestroyArray(value);
    EXPECT_TRUE(nvIsEmpty(value));
    EXPECT_FALSE(nvIsLogical(value));
    EXPECT_FALSE(nvIsLogicalScalarTrue(value));
    EXPECT_FALSE(nvIsStruct(value));
    EXPECT_FALSE(nvIsA(value, "logical"));
    EXPECT_EQ(nvGetNumberOfElements(value), 0u);
    EXPECT_NE(Ledger::misuses().back().find("nvGetNumberOfElements"), std::string::npos);
}

TEST_F(ArrayOperationsTest, RefuseAScopeThatTheyDoNotKnow)
{
    const OwnedArray value = makeDouble(1);
    refusedWith("UnknownScope", [&] { nvSetArrayScope(value.get(), static_cast<nvScope>(3)); });
}

TEST_F(ArrayOperationsTest, FailAsTheyAreTold)
{
    const auto body = [] {
        const OwnedArray text = makeString(std::u16string(u"text"));
        const OwnedArray copy(nvCreateSharedDataCopy(text.get()));
        zmsvSetLocalScope(copy.get());
        nvIsEmpty(copy.get());
        nvArrayToStdString(copy.get());
    };
    // Making, copying, scoping and reading can fail; the test and the two ends cannot.
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::OutOfMemory, body), 4u);
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::HostException, body), 4u);
}

TEST_F(ArrayOperationsTest, ThatAreToldToFailSaySo)
{
    Faults::arm("nvCreateDoubleScalar", FaultKind::HostException, 1);
    EXPECT_EQ(refusedWith("InjectedFault", [] { nvCreateDoubleScalar(1); }),
              "nvCreateDoubleScalar: was told to fail");
}

TEST_F(ArrayOperationsTest, ThatEndSomethingAreNeverToldToFail)
{
    nvArray* value = nvCreateDoubleScalar(1);
    Faults::arm("nvDestroyArray", FaultKind::OutOfMemory, 1);
    EXPECT_NO_THROW(nvDestroyArray(value));
    EXPECT_FALSE(Faults::disarm());
}

}  // namespace
