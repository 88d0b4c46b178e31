#include "hmi_foundation/bindings/HMICOSMethodInfo.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/classes/MethodSignature.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zm_hmi_foundation {
namespace {

namespace rh = reference_host;

class TestMethod final : public HMICOSMethodInfo {
public:
    explicit TestMethod(const char* name) : HMICOSMethodInfo(name) {}
    explicit TestMethod(const Description& row) : HMICOSMethodInfo(row) {}
    void invoke(const nvcos::COSClient* /*client*/, int& /*outputCount*/, nvcos::COSValue* /*outputs*/,
                int /*inputCount*/, const nvcos::COSValue* /*inputs*/) const override
    {
    }
};

class HMICOSMethodInfoTest : public zm_hmi::LibraryTest {};

/// The host's own view of a signature that it made.
const rh::MethodSignature& signatureOf(const TestMethod& method)
{
    return static_cast<const rh::MethodSignature&>(*method.getSignature());
}

using Types = std::vector<const nvcos::COSType*>;

TEST_F(HMICOSMethodInfoTest, ADescriptorHasItsNameAndNoSignatureAtFirst)
{
    const TestMethod method("add");
    EXPECT_STREQ(method.getName(), "add");
    EXPECT_EQ(method.getSignature(), nullptr);
}

TEST_F(HMICOSMethodInfoTest, ADescriptorMayHaveNoName)
{
    const TestMethod method(nullptr);
    EXPECT_EQ(method.getName(), nullptr);
}

TEST_F(HMICOSMethodInfoTest, TypesAreAppendedInOrder)
{
    const std::string inputs[] = {type_name::uint32Scalar, type_name::any, type_name::uint32Scalar};
    const std::string outputs[] = {type_name::logicalScalar, type_name::doubleScalar};
    TestMethod method("m");
    method.setInputOutput(inputs, 3, outputs, 2);
    EXPECT_EQ(signatureOf(method).inputs(),
              (Types{getType("uint32 scalar"), getType("any"), getType("uint32 scalar")}));
    EXPECT_EQ(signatureOf(method).outputs(), (Types{getType("logical scalar"), getType("double scalar")}));
    EXPECT_EQ(signatureOf(method).optionalInputs(), 0U);
}

TEST_F(HMICOSMethodInfoTest, ListsMayBeNullWhereTheyAreEmpty)
{
    TestMethod method("m");
    method.setInputOutput(nullptr, 0, nullptr, 0);
    EXPECT_TRUE(signatureOf(method).inputs().empty());
    EXPECT_TRUE(signatureOf(method).outputs().empty());
}

TEST_F(HMICOSMethodInfoTest, OnlyTheLastSignatureIsKept)
{
    const std::string one[] = {type_name::asciiString};
    const std::string other[] = {type_name::int32Scalar};
    TestMethod method("m");
    method.setInputOutput(one, 1, one, 1);
    method.setNumberOfOptionalInputs(1);
    method.setInputOutput(other, 1, nullptr, 0);
    EXPECT_EQ(signatureOf(method).inputs(), Types{getType("int32 scalar")});
    EXPECT_TRUE(signatureOf(method).outputs().empty());
    EXPECT_EQ(signatureOf(method).optionalInputs(), 0U);
    // That the first one was destroyed, the ledger says.
}

TEST_F(HMICOSMethodInfoTest, OptionalInputsAreTheSignatures)
{
    const std::string inputs[] = {type_name::any, type_name::any, type_name::any};
    TestMethod method("m");
    method.setInputOutput(inputs, 3, nullptr, 0);
    const TestMethod& asConst = method;
    asConst.setNumberOfOptionalInputs(2);
    EXPECT_EQ(signatureOf(method).optionalInputs(), 2U);
}

TEST_F(HMICOSMethodInfoTest, ARowIsNameTypesAndOptionalInputs)
{
    const TestMethod method({"get", {type_name::any, type_name::logicalScalar}, {type_name::any}, 1});
    EXPECT_STREQ(method.getName(), "get");
    EXPECT_EQ(signatureOf(method).inputs(), (Types{getType("any"), getType("logical scalar")}));
    EXPECT_EQ(signatureOf(method).outputs(), Types{getType("any")});
    EXPECT_EQ(signatureOf(method).optionalInputs(), 1U);
}

TEST_F(HMICOSMethodInfoTest, TypesAreLookedUpByInternedName)
{
    rh::Journal::startRecording();
    const TestMethod method({"m", {type_name::unicodeString}, {}});
    rh::Journal::stopRecording();
    EXPECT_EQ(zm_hmi::journaledArguments("makeInterned", 0), std::vector<std::string>{"\"unicodeString\""});
    EXPECT_EQ(rh::Journal::count("COSTypeRepository::getType"), 1U);
}

TEST_F(HMICOSMethodInfoTest, EveryTypeNameOfTheLibraryIsKnownToTheHost)
{
    for (const char* name :
         {type_name::unicodeString, type_name::asciiString, type_name::uint32Scalar, type_name::int32Scalar,
          type_name::doubleScalar, type_name::logicalScalar, type_name::any}) {
        EXPECT_NE(getType(name), nullptr) << name;
    }
}

TEST_F(HMICOSMethodInfoTest, ATypeThatTheHostDoesNotKnowEndsTheMaking)
{
    EXPECT_THROW(TestMethod({"m", {type_name::any, "no such type"}, {}}), zmsvException);
    EXPECT_THROW(std::make_unique<TestMethod>(HMICOSMethodInfo::Description{"m", {}, {"no such type"}}),
                 zmsvException);
}

TEST_F(HMICOSMethodInfoTest, DescriptorsLiveInZeroedMemoryOfTheHost)
{
    rh::Journal::startRecording();
    nvcos::COSMethodInfo* method = new TestMethod({"m", {type_name::any}, {}});
    EXPECT_EQ(rh::Journal::count("nvAllocateZeroed"), 1U);
    delete method;  // as the host does it, through its own base
    EXPECT_EQ(rh::Journal::count("nvFree"), 1U);
}

TEST_F(HMICOSMethodInfoTest, ShortMemoryIsTheHostsException)
{
    rh::Faults::arm("nvAllocateZeroed", rh::FaultKind::Null, 1);
    EXPECT_THROW(std::make_unique<TestMethod>("m"), zmsvOutOfMemoryException);
    EXPECT_TRUE(rh::Faults::disarm());
}

class HMICOSMethodInfoFaults : public HMICOSMethodInfoTest,
                               public testing::WithParamInterface<rh::FaultKind> {};

TEST_P(HMICOSMethodInfoFaults, AHalfBuiltDescriptorLeavesNothing)
{
    rh::walkFaults(rh::Faults::anyOperation, GetParam(), [] {
        std::make_unique<TestMethod>(
            HMICOSMethodInfo::Description{"m", {type_name::any, type_name::any}, {type_name::any}, 1});
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, HMICOSMethodInfoFaults,
                         testing::Values(rh::FaultKind::OutOfMemory, rh::FaultKind::HostException),
                         zm_hmi::nameOfFaultKind);

}  // namespace
}  // namespace zm_hmi_foundation
