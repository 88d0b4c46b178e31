#include "hmi/SignalSpecification.hpp"

#include "host/Exceptions.hpp"
#include "host/OwnedArray.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

constexpr const char* signalClass = "Zelmar.HMI.SignalSpecification";
constexpr bool asStruct = true;
constexpr bool asObject = false;

class SignalSpecificationHostObject : public LibraryTest {};

rh::OwnedValue property(const OwnedArray& object, const char* name)
{
    return rh::ObjectAccess::getProperty(object.get(), name);
}

std::string describedProperty(const OwnedArray& object, const char* name)
{
    return rh::describe(property(object, name).get());
}

SignalValues read(const rh::OwnedValue& object, const std::u16string& modelName)
{
    return valuesOf(SignalSpecification(object.get(), 0, modelName));
}

rh::OwnedValue makeObjectWith(const char* name, const rh::OwnedValue& value)
{
    rh::OwnedValue object = makeSignalObject({});
    rh::ObjectAccess::setProperty(object.get(), name, value.get());
    return object;
}

// ---- from a host object ---------------------------------------------------------------------------

TEST_F(SignalSpecificationHostObject, ReadsEveryMember)
{
    EXPECT_EQ(read(makeSignalObject(distinctValues()), u"plant"), distinctValues());
}

TEST_F(SignalSpecificationHostObject, ReadsThePropertiesInOrderEachAsLocalValue)
{
    const rh::OwnedValue object = makeSignalObject(distinctValues());
    rh::Journal::startRecording();
    SignalSpecification(object.get(), 0, u"plant");
    rh::Journal::stopRecording();
    EXPECT_EQ(journaledArguments("nvGetPropertyShared", 2),
              (std::vector<std::string>{"\"UUID\"",
                                        "\"ZID_\"",
                                        "\"BlockPath_\"",
                                        "\"SubPath_\"",
                                        "\"SubSysPath_\"",
                                        "\"SignalName_\"",
                                        "\"DomainType_\"",
                                        "\"VisualType_\"",
                                        "\"DomainParams_\"",
                                        "\"OutputPortIndex_\"",
                                        "\"LogicalPortIndex_\"",
                                        "\"Decimation_\"",
                                        "\"MaxPoints_\"",
                                        "\"TargetBufferedStreaming_\"",
                                        "\"IsFrameBased_\"",
                                        "\"HideInDVX_\"",
                                        "\"BindingRule_\"",
                                        "\"CachedBlockHandle_\"",
                                        "\"CachedPortIdx_\"",
                                        "\"ExcludeForSave_\""}));
    EXPECT_EQ(journaledArguments("zmsvSetLocalScope", 0).size(), 20U);
    EXPECT_EQ(journaledArguments("nvDestroyArray", 0).size(), 20U);
}

TEST_F(SignalSpecificationHostObject, TakesTheModelNameOffPathAndZid)
{
    const SignalValues values =
        read(makeSignalObject({.blockPath = u"mymodel/A/B", .zid = "mymodel:12"}), u"mymodel");
    EXPECT_EQ(values.blockPath, u"A/B");
    EXPECT_EQ(values.zid, "12");
}

TEST_F(SignalSpecificationHostObject, LeavesPathAndZidOfAnotherModelWhole)
{
    const SignalValues values =
        read(makeSignalObject({.blockPath = u"other/A/B", .zid = "other:12"}), u"mymodel");
    EXPECT_EQ(values.blockPath, u"other/A/B");
    EXPECT_EQ(values.zid, "other:12");
}

TEST_F(SignalSpecificationHostObject, AnEmptyCachedHandleLeavesHandleAndPortAsTheyWere)
{
    const rh::OwnedValue object = makeSignalObject({.cachedHandle = 0.0, .cachedPort = 9});
    ASSERT_TRUE(rh::isEmpty(rh::ObjectAccess::getProperty(object.get(), "CachedBlockHandle_").get()));
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    record->setFromNVCOS(object.get(), u"");
    EXPECT_EQ(record->getCachedBlockHandle(), distinctValues().cachedHandle);
    EXPECT_EQ(record->getCachedPortIdx(), distinctValues().cachedPort);
}

TEST_F(SignalSpecificationHostObject, ACachedHandleOfZeroIsTakenWithItsPort)
{
    const rh::OwnedValue object = makeSignalObject({.cachedPort = 9});
    rh::ObjectAccess::setProperty(object.get(), "CachedBlockHandle_", rh::makeDouble(0.0).get());
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    record->setFromNVCOS(object.get(), u"");
    EXPECT_EQ(record->getCachedBlockHandle(), 0.0);
    EXPECT_EQ(record->getCachedPortIdx(), 9);
}

TEST_F(SignalSpecificationHostObject, EmptyDomainParametersEmptyTheMap)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    record->setFromNVCOS(makeObjectWith("DomainParams_", rh::makeEmptyValue()).get(), u"");
    EXPECT_TRUE(record->getDomainParams().empty());
}

TEST_F(SignalSpecificationHostObject, NumbersAreTruncatedTowardZero)
{
    EXPECT_EQ(read(makeObjectWith("Decimation_", rh::makeDouble(2.9)), u"").decimation, 2);
    EXPECT_EQ(read(makeObjectWith("OutputPortIndex_", rh::makeDouble(-2.9)), u"").outputPort, -2);
}

/// Reads objects of a host class whose properties take any value.
class SignalSpecificationFromOddObject : public LibraryTest {
protected:
    void SetUp() override
    {
        if (!rh::ClassSystem::hasClass("Tests.OddSignal")) {
            rh::ClassSystem::createNamespace("Tests");
            rh::ClassSystem::contributeClass("Tests", makeOddClass);
        }
        rh::describeClass("Tests.OddSignal");
        LibraryTest::SetUp();
    }

    static SignalValues readWith(const char* name, const rh::OwnedValue& value)
    {
        const rh::OwnedValue object = rh::ObjectAccess::construct("Tests.OddSignal");
        rh::ObjectAccess::setProperty(object.get(), name, value.get());
        return read(object, u"");
    }

private:
    static std::unique_ptr<nvcos::COSClassInfo> makeOddClass()
    {
        std::vector<rh::RecordProperty> properties;
        const char* const* names = SignalSpecification::getStructFields();
        for (std::size_t i = 0; i < SignalSpecification::getNumStructFields(true); ++i) {
            properties.push_back(rh::anyProperty(names[i]));
            const std::string name = names[i];
            const bool isNumber = name.ends_with("Index_") || name == "Decimation_" || name == "MaxPoints_";
            const bool isFlag =
                name == "TargetBufferedStreaming_" || name == "IsFrameBased_" || name == "HideInDVX_";
            if (isNumber || isFlag) {
                properties.back().makeDefault = [] { return rh::makeDouble(0.0); };
            }
        }
        return rh::makeRecordClass("OddSignal", properties);
    }
};

TEST_F(SignalSpecificationFromOddObject, ExcludeForSaveIsTrueOnlyForATrueLogicalScalar)
{
    EXPECT_TRUE(readWith("ExcludeForSave_", rh::makeLogical(true)).excludeForSave);
    EXPECT_FALSE(readWith("ExcludeForSave_", rh::makeLogical(false)).excludeForSave);
    EXPECT_FALSE(readWith("ExcludeForSave_", rh::makeDouble(1.0)).excludeForSave);
    EXPECT_FALSE(readWith("ExcludeForSave_", rh::makeEmptyValue()).excludeForSave);
    const rh::OwnedValue two = rh::makeLogicals(rh::Dimensions(1, 2));
    rh::setElement(two.get(), 0, 1.0);
    rh::setElement(two.get(), 1, 1.0);
    EXPECT_FALSE(readWith("ExcludeForSave_", two).excludeForSave);
}

TEST_F(SignalSpecificationFromOddObject, OtherFlagsAreTrueForAnyNumberButZero)
{
    EXPECT_TRUE(readWith("HideInDVX_", rh::makeDouble(-0.5)).hideInDVX);
    EXPECT_TRUE(readWith("HideInDVX_", rh::makeLogical(true)).hideInDVX);
    EXPECT_FALSE(readWith("HideInDVX_", rh::makeDouble(0.0)).hideInDVX);
}

TEST_F(SignalSpecificationFromOddObject, ATextThatIsANumberIsAHostError)
{
    EXPECT_THROW(readWith("BlockPath_", rh::makeDouble(1.0)), zmsvException);
}

TEST_F(SignalSpecificationFromOddObject, AnEmptyNumberIsAHostError)
{
    EXPECT_THROW(readWith("Decimation_", rh::makeEmptyValue()), zmsvException);
}

TEST_F(SignalSpecificationFromOddObject, ACachedHandleWithAnEmptyPortIsAHostError)
{
    EXPECT_THROW(readWith("CachedBlockHandle_", rh::makeDouble(1.0)), zmsvException);
}

TEST_F(SignalSpecificationHostObject, AnObjectThatLacksAPropertyIsAHostError)
{
    const rh::OwnedValue other = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
    EXPECT_THROW(read(other, u""), zmsvException);
}

TEST_F(SignalSpecificationHostObject, AValueThatIsNoObjectIsAHostError)
{
    EXPECT_THROW(read(rh::makeDouble(1.0), u""), zmsvException);
    EXPECT_THROW(read(nullptr, u""), zmsvException);
}

// ---- to the struct form ---------------------------------------------------------------------------

TEST_F(SignalSpecificationHostObject, StructFormHasAllTwentyFieldsInOrder)
{
    const OwnedArray data = makeSignal(distinctValues())->getNVCOSObject(u"plant", asStruct);
    const char* const* names = SignalSpecification::getStructFields();
    EXPECT_EQ(rh::fieldNames(data.get()), std::vector<std::string>(names, names + 20));
    EXPECT_EQ(rh::dimensions(data.get()).text(), "1x1");
}

TEST_F(SignalSpecificationHostObject, StructFormHasTheModelNameInPathAndZid)
{
    const OwnedArray data = makeSignal(distinctValues())->getNVCOSObject(u"plant", asStruct);
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"plant/Controller/Begr\u00e4nzung");
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 0, "ZID_")), "plant:17");
}

TEST_F(SignalSpecificationHostObject, StructFormHasTheRunTimeFields)
{
    const OwnedArray data = makeSignal(distinctValues())->getNVCOSObject(u"plant", asStruct);
    EXPECT_EQ(rh::describe(rh::field(data.get(), 0, "BindingRule_")), "\"same-name\"");
    EXPECT_EQ(rh::describe(rh::field(data.get(), 0, "CachedBlockHandle_")), "double 12.5");
    EXPECT_EQ(rh::describe(rh::field(data.get(), 0, "CachedPortIdx_")), "double 6");
    EXPECT_EQ(rh::describe(rh::field(data.get(), 0, "ExcludeForSave_")), "logical true");
}

TEST_F(SignalSpecificationHostObject, StructFormHasTheRunTimeFieldsAlsoWhereNothingIsCached)
{
    const OwnedArray data = SignalSpecification().getNVCOSObject(u"plant", asStruct);
    EXPECT_EQ(rh::describe(rh::field(data.get(), 0, "CachedBlockHandle_")), "double 0");
    EXPECT_EQ(rh::describe(rh::field(data.get(), 0, "CachedPortIdx_")), "double 0");
    EXPECT_EQ(rh::describe(rh::field(data.get(), 0, "ExcludeForSave_")), "logical false");
    EXPECT_NE(rh::field(data.get(), 0, "BindingRule_"), nullptr);
}

TEST_F(SignalSpecificationHostObject, StructFormIsLocalFirstAndTheCallersInTheEnd)
{
    rh::Journal::startRecording();
    const OwnedArray data = SignalSpecification().getNVCOSObject(u"plant", asStruct);
    rh::Journal::stopRecording();
    EXPECT_EQ(data->scope, rh::Scope::CallerOwned);
    EXPECT_EQ(journaledArguments("zmsvSetLocalScope", 0).size(), 1U);
    EXPECT_EQ(journaledArguments("nvSetArrayScope", 1), std::vector<std::string>{"4"});
    EXPECT_EQ(rh::Journal::entries().at(1).operation, "zmsvSetLocalScope");
    EXPECT_EQ(rh::Journal::entries().back().operation, "nvSetArrayScope");
}

TEST_F(SignalSpecificationHostObject, StructFormCallsNoHostFunction)
{
    rh::Journal::startRecording();
    const OwnedArray data = makeSignal(distinctValues())->getNVCOSObject(u"plant", asStruct);
    rh::Journal::stopRecording();
    EXPECT_EQ(rh::Journal::count("zmsvFEVAL_NoThrow"), 0U);
}

// ---- to the object form ---------------------------------------------------------------------------

TEST_F(SignalSpecificationHostObject, ObjectFormIsAnObjectOfTheHostClass)
{
    const OwnedArray object = makeSignal(distinctValues())->getNVCOSObject(u"plant", asObject);
    EXPECT_TRUE(rh::isOfClass(object.get(), signalClass));
    EXPECT_EQ(rh::elementCount(object.get()), 1U);
}

TEST_F(SignalSpecificationHostObject, ObjectFormHasTheModelNameInPathAndZid)
{
    const OwnedArray object = makeSignal(distinctValues())->getNVCOSObject(u"plant", asObject);
    EXPECT_EQ(rh::text(property(object, "BlockPath_").get()), u"plant/Controller/Begr\u00e4nzung");
    EXPECT_EQ(rh::utf8Text(property(object, "ZID_").get()), "plant:17");
}

TEST_F(SignalSpecificationHostObject, ObjectIsMadeFromTheSixteenPersistedFields)
{
    std::vector<std::string> names;
    const rh::ScopedHostFunction seen(signalClass, [&](rh::HostFunctionCall& call) {
        names = rh::fieldNames(call.input(0));
        EXPECT_EQ(call.inputs().size(), 1U);
        EXPECT_EQ(call.outputCount(), 1U);
        call.setOutput(0, makeSignalObject({}));
    });
    const OwnedArray object = makeSignal(distinctValues())->getNVCOSObject(u"plant", asObject);
    const char* const* fields = SignalSpecification::getStructFields();
    EXPECT_EQ(names, std::vector<std::string>(fields, fields + 16));
}

TEST_F(SignalSpecificationHostObject, ObjectGetsRuleHandlePortAndFlagInOrder)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    rh::Journal::startRecording();
    const OwnedArray object = record->getNVCOSObject(u"plant", asObject);
    rh::Journal::stopRecording();
    EXPECT_EQ(journaledArguments("nvSetProperty", 2),
              (std::vector<std::string>{"\"BindingRule_\"", "\"CachedBlockHandle_\"", "\"CachedPortIdx_\"",
                                        "\"ExcludeForSave_\""}));
    EXPECT_EQ(describedProperty(object, "BindingRule_"), "\"same-name\"");
    EXPECT_EQ(describedProperty(object, "CachedBlockHandle_"), "double 12.5");
    EXPECT_EQ(describedProperty(object, "CachedPortIdx_"), "double 6");
    EXPECT_EQ(describedProperty(object, "ExcludeForSave_"), "logical true");
}

TEST_F(SignalSpecificationHostObject, ObjectGetsNeitherHandleNorPortWhereNoHandleIsCached)
{
    SignalValues values = distinctValues();
    values.cachedHandle = 0.0;
    const SignalSpecificationPtr record = makeSignal(values);
    rh::Journal::startRecording();
    const OwnedArray object = record->getNVCOSObject(u"plant", asObject);
    rh::Journal::stopRecording();
    EXPECT_EQ(journaledArguments("nvSetProperty", 2),
              (std::vector<std::string>{"\"BindingRule_\"", "\"ExcludeForSave_\""}));
    EXPECT_TRUE(rh::isEmpty(property(object, "CachedBlockHandle_").get()));
}

TEST_F(SignalSpecificationHostObject, ANegativeZeroHandleCountsAsNoneCached)
{
    const SignalSpecificationPtr record = makeSignal({.cachedHandle = -0.0, .cachedPort = 3});
    const OwnedArray object = record->getNVCOSObject(u"plant", asObject);
    EXPECT_TRUE(rh::isEmpty(property(object, "CachedBlockHandle_").get()));
}

// The serial numbers of values differ from run to run: "#12 1x1 struct" becomes "1x1 struct".
std::string withoutSerial(const std::string& argument)
{
    return argument.starts_with("#") ? argument.substr(argument.find(' ') + 1) : argument;
}

TEST_F(SignalSpecificationHostObject, StructIsATemporaryOfTheOneCallAndTheObjectLocal)
{
    const SignalSpecificationPtr record = makeSignal({});
    rh::Journal::startRecording();
    const OwnedArray object = record->getNVCOSObject(u"plant", asObject);
    rh::Journal::stopRecording();

    EXPECT_EQ(journaledArguments("nvSetArrayScope", 1), std::vector<std::string>{"0"});
    EXPECT_EQ(rh::Journal::count("zmsvFEVAL_NoThrow"), 1U);
    const std::vector<std::string> local = journaledArguments("zmsvSetLocalScope", 0);
    ASSERT_EQ(local.size(), 2U);
    EXPECT_EQ(withoutSerial(local[0]).substr(0, 10), "1x1 struct");
    EXPECT_EQ(local[0], journaledArguments("nvSetArrayScope", 0).at(0));
    EXPECT_EQ(withoutSerial(local[1]), "1x1 Zelmar.HMI.SignalSpecification");
    EXPECT_EQ(object->scope, rh::Scope::Local);
}

TEST_F(SignalSpecificationHostObject, AHostThatMakesNoObjectGivesNullAndOneWarning)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const rh::ScopedHostFunction refused(signalClass, fail);
    EXPECT_EQ(record->getNVCOSObject(u"plant", asObject), nullptr);
    ASSERT_EQ(rh::Warnings::reported().size(), 1U);
    EXPECT_EQ(rh::Warnings::reported()[0].id.key(), "Refused");
}

TEST_F(SignalSpecificationHostObject, AHostThatFailsAfterMakingAnObjectGivesNullAndOneWarning)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const rh::ScopedHostFunction late(signalClass, [](rh::HostFunctionCall& call) {
        call.setOutput(0, makeSignalObject({}));
        throwTestError("Late");
    });
    EXPECT_EQ(record->getNVCOSObject(u"plant", asObject), nullptr);
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
}

TEST_F(SignalSpecificationHostObject, AHostThatAnswersNothingGivesNull)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const rh::ScopedHostFunction silent(signalClass, [](rh::HostFunctionCall&) {});
    EXPECT_EQ(record->getNVCOSObject(u"plant", asObject), nullptr);
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(SignalSpecificationHostObject, AnAnswerThatIsNoObjectIsAHostError)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const rh::ScopedHostFunction odd(
        signalClass, [](rh::HostFunctionCall& call) { call.setOutput(0, rh::makeDouble(1.0)); });
    EXPECT_THROW(record->getNVCOSObject(u"plant", asObject), zmsvException);
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

// ---- the aligned path -----------------------------------------------------------------------------

TEST_F(SignalSpecificationHostObject, AlignedPathIsTheHostsAnswerAsItStands)
{
    const rh::ScopedHostFunction moved("getAlignedBlockPath", [](rh::HostFunctionCall& call) {
        call.setOutput(0, rh::makeText("plant/Elsewhere/Limiter"));
    });
    EXPECT_EQ(makeSignal(distinctValues())->getAlignedBlockPath(u"plant"), u"plant/Elsewhere/Limiter");
}

TEST_F(SignalSpecificationHostObject, AlignedPathIsAskedWithOneObjectOfTheRecord)
{
    const rh::ScopedHostFunction seen("getAlignedBlockPath", [](rh::HostFunctionCall& call) {
        ASSERT_EQ(call.inputs().size(), 1U);
        EXPECT_EQ(call.outputCount(), 1U);
        EXPECT_EQ(call.input(0)->scope, rh::Scope::Temporary);
        EXPECT_EQ(valuesOf(SignalSpecification(call.input(0), 0, u"plant")), distinctValues());
    });
    EXPECT_EQ(makeSignal(distinctValues())->getAlignedBlockPath(u"plant"), u"");
}

TEST_F(SignalSpecificationHostObject, AlignedPathIsEmptyWithAWarningWhereTheHostFails)
{
    const rh::ScopedHostFunction unknown("getAlignedBlockPath", fail);
    EXPECT_EQ(makeSignal(distinctValues())->getAlignedBlockPath(u"plant"), u"");
    ASSERT_EQ(rh::Warnings::reported().size(), 1U);
    EXPECT_EQ(rh::Warnings::reported()[0].id.key(), "Refused");
}

TEST_F(SignalSpecificationHostObject, AlignedPathIsEmptyWithAWarningWhereTheHostLacksTheFunction)
{
    rh::HostFunctions::remove("getAlignedBlockPath");
    EXPECT_EQ(makeSignal(distinctValues())->getAlignedBlockPath(u"plant"), u"");
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
}

TEST_F(SignalSpecificationHostObject, AlignedPathIsEmptyWithOneWarningWhereTheHostMakesNoObject)
{
    const rh::ScopedHostFunction refused(signalClass, fail);
    EXPECT_EQ(makeSignal({})->getAlignedBlockPath(u"plant"), u"");
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
}

TEST_F(SignalSpecificationHostObject, AlignedPathIsEmptyWhereTheHostAnswersNothing)
{
    const rh::ScopedHostFunction silent("getAlignedBlockPath", [](rh::HostFunctionCall&) {});
    EXPECT_EQ(makeSignal(distinctValues())->getAlignedBlockPath(u"plant"), u"");
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(SignalSpecificationHostObject, AlignedPathThatIsNoTextIsAHostError)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const rh::ScopedHostFunction odd(
        "getAlignedBlockPath", [](rh::HostFunctionCall& call) { call.setOutput(0, rh::makeDouble(1.0)); });
    EXPECT_THROW(record->getAlignedBlockPath(u"plant"), zmsvException);
}

// ---- records for ports ----------------------------------------------------------------------------

TEST_F(SignalSpecificationHostObject, ARecordForAPortTakesItsPlaceWithoutTheModelName)
{
    const std::unique_ptr<SignalSpecification> record(SignalSpecification::createSigSpecFromPort(
        u"plant/Controller/Limiter", "plant:17", 2, 3, 12.5, u"plant", true));
    EXPECT_EQ(record->getUUID().size(), 36U);
    EXPECT_EQ(valuesOf(*record), (SignalValues{.uuid = record->getUUID(),
                                               .blockPath = u"Controller/Limiter",
                                               .zid = "17",
                                               .outputPort = 2,
                                               .logicalPort = 3,
                                               .cachedHandle = 12.5,
                                               .cachedPort = 2,
                                               .excludeForSave = true}));
}

TEST_F(SignalSpecificationHostObject, ARecordForAPortOfAnotherModelKeepsItsPath)
{
    const std::unique_ptr<SignalSpecification> record(SignalSpecification::createSigSpecFromPort(
        u"library/Limiter", "library:1", 1, 0, 1.0, u"plant", false));
    EXPECT_EQ(record->getBlockPath(), u"library/Limiter");
    EXPECT_EQ(record->getZID(), "library:1");
    EXPECT_FALSE(record->getExcludeForSave());
}

// ---- there and back -----------------------------------------------------------------------------

RC_GTEST_FIXTURE_PROP(SignalSpecificationHostObject, AnObjectReadBackHasEveryMember,
                      (int output, int logical, int port, double handle, bool exclude))
{
    SignalValues values = distinctValues();
    values.outputPort = output;
    values.logicalPort = logical;
    values.cachedHandle = handle;
    values.cachedPort = handle != 0.0 ? port : 0;  // without a handle the object has no port
    values.excludeForSave = exclude;
    const SignalSpecificationPtr record = makeSignal(values);
    const OwnedArray object = record->getNVCOSObject(u"plant", asObject);
    const SignalSpecification again(object.get(), 0, u"plant");
    RC_ASSERT(valuesOf(again) == values);
    RC_ASSERT(again.isEqual(record.get()));
}

}  // namespace
}  // namespace zm_hmi
