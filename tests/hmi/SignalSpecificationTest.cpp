#include "hmi/SignalSpecification.hpp"

#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zm_hmi {
namespace {

using RecordPtr = std::unique_ptr<SignalSpecification>;

class SignalSpecificationTest : public LibraryTest {};

TEST_F(SignalSpecificationTest, ANewRecordHasTheDefaults)
{
    const SignalValues values = valuesOf(SignalSpecification());
    EXPECT_EQ(values, SignalValues());
    EXPECT_EQ(values.decimation, 1);
    EXPECT_EQ(SignalSpecification().getDomainParams().max_load_factor(), 1.0F);
}

// ---- copying ------------------------------------------------------------------------------------

TEST_F(SignalSpecificationTest, ACloneHasEveryMember)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const RecordPtr clone(record->clone());
    EXPECT_EQ(valuesOf(*clone), distinctValues());
    EXPECT_EQ(clone->getDomainParams().max_load_factor(), record->getDomainParams().max_load_factor());
}

TEST_F(SignalSpecificationTest, ACloneIsARecordOfItsOwn)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const RecordPtr clone(record->clone());
    clone->setCachedInfo(99.0, 9);
    EXPECT_EQ(valuesOf(*record), distinctValues());
}

// ---- isEqual ------------------------------------------------------------------------------------

TEST(SignalSpecificationIsEqual, NullIsNeitherEqualNorTheSameSignal)
{
    const SignalSpecification record;
    EXPECT_FALSE(record.isEqual(nullptr));
    EXPECT_FALSE(record.isSameSignal(nullptr));
}

struct Change {
    std::string name;
    std::function<void(SignalValues&)> make;

    friend void PrintTo(const Change& change, std::ostream* out) { *out << change.name; }
};

const std::vector<Change> changesThatCount = {
    {"OutputPortIndex", [](SignalValues& v) { v.outputPort = 99; }},
    {"LogicalPortIndex", [](SignalValues& v) { v.logicalPort = 99; }},
    {"Decimation", [](SignalValues& v) { v.decimation = 99; }},
    {"MaxPoints", [](SignalValues& v) { v.maxPoints = 99; }},
    {"TargetBufferedStreaming", [](SignalValues& v) { v.targetBufferedStreaming = false; }},
    {"IsFrameBased", [](SignalValues& v) { v.isFrameBased = false; }},
    {"HideInDVX", [](SignalValues& v) { v.hideInDVX = false; }},
    {"UUID", [](SignalValues& v) { v.uuid = "x"; }},
    {"BlockPath", [](SignalValues& v) { v.blockPath = u"x"; }},
    {"BlockPathCase", [](SignalValues& v) { v.blockPath[0] = u'c'; }},
    {"ZID", [](SignalValues& v) { v.zid = "x"; }},
    {"SubPath", [](SignalValues& v) { v.subPath = u"x"; }},
    {"SignalName", [](SignalValues& v) { v.signalName = u"x"; }},
    {"SubSysPath", [](SignalValues& v) { v.subSysPath = u"x"; }},
    {"DomainType", [](SignalValues& v) { v.domainType = u"x"; }},
    {"VisualType", [](SignalValues& v) { v.visualType = u"x"; }},
    {"DomainParamValue", [](SignalValues& v) { v.domainParams[0].second = u"x"; }},
    {"DomainParamName", [](SignalValues& v) { v.domainParams[0].first = u"x"; }},
    {"NoDomainParams", [](SignalValues& v) { v.domainParams.clear(); }},
};

const std::vector<Change> changesThatDoNotCount = {
    {"CachedBlockHandle", [](SignalValues& v) { v.cachedHandle = 99.0; }},
    {"CachedPortIdx", [](SignalValues& v) { v.cachedPort = 99; }},
    {"BindingRule", [](SignalValues& v) { v.bindingRule = "x"; }},
    {"ExcludeForSave", [](SignalValues& v) { v.excludeForSave = false; }},
};

std::string nameOf(const testing::TestParamInfo<Change>& info)
{
    return info.param.name;
}

class IsEqualMinds : public SignalSpecificationTest, public testing::WithParamInterface<Change> {};

TEST_P(IsEqualMinds, ADifferenceInThisMember)
{
    SignalValues changed = distinctValues();
    GetParam().make(changed);
    ASSERT_NE(changed, distinctValues());
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const SignalSpecificationPtr other = makeSignal(changed);
    EXPECT_FALSE(record->isEqual(other.get()));
    EXPECT_FALSE(other->isEqual(record.get()));
}

INSTANTIATE_TEST_SUITE_P(Members, IsEqualMinds, testing::ValuesIn(changesThatCount), nameOf);

class IsEqualIgnores : public SignalSpecificationTest, public testing::WithParamInterface<Change> {};

TEST_P(IsEqualIgnores, ADifferenceInThisMember)
{
    SignalValues changed = distinctValues();
    GetParam().make(changed);
    ASSERT_NE(changed, distinctValues());
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    const SignalSpecificationPtr other = makeSignal(changed);
    EXPECT_TRUE(record->isEqual(other.get()));
    EXPECT_TRUE(other->isEqual(record.get()));
}

INSTANTIATE_TEST_SUITE_P(Members, IsEqualIgnores, testing::ValuesIn(changesThatDoNotCount), nameOf);

TEST_F(SignalSpecificationTest, IsEqualDoesNotNormaliseText)
{
    const auto composed = makeSignal({.signalName = u"\u00e9"});
    const auto decomposed = makeSignal({.signalName = u"e\u0301"});
    EXPECT_FALSE(composed->isEqual(decomposed.get()));
}

// ---- isSameSignal -------------------------------------------------------------------------------

bool areSame(const SignalValues& one, const SignalValues& other)
{
    const SignalSpecificationPtr left = makeSignal(one);
    const SignalSpecificationPtr right = makeSignal(other);
    EXPECT_EQ(left->isSameSignal(right.get()), right->isSameSignal(left.get()));
    return left->isSameSignal(right.get());
}

TEST_F(SignalSpecificationTest, SameSignalByEqualCachedHandleAndPortWhateverThePaths)
{
    EXPECT_TRUE(areSame({.blockPath = u"A", .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 2},
                        {.blockPath = u"B", .outputPort = 3, .cachedHandle = 12.5, .cachedPort = 2}));
}

TEST_F(SignalSpecificationTest, SameSignalByPathsAndPortsWhereOneHandleIsMissing)
{
    EXPECT_TRUE(areSame({.blockPath = u"A", .subPath = u"x", .outputPort = 1, .cachedHandle = 12.5},
                        {.blockPath = u"A", .subPath = u"x", .outputPort = 1}));
    EXPECT_FALSE(areSame({.blockPath = u"A", .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 2},
                         {.blockPath = u"B", .outputPort = 1, .cachedHandle = 0.0, .cachedPort = 2}));
}

TEST_F(SignalSpecificationTest, SameSignalByPathsWhereTheHandlesDiffer)
{
    EXPECT_TRUE(areSame({.blockPath = u"A", .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 1},
                        {.blockPath = u"A", .outputPort = 1, .cachedHandle = 13.5, .cachedPort = 1}));
}

TEST_F(SignalSpecificationTest, SameSignalByPathsWhereTheCachedPortsDiffer)
{
    EXPECT_TRUE(areSame({.blockPath = u"A", .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 1},
                        {.blockPath = u"A", .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 2}));
    EXPECT_FALSE(areSame({.blockPath = u"A", .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 1},
                         {.blockPath = u"B", .outputPort = 1, .cachedHandle = 12.5, .cachedPort = 2}));
}

TEST_F(SignalSpecificationTest, NotTheSameSignalWhereAnyPartOfTheIdentityDiffers)
{
    const SignalValues port = {.blockPath = u"A", .subPath = u"x", .outputPort = 1, .logicalPort = 2};
    EXPECT_TRUE(areSame(port, port));
    SignalValues other = port;
    other.logicalPort = 3;
    EXPECT_FALSE(areSame(port, other)) << "logical port";
    other = port;
    other.outputPort = 3;
    EXPECT_FALSE(areSame(port, other)) << "output port";
    other = port;
    other.subPath = u"y";
    EXPECT_FALSE(areSame(port, other)) << "sub-path";
    other = port;
    other.blockPath = u"B";
    EXPECT_FALSE(areSame(port, other)) << "block path";
}

TEST_F(SignalSpecificationTest, SameSignalWhateverTheSettings)
{
    EXPECT_TRUE(areSame({.uuid = "1", .blockPath = u"A", .zid = "1", .decimation = 2, .excludeForSave = true},
                        {.uuid = "2", .blockPath = u"A", .zid = "2", .signalName = u"s", .hideInDVX = true}));
}

TEST_F(SignalSpecificationTest, ANegativeZeroIsNoCachedHandle)
{
    EXPECT_FALSE(areSame({.blockPath = u"A", .cachedHandle = -0.0, .cachedPort = 1},
                         {.blockPath = u"B", .cachedHandle = -0.0, .cachedPort = 1}));
}

TEST_F(SignalSpecificationTest, ANotANumberHandleNeverMatches)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(areSame({.blockPath = u"A", .cachedHandle = nan, .cachedPort = 1},
                         {.blockPath = u"B", .cachedHandle = nan, .cachedPort = 1}));
    EXPECT_TRUE(areSame({.blockPath = u"A", .cachedHandle = nan, .cachedPort = 1},
                        {.blockPath = u"A", .cachedHandle = nan, .cachedPort = 1}));
}

// ---- changing -----------------------------------------------------------------------------------

TEST_F(SignalSpecificationTest, SettingCachedInfoSetsHandleAndPort)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    record->setCachedInfo(2.5, 8);
    SignalValues expected = distinctValues();
    expected.cachedHandle = 2.5;
    expected.cachedPort = 8;
    EXPECT_EQ(valuesOf(*record), expected);
}

TEST_F(SignalSpecificationTest, RenumberingSetsOutputAndCachedPortOnly)
{
    const SignalSpecificationPtr record = makeSignal(distinctValues());
    record->renumberPortIndex(9);
    SignalValues expected = distinctValues();
    expected.outputPort = 9;
    expected.cachedPort = 9;
    EXPECT_EQ(valuesOf(*record), expected);
}

TEST_F(SignalSpecificationTest, RenumberingAnUnboundRecordGivesItACachedPortWithoutAHandle)
{
    const SignalSpecificationPtr record = makeSignal(portValues(u"A", 1));
    record->renumberPortIndex(3);
    EXPECT_EQ(record->getCachedPortIdx(), 3);
    EXPECT_EQ(record->getCachedBlockHandle(), 0.0);
    EXPECT_EQ(record->getLogicalPortIndex(), 0);
}

TEST_F(SignalSpecificationTest, RenamingTheModelChangesNothing)
{
    SignalValues values = distinctValues();
    values.blockPath = u"plant/A";
    values.zid = "plant:1";
    const SignalSpecificationPtr record = makeSignal(values);
    record->renameModel(u"plant", u"factory");
    EXPECT_EQ(valuesOf(*record), values);
}

TEST_F(SignalSpecificationTest, StrippingTakesTheModelNameOffPathAndZid)
{
    SignalValues values = distinctValues();
    values.blockPath = u"plant/Controller/Limiter";
    values.zid = "plant:17";
    values.subPath = u"plant/x";
    values.subSysPath = u"plant/Controller";
    const SignalSpecificationPtr record = makeSignal(values);
    record->stripModelName(u"plant");
    values.blockPath = u"Controller/Limiter";
    values.zid = "17";
    EXPECT_EQ(valuesOf(*record), values);
}

TEST_F(SignalSpecificationTest, StrippingLeavesTheNameOfAnotherModel)
{
    SignalValues values = distinctValues();
    values.blockPath = u"plant/A";
    values.zid = "plant:1";
    const SignalSpecificationPtr record = makeSignal(values);
    record->stripModelName(u"factory");
    EXPECT_EQ(valuesOf(*record), values);
}

// ---- the field table ------------------------------------------------------------------------------

TEST_F(SignalSpecificationTest, FieldTableIsInStructOrder)
{
    const std::vector<std::string> expected = {"UUID",
                                               "BlockPath_",
                                               "ZID_",
                                               "SubPath_",
                                               "OutputPortIndex_",
                                               "LogicalPortIndex_",
                                               "SignalName_",
                                               "SubSysPath_",
                                               "Decimation_",
                                               "MaxPoints_",
                                               "TargetBufferedStreaming_",
                                               "IsFrameBased_",
                                               "HideInDVX_",
                                               "DomainType_",
                                               "DomainParams_",
                                               "VisualType_",
                                               "BindingRule_",
                                               "CachedBlockHandle_",
                                               "CachedPortIdx_",
                                               "ExcludeForSave_"};
    const char* const* names = SignalSpecification::getStructFields();
    EXPECT_EQ(std::vector<std::string>(names, names + 20), expected);
}

TEST_F(SignalSpecificationTest, SixteenOfTwentyFieldsArePersisted)
{
    EXPECT_EQ(SignalSpecification::getNumStructFields(false), 16U);
    EXPECT_EQ(SignalSpecification::getNumStructFields(true), 20U);
}

}  // namespace
}  // namespace zm_hmi
