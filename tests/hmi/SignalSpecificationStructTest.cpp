#include "hmi/SignalSpecification.hpp"

#include "host/Containers.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <boost/make_shared.hpp>

#include <limits>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

/// Records to and from persisted struct arrays.
class SignalSpecificationStruct : public LibraryTest {};

OwnedArray makePersistedFields(std::size_t count = 1)
{
    const std::size_t dimensions[] = {1, count};
    return OwnedArray(nvCreateStructArray(2, dimensions, SignalSpecification::getNumStructFields(false),
                                          SignalSpecification::getStructFields()));
}

OwnedArray persisted(const SignalSpecification& record, const std::u16string& modelName)
{
    OwnedArray data = makePersistedFields();
    record.getPersistenceData(data.get(), 0, modelName);
    return data;
}

SignalValues loaded(const nvArray* data, std::size_t index = 0)
{
    return valuesOf(SignalSpecification(data, index, u"model"));
}

/// Persisted data of the default record without some of the fields.
rh::OwnedValue makePersistedWithout(const std::vector<std::string>& leftOut)
{
    const rh::OwnedValue whole = makePersisted({{}});
    std::vector<std::string> names = rh::fieldNames(whole.get());
    std::erase_if(names, [&](const std::string& name) {
        return std::find(leftOut.begin(), leftOut.end(), name) != leftOut.end();
    });
    rh::OwnedValue data = rh::makeStruct(rh::Dimensions(1, 1), names);
    for (const std::string& name : names) {
        rh::setField(data.get(), 0, name.c_str(), rh::copyDeep(rh::field(whole.get(), 0, name.c_str())));
    }
    return data;
}

rh::OwnedValue makePersistedWith(const char* name, rh::OwnedValue field)
{
    rh::OwnedValue data = makePersisted({{}});
    rh::replaceField(data.get(), 0, name, std::move(field));
    return data;
}

SignalValues persistedPartOf(SignalValues values)
{
    values.cachedHandle = 0.0;
    values.cachedPort = 0;
    values.bindingRule.clear();
    values.excludeForSave = false;
    return values;
}

// ---- writing ------------------------------------------------------------------------------------

TEST_F(SignalSpecificationStruct, FieldsAreOfTheirHostTypes)
{
    const OwnedArray data = persisted(*makeSignal(distinctValues()), u"plant");
    const auto described = [&](const char* name) { return rh::describe(rh::field(data.get(), 0, name)); };
    EXPECT_EQ(described("UUID"), "\"0fa1e07c-3a5e-4f0b-9d50-3f3d0d5b2d11\"");
    EXPECT_EQ(described("ZID_"), "\"17\"");
    EXPECT_EQ(described("SubPath_"), "\"bus.speed\"");
    EXPECT_EQ(described("SignalName_"), "\"limited\"");
    EXPECT_EQ(described("SubSysPath_"), "\"Controller\"");
    EXPECT_EQ(described("DomainType_"), "\"bus\"");
    EXPECT_EQ(described("VisualType_"), "\"line\"");
    EXPECT_EQ(described("DomainParams_"), "1x1 struct {Element}");
    EXPECT_EQ(described("OutputPortIndex_"), "double 2");
    EXPECT_EQ(described("LogicalPortIndex_"), "double 3");
    EXPECT_EQ(described("Decimation_"), "double 4");
    EXPECT_EQ(described("MaxPoints_"), "double 5000");
}

TEST_F(SignalSpecificationStruct, FlagsAreDoublesNotLogicals)
{
    const OwnedArray set = persisted(*makeSignal(distinctValues()), u"plant");
    const OwnedArray clear = persisted(SignalSpecification(), u"plant");
    for (const char* flag : {"TargetBufferedStreaming_", "IsFrameBased_", "HideInDVX_"}) {
        EXPECT_EQ(rh::describe(rh::field(set.get(), 0, flag)), "double 1") << flag;
        EXPECT_EQ(rh::describe(rh::field(clear.get(), 0, flag)), "double 0") << flag;
    }
}

TEST_F(SignalSpecificationStruct, StructDataHasTheModelNameInPathAndZid)
{
    const OwnedArray data = makePersistedFields();
    makeSignal(distinctValues())->createStructData(data.get(), 0, u"plant");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"plant/Controller/Begr\u00e4nzung");
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 0, "ZID_")), "plant:17");
}

TEST_F(SignalSpecificationStruct, StructDataOfEmptyPathAndZidStaysEmpty)
{
    const OwnedArray data = makePersistedFields();
    SignalSpecification().createStructData(data.get(), 0, u"plant");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"");
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 0, "ZID_")), "");
}

TEST_F(SignalSpecificationStruct, PersistingWritesTheFieldsInOrderAndThePathAgain)
{
    const OwnedArray data = makePersistedFields();
    rh::Journal::startRecording();
    makeSignal(distinctValues())->getPersistenceData(data.get(), 0, u"plant");
    rh::Journal::stopRecording();
    std::vector<std::string> written = journaledArguments("nvReplaceField", 2);
    ASSERT_EQ(written.size(), 33U);  // once for the array, once for the object that the host is asked with
    written.erase(written.begin() + 16, written.end() - 1);
    EXPECT_EQ(written,
              (std::vector<std::string>{
                  "\"UUID\"", "\"ZID_\"", "\"BlockPath_\"", "\"SubPath_\"", "\"SignalName_\"",
                  "\"SubSysPath_\"", "\"DomainType_\"", "\"VisualType_\"", "\"DomainParams_\"",
                  "\"OutputPortIndex_\"", "\"LogicalPortIndex_\"", "\"Decimation_\"", "\"MaxPoints_\"",
                  "\"TargetBufferedStreaming_\"", "\"IsFrameBased_\"", "\"HideInDVX_\"", "\"BlockPath_\""}));
}

TEST_F(SignalSpecificationStruct, PersistingReplacesWhatTheFieldsHeld)
{
    const OwnedArray data = persisted(*makeSignal(distinctValues()), u"plant");
    SignalSpecification().getPersistenceData(data.get(), 0, u"plant");
    EXPECT_EQ(loaded(data.get()), SignalValues());
}

TEST_F(SignalSpecificationStruct, PersistingFillsOneElement)
{
    const OwnedArray data = makePersistedFields(3);
    makeSignal(distinctValues())->getPersistenceData(data.get(), 1, u"plant");
    EXPECT_EQ(rh::field(data.get(), 0, "UUID"), nullptr);
    EXPECT_EQ(loaded(data.get(), 1), persistedPartOf(distinctValues()));
    EXPECT_EQ(rh::field(data.get(), 2, "UUID"), nullptr);
}

// ---- the path that is saved ---------------------------------------------------------------------

TEST_F(SignalSpecificationStruct, SavedPathIsTheAlignedOneWithoutTheModelName)
{
    const rh::ScopedHostFunction moved("getAlignedBlockPath", [](rh::HostFunctionCall& call) {
        call.setOutput(0, rh::makeText("plant/Elsewhere/Limiter"));
    });
    const OwnedArray data = persisted(*makeSignal(distinctValues()), u"plant");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"Elsewhere/Limiter");
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 0, "ZID_")), "17") << "the ZID stays as held";
}

TEST_F(SignalSpecificationStruct, AlignedPathOfAnotherModelIsSavedWhole)
{
    const rh::ScopedHostFunction moved("getAlignedBlockPath", [](rh::HostFunctionCall& call) {
        call.setOutput(0, rh::makeText("factory/Limiter"));
    });
    const OwnedArray data = persisted(*makeSignal(distinctValues()), u"plant");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"factory/Limiter");
}

TEST_F(SignalSpecificationStruct, SavedPathIsEmptyWhereTheHostHasNone)
{
    const rh::ScopedHostFunction unknown("getAlignedBlockPath", fail);
    const OwnedArray data = persisted(*makeSignal(distinctValues()), u"plant");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"");
    EXPECT_EQ(rh::utf8Text(rh::field(data.get(), 0, "ZID_")), "17");
    ASSERT_EQ(rh::Warnings::reported().size(), 1U);
    EXPECT_EQ(rh::Warnings::reported()[0].id.key(), "Refused");
}

TEST_F(SignalSpecificationStruct, SavedPathIsEmptyWhereTheHostMakesNoObject)
{
    const rh::ScopedHostFunction refused("Zelmar.HMI.SignalSpecification", fail);
    std::size_t asked = 0;
    const rh::ScopedHostFunction counted("getAlignedBlockPath", [&](rh::HostFunctionCall&) { ++asked; });
    const OwnedArray data = persisted(*makeSignal(distinctValues()), u"plant");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"");
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
    EXPECT_EQ(asked, 0U);
}

TEST_F(SignalSpecificationStruct, SavedPathIsEmptyWhereTheHostAnswersNothing)
{
    const rh::ScopedHostFunction silent("getAlignedBlockPath", [](rh::HostFunctionCall&) {});
    const OwnedArray data = persisted(*makeSignal(distinctValues()), u"plant");
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"");
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(SignalSpecificationStruct, AnAnswerThatIsNoTextIsAHostError)
{
    const rh::ScopedHostFunction odd("getAlignedBlockPath", [](rh::HostFunctionCall& call) {
        call.setOutput(0, rh::makeStruct(rh::Dimensions(1, 1), {"path"}));
    });
    const OwnedArray data = makePersistedFields();
    EXPECT_THROW(makeSignal(distinctValues())->getPersistenceData(data.get(), 0, u"plant"), zmsvException);
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

// ---- loading ------------------------------------------------------------------------------------

TEST_F(SignalSpecificationStruct, LoadingReadsTheSixteenFields)
{
    EXPECT_EQ(loaded(makePersisted({distinctValues()}).get()), persistedPartOf(distinctValues()));
}

TEST_F(SignalSpecificationStruct, LoadingReadsTheElementAskedFor)
{
    const rh::OwnedValue data =
        makePersisted({portValues(u"A", 1), portValues(u"B", 2), portValues(u"C", 3)});
    EXPECT_EQ(loaded(data.get(), 1), portValues(u"B", 2));
    EXPECT_EQ(loaded(data.get(), 2), portValues(u"C", 3));
}

TEST_F(SignalSpecificationStruct, LoadingPastTheEndIsAHostError)
{
    EXPECT_THROW(loaded(makePersisted({{}}).get(), 1), zmsvException);
}

TEST_F(SignalSpecificationStruct, LoadingReadsTheFieldsInOrder)
{
    const rh::OwnedValue data = makePersisted({distinctValues()});
    rh::Journal::startRecording();
    SignalSpecification(data.get(), 0, u"");
    rh::Journal::stopRecording();
    std::vector<std::string> read = journaledArguments("nvGetField", 2);
    std::erase(read, "\"Element\"");
    EXPECT_EQ(read,
              (std::vector<std::string>{
                  "\"UUID\"", "\"ZID_\"", "\"OutputPortIndex_\"", "\"LogicalPortIndex_\"", "\"BlockPath_\"",
                  "\"SubPath_\"", "\"SubSysPath_\"", "\"SignalName_\"", "\"Decimation_\"", "\"MaxPoints_\"",
                  "\"TargetBufferedStreaming_\"", "\"IsFrameBased_\"", "\"HideInDVX_\"", "\"DomainType_\"",
                  "\"VisualType_\"", "\"DomainParams_\""}));
}

TEST_F(SignalSpecificationStruct, LoadingTakesThePathsAsTheyStand)
{
    const SignalValues values = {.blockPath = u"model/A", .zid = "model:1"};
    EXPECT_EQ(loaded(makePersisted({values}).get()), values);
}

TEST_F(SignalSpecificationStruct, LoadsFromTheOlderStructBasedClassToo)
{
    const rh::OwnedValue data = makePersisted({distinctValues()});
    const std::vector<std::string> names = rh::fieldNames(data.get());
    const rh::OwnedValue object = rh::makeStructObject("OldSignal", rh::Dimensions(1, 1), names);
    for (const std::string& name : names) {
        rh::setField(object.get(), 0, name.c_str(), rh::copyDeep(rh::field(data.get(), 0, name.c_str())));
    }
    EXPECT_EQ(loaded(object.get()), persistedPartOf(distinctValues()));
}

TEST_F(SignalSpecificationStruct, LoadsWithoutTheOptionalFields)
{
    const SignalValues values =
        loaded(makePersistedWithout({"LogicalPortIndex_", "TargetBufferedStreaming_", "IsFrameBased_",
                                     "HideInDVX_", "DomainType_", "VisualType_", "DomainParams_"})
                   .get());
    EXPECT_EQ(values, SignalValues());
}

TEST_F(SignalSpecificationStruct, LoadingOverARecordKeepsWhatTheDataLack)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const rh::OwnedValue data = makePersistedWithout(
        {"LogicalPortIndex_", "TargetBufferedStreaming_", "IsFrameBased_", "HideInDVX_", "DomainParams_"});
    record->setFromPersistentData(data.get(), 0);

    SignalValues expected = distinctValues();
    expected.uuid.clear();
    expected.zid.clear();
    expected.blockPath.clear();
    expected.subPath.clear();
    expected.subSysPath.clear();
    expected.signalName.clear();
    expected.domainType.clear();
    expected.visualType.clear();
    expected.outputPort = 0;
    expected.decimation = 1;
    expected.maxPoints = 0;
    EXPECT_EQ(valuesOf(*record), expected);
}

TEST_F(SignalSpecificationStruct, LoadingOverARecordEmptiesTheTypesThatTheDataLack)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    record->setFromPersistentData(makePersistedWithout({"DomainType_", "VisualType_"}).get(), 0);
    EXPECT_EQ(record->getDomainType(), u"");
    EXPECT_EQ(record->getVisualType(), u"");
}

TEST_F(SignalSpecificationStruct, LoadingOverARecordKeepsItsRunTimeMembers)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    record->setFromPersistentData(makePersisted({{}}).get(), 0);
    EXPECT_EQ(record->getCachedBlockHandle(), distinctValues().cachedHandle);
    EXPECT_EQ(record->getCachedPortIdx(), distinctValues().cachedPort);
    EXPECT_EQ(record->getBindingRule(), distinctValues().bindingRule);
    EXPECT_TRUE(record->getExcludeForSave());
}

TEST_F(SignalSpecificationStruct, ARequiredTextThatIsMissingLoadsEmpty)
{
    for (const char* name : {"UUID", "ZID_", "BlockPath_", "SubPath_", "SubSysPath_", "SignalName_"}) {
        EXPECT_EQ(loaded(makePersistedWithout({name}).get()), SignalValues()) << name;
    }
}

TEST_F(SignalSpecificationStruct, ARequiredNumberThatIsMissingIsAHostError)
{
    for (const char* name : {"OutputPortIndex_", "Decimation_", "MaxPoints_"}) {
        EXPECT_THROW(loaded(makePersistedWithout({name}).get()), zmsvException) << name;
    }
}

TEST_F(SignalSpecificationStruct, ANumberWhereATextBelongsIsAHostError)
{
    EXPECT_THROW(loaded(makePersistedWith("UUID", rh::makeDouble(1.0)).get()), zmsvException);
    EXPECT_THROW(loaded(makePersistedWith("BlockPath_", rh::makeDouble(1.0)).get()), zmsvException);
}

TEST_F(SignalSpecificationStruct, AnEmptyValueWhereANumberBelongsIsAHostError)
{
    EXPECT_THROW(loaded(makePersistedWith("Decimation_", rh::makeEmptyValue()).get()), zmsvException);
    EXPECT_THROW(loaded(makePersistedWith("HideInDVX_", rh::makeEmptyValue()).get()), zmsvException);
}

TEST_F(SignalSpecificationStruct, AnyNumberButZeroIsATrueFlag)
{
    for (const double number : {2.0, -1.0, 0.5, 1e-300}) {
        EXPECT_TRUE(loaded(makePersistedWith("IsFrameBased_", rh::makeDouble(number)).get()).isFrameBased)
            << number;
    }
    EXPECT_FALSE(loaded(makePersistedWith("IsFrameBased_", rh::makeDouble(0.0)).get()).isFrameBased);
    EXPECT_FALSE(loaded(makePersistedWith("IsFrameBased_", rh::makeDouble(-0.0)).get()).isFrameBased);
}

TEST_F(SignalSpecificationStruct, AFlagMayBeALogicalOrAnyOtherNumericClass)
{
    EXPECT_TRUE(loaded(makePersistedWith("HideInDVX_", rh::makeLogical(true)).get()).hideInDVX);
    EXPECT_TRUE(loaded(makePersistedWith("HideInDVX_", rh::makeNumber(3, nvClassID::UInt8)).get()).hideInDVX);
    EXPECT_FALSE(loaded(makePersistedWith("HideInDVX_", rh::makeLogical(false)).get()).hideInDVX);
}

TEST_F(SignalSpecificationStruct, NumbersAreTruncatedTowardZero)
{
    EXPECT_EQ(loaded(makePersistedWith("Decimation_", rh::makeDouble(2.9)).get()).decimation, 2);
    EXPECT_EQ(loaded(makePersistedWith("MaxPoints_", rh::makeDouble(-2.9)).get()).maxPoints, -2);
}

TEST_F(SignalSpecificationStruct, NumbersBeyondTheRangeSaturateAndNotANumberIsZero)
{
    using Limits = std::numeric_limits<double>;
    EXPECT_EQ(loaded(makePersistedWith("MaxPoints_", rh::makeDouble(1e12)).get()).maxPoints,
              std::numeric_limits<int>::max());
    EXPECT_EQ(loaded(makePersistedWith("MaxPoints_", rh::makeDouble(Limits::quiet_NaN())).get()).maxPoints,
              0);
}

// ---- there and back -----------------------------------------------------------------------------

rc::Gen<std::u16string> text()
{
    return rc::gen::map(
        rc::gen::container<std::vector<int>>(rc::gen::inRange(1, 0xd7ff)),
        [](const std::vector<int>& units) { return std::u16string(units.begin(), units.end()); });
}

/// With at most one domain parameter: more may come back in another order, and then compare unequal.
SignalValues anyPersistedValues()
{
    SignalValues values = {.uuid = *rc::gen::string<std::string>(),
                           .blockPath = *text(),
                           .zid = *rc::gen::container<std::string>(rc::gen::inRange('0', '9')),
                           .subPath = *text(),
                           .signalName = *text(),
                           .subSysPath = *text(),
                           .domainType = *text(),
                           .visualType = *text(),
                           .outputPort = *rc::gen::arbitrary<int>(),
                           .logicalPort = *rc::gen::arbitrary<int>(),
                           .decimation = *rc::gen::arbitrary<int>(),
                           .maxPoints = *rc::gen::arbitrary<int>(),
                           .targetBufferedStreaming = *rc::gen::arbitrary<bool>(),
                           .isFrameBased = *rc::gen::arbitrary<bool>(),
                           .hideInDVX = *rc::gen::arbitrary<bool>()};
    std::erase_if(values.uuid, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    if (*rc::gen::arbitrary<bool>()) {
        values.domainParams = {{u"Element", *text()}};
    }
    return values;
}

RC_GTEST_FIXTURE_PROP(SignalSpecificationStruct, SavingAndLoadingKeepsThePersistedMembers, ())
{
    const SignalValues values = anyPersistedValues();
    const SignalSpecificationPtr record = makeSignal(values);
    const OwnedArray data = persisted(*record, u"plant");
    const SignalSpecification again(data.get(), 0, u"plant");
    RC_ASSERT(valuesOf(again) == values);
    RC_ASSERT(again.isEqual(record.get()));
}

}  // namespace
}  // namespace zm_hmi
