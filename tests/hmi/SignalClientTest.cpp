#include "hmi/SignalClient.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/ClientsTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

using ClonePtr = std::unique_ptr<SignalClient>;

class SignalClientTest : public ClientsTest {};

// ---- members ------------------------------------------------------------------------------------

TEST_F(SignalClientTest, ANewRecordHasTheDefaults)
{
    const SignalClient client;
    EXPECT_EQ(valuesOf(client), ClientValues());
    EXPECT_EQ(client.getObserverParams(), nullptr);
}

TEST_F(SignalClientTest, ANewRecordHasBothNumbersAtOne)
{
    EXPECT_EQ(SignalClient().getUpdateRate(), 1U);
    EXPECT_EQ(SignalClient().getDimensionChannel(), 1U);
}

TEST_F(SignalClientTest, EveryMemberReadsAsItWasWritten)
{
    EXPECT_EQ(valuesOf(*makeClient(distinctClient())), distinctClient());
}

TEST_F(SignalClientTest, IsNotCopiedOrMovedImplicitly)
{
    EXPECT_FALSE(std::is_copy_constructible_v<SignalClient>);
    EXPECT_FALSE(std::is_copy_assignable_v<SignalClient>);
    EXPECT_FALSE(std::is_move_constructible_v<SignalClient>);
    EXPECT_FALSE(std::is_move_assignable_v<SignalClient>);
}

TEST_F(SignalClientTest, WritingParametersKeepsADeepCopyInThePersistentScope)
{
    rh::OwnedValue params = makeParams(u"plant");
    SignalClient client;
    client.setObserverParams(params.get());
    rh::replaceField(params.get(), 0, "ModelName", rh::makeText(u"other"));
    EXPECT_EQ(valuesOf(client).paramsModelName, u"plant");
    EXPECT_EQ(client.getObserverParams()->scope, rh::Scope::Persistent);
}

TEST_F(SignalClientTest, WritingParametersFreesTheFormerOnes)
{
    SignalClient client;
    client.setObserverParams(makeParams(u"a").get());
    const auto before = rh::liveValues();
    client.setObserverParams(makeParams(u"b").get());
    EXPECT_EQ(rh::liveValues(), before);
    EXPECT_EQ(valuesOf(client).paramsModelName, u"b");
}

TEST_F(SignalClientTest, ParametersCanBeWrittenFromThemselves)
{
    const SignalClientPtr client = makeClient(distinctClient());
    client->setObserverParams(client->getObserverParams());
    EXPECT_EQ(valuesOf(*client), distinctClient());
}

TEST_F(SignalClientTest, WritingNullTakesTheParametersAway)
{
    const SignalClientPtr client = makeClient(distinctClient());
    client->setObserverParams(nullptr);
    EXPECT_EQ(client->getObserverParams(), nullptr);
}

// ---- copying ------------------------------------------------------------------------------------

TEST_F(SignalClientTest, ACloneHasEveryMember)
{
    const ClonePtr clone(makeClient(distinctClient())->clone());
    EXPECT_EQ(valuesOf(*clone), distinctClient());
}

TEST_F(SignalClientTest, ACloneHasParametersOfItsOwnInThePersistentScope)
{
    const SignalClientPtr client = makeClient(distinctClient());
    const ClonePtr clone(client->clone());
    clone->renameModel(u"plant", u"works");
    EXPECT_EQ(valuesOf(*client), distinctClient());
    EXPECT_EQ(clone->getObserverParams()->scope, rh::Scope::Persistent);
}

TEST_F(SignalClientTest, ACloneOfARecordWithoutParametersHasNone)
{
    const ClonePtr clone(SignalClient().clone());
    EXPECT_EQ(clone->getObserverParams(), nullptr);
}

TEST_F(SignalClientTest, CloningFreesAllWhenAnOperationFails)
{
    const SignalClientPtr client = makeClient(distinctClient());
    const auto calls = rh::walkFaults(rh::Faults::anyOperation, rh::FaultKind::OutOfMemory,
                                      [&] { const ClonePtr clone(client->clone()); });
    EXPECT_EQ(calls, 2U);  // the copy and its scope
}

// ---- isEqual ------------------------------------------------------------------------------------

struct Change {
    std::string name;
    std::function<void(ClientValues&)> make;

    friend void PrintTo(const Change& change, std::ostream* out) { *out << change.name; }
};

std::string nameOf(const testing::TestParamInfo<Change>& info)
{
    return info.param.name;
}

class ClientIsEqualMinds : public ClientsTest, public testing::WithParamInterface<Change> {};

TEST_P(ClientIsEqualMinds, ADifferenceInThisMemberAndDoesNotAskTheHostThen)
{
    ClientValues changed = distinctClient();
    GetParam().make(changed);
    ASSERT_NE(changed, distinctClient());
    const SignalClientPtr client = makeClient(distinctClient());
    const SignalClientPtr other = makeClient(changed);
    const CountedHostFunction isEqual("isequal", rh::isEqual);
    EXPECT_FALSE(client->isEqual(other.get()));
    EXPECT_FALSE(other->isEqual(client.get()));
    EXPECT_EQ(isEqual.calls(), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Members, ClientIsEqualMinds,
    testing::Values(Change{"UpdateRate", [](ClientValues& v) { v.updateRate = 99; }},
                    Change{"UpdateRateBeyond32Bits", [](ClientValues& v) { v.updateRate += 1ULL << 32U; }},
                    Change{"DimensionChannel", [](ClientValues& v) { v.dimensionChannel = 99; }},
                    Change{"ObserveImaginaryPart", [](ClientValues& v) { v.observeImaginaryPart = false; }},
                    Change{"BusLeafPath", [](ClientValues& v) { v.busLeafPath = "x"; }},
                    Change{"Uuid", [](ClientValues& v) { v.uuid = "x"; }},
                    Change{"SignalUuid", [](ClientValues& v) { v.signalUUID = "x"; }},
                    Change{"SourceModel", [](ClientValues& v) { v.sourceModel = u"x"; }},
                    Change{"SourceModelCase", [](ClientValues& v) { v.sourceModel = u"Plant"; }},
                    Change{"ObserverType", [](ClientValues& v) { v.observerType = "x"; }},
                    Change{"ModelPathElement", [](ClientValues& v) { v.modelPath[1] = u"x"; }},
                    Change{"ModelPathLength", [](ClientValues& v) { v.modelPath.pop_back(); }},
                    Change{"ModelPathZidElement", [](ClientValues& v) { v.modelPathZID[1] = "x"; }},
                    Change{"ModelPathZidLength", [](ClientValues& v) { v.modelPathZID.emplace_back(); }}),
    nameOf);

TEST_F(SignalClientTest, EqualRecordsAskTheHostOnceAboutTheParameters)
{
    const SignalClientPtr client = makeClient(distinctClient());
    const SignalClientPtr other = makeClient(distinctClient());
    const CountedHostFunction isEqual("isequal", rh::isEqual);
    EXPECT_TRUE(client->isEqual(other.get()));
    EXPECT_EQ(isEqual.calls(), 1U);
}

TEST_F(SignalClientTest, RecordsWithOtherParametersDiffer)
{
    ClientValues changed = distinctClient();
    changed.paramsModelName = u"other";
    EXPECT_FALSE(makeClient(distinctClient())->isEqual(makeClient(changed).get()));
}

TEST_F(SignalClientTest, ARecordIsAskedAboutLikeAnyOtherWhenItIsComparedWithItself)
{
    const SignalClientPtr client = makeClient(distinctClient());
    const CountedHostFunction isEqual("isequal",
                                      [](auto& call) { call.setOutput(0, rh::makeLogical(false)); });
    EXPECT_FALSE(client->isEqual(client.get()));
    EXPECT_EQ(isEqual.calls(), 1U);
}

TEST_F(SignalClientTest, MissingParametersAreComparedAsAnEmptyDouble)
{
    ClientValues withParams;
    withParams.paramsModelName = u"a";
    std::vector<std::string> asked;
    const CountedHostFunction isEqual("isequal", [&](rh::HostFunctionCall& call) {
        ASSERT_EQ(call.inputs().size(), 2U);
        asked.push_back(rh::className(call.input(0)) + "/" + rh::className(call.input(1)));
        rh::isEqual(call);
    });
    EXPECT_TRUE(SignalClient().isEqual(makeClient({}).get()));
    EXPECT_FALSE(SignalClient().isEqual(makeClient(withParams).get()));
    EXPECT_FALSE(makeClient(withParams)->isEqual(makeClient({}).get()));
    EXPECT_EQ(asked, (std::vector<std::string>{"double/double", "double/struct", "struct/double"}));
}

TEST_F(SignalClientTest, MissingParametersEqualEmptyOnes)
{
    SignalClient client;
    client.setObserverParams(rh::makeEmptyValue().get());
    EXPECT_TRUE(client.isEqual(makeClient({}).get()));
}

TEST_F(SignalClientTest, NoRecordEqualsNull)
{
    EXPECT_FALSE(makeClient({})->isEqual(nullptr));
}

TEST_F(SignalClientTest, AFailingComparisonPassesThrough)
{
    const rh::ScopedHostFunction failing("isequal", fail);
    const SignalClientPtr client = makeClient({});
    EXPECT_EQ(hostError([&] { client->isEqual(client.get()); }), "Refused");
    expectNoWarning();
}

TEST_F(SignalClientTest, TheFirstElementOfTheComparisonDecides)
{
    const rh::ScopedHostFunction odd("isequal", [](auto& call) {
        rh::OwnedValue answer = rh::makeLogicals({std::size_t{1}, std::size_t{2}});
        rh::setElement(answer.get(), 0, 1.0);
        call.setOutput(0, std::move(answer));
    });
    EXPECT_TRUE(SignalClient().isEqual(makeClient({}).get()));
}

TEST_F(SignalClientTest, AnAnswerThatIsNoLogicalIsAHostError)
{
    const rh::ScopedHostFunction odd("isequal", [](auto& call) { call.setOutput(0, rh::makeDouble(1.0)); });
    EXPECT_EQ(hostError([] { SignalClient().isEqual(makeClient({}).get()); }), "WrongClass");
}

TEST_F(SignalClientTest, AnEmptyAnswerMeansUnequal)
{
    const rh::ScopedHostFunction odd("isequal", giveNothing);
    EXPECT_FALSE(SignalClient().isEqual(makeClient({}).get()));
}

TEST_F(SignalClientTest, HostCodeMayReplaceTheParametersWhileTheyAreCompared)
{
    const SignalClientPtr client = makeClient(distinctClient());
    const SignalClientPtr other = makeClient(distinctClient());
    const rh::ScopedHostFunction replacing("isequal", [&](rh::HostFunctionCall& call) {
        client->setObserverParams(nullptr);
        other->renameModel(u"plant", u"works");
        rh::isEqual(call);
    });
    EXPECT_TRUE(client->isEqual(other.get()));
    EXPECT_EQ(client->getObserverParams(), nullptr);
}

TEST_F(SignalClientTest, ComparingFreesAllWhenAnOperationFails)
{
    const SignalClientPtr client = makeClient({});
    const auto calls = rh::walkFaults(rh::Faults::anyOperation, rh::FaultKind::HostException,
                                      [&] { client->isEqual(makeClient({}).get()); });
    EXPECT_GE(calls, 6U);  // two placeholders with their scopes, the call, its output's scope
}

// ---- type ---------------------------------------------------------------------------------------

TEST_F(SignalClientTest, OnlyTheOldWebWidgetIsDeprecated)
{
    const auto isDeprecated = [](const char* type) {
        SignalClient client;
        client.setObserverType(type);
        return client.isDeprecatedObserver();
    };
    EXPECT_TRUE(isDeprecated("hmi_web_widget_observer"));
    EXPECT_FALSE(isDeprecated(""));
    EXPECT_FALSE(isDeprecated("hmi_web_widget_observer2"));
    EXPECT_FALSE(isDeprecated("HMI_web_widget_observer"));
}

// ---- model name ---------------------------------------------------------------------------------

TEST_F(SignalClientTest, StrippingTakesTheModelNameOffTheFirstPartsOnly)
{
    const SignalClientPtr client =
        makeClient({.modelPath = {u"m/Dashboard", u"m/Inner"}, .modelPathZID = {"m:3", "m:4"}});
    client->stripModelName(u"m");
    EXPECT_EQ(client->getModelPath(), (std::vector<std::u16string>{u"Dashboard", u"m/Inner"}));
    EXPECT_EQ(client->getModelPathZID(), (std::vector<std::string>{"3", "m:4"}));
}

TEST_F(SignalClientTest, StrippingARecordWithoutPathsDoesNothing)
{
    SignalClient client;
    client.stripModelName(u"m");
    EXPECT_EQ(valuesOf(client), ClientValues());
}

ClientValues renamed(ClientValues values, const std::u16string& oldName, const std::u16string& newName)
{
    const SignalClientPtr client = makeClient(values);
    client->renameModel(oldName, newName);
    return valuesOf(*client);
}

TEST_F(SignalClientTest, RenamingMovesTheSourceModelAlong)
{
    EXPECT_EQ(renamed({.sourceModel = u"a"}, u"a", u"b").sourceModel, u"b");
}

TEST_F(SignalClientTest, RenamingNamesARecordWithoutASourceModel)
{
    EXPECT_EQ(renamed({}, u"a", u"b").sourceModel, u"b");
}

TEST_F(SignalClientTest, RenamingAnotherModelLeavesTheSourceModelButRewritesTheParameters)
{
    const ClientValues result = renamed({.sourceModel = u"c", .paramsModelName = u"c"}, u"a", u"b");
    EXPECT_EQ(result.sourceModel, u"c");
    EXPECT_EQ(result.paramsModelName, u"b");
}

TEST_F(SignalClientTest, RenamingLeavesTheOtherParametersAndPathsAsTheyAre)
{
    const SignalClientPtr client = makeClient(distinctClient());
    client->renameModel(u"plant", u"works");
    EXPECT_EQ(rh::scalar(nvGetField(client->getObserverParams(), 0, "Scale")), 2.5);
    ClientValues expected = distinctClient();
    expected.sourceModel = u"works";
    expected.paramsModelName = u"works";
    EXPECT_EQ(valuesOf(*client), expected);
}

TEST_F(SignalClientTest, RenamingSkipsParametersWithoutAModelName)
{
    SignalClient client;
    client.setObserverParams(rh::makeStruct(rh::Dimensions(1, 1), {"Scale"}).get());
    client.renameModel(u"a", u"b");
    EXPECT_EQ(rh::fieldNames(client.getObserverParams()), std::vector<std::string>{"Scale"});
}

TEST_F(SignalClientTest, RenamingSkipsParametersThatHaveNoFieldsAtAll)
{
    const rh::OwnedValue values[] = {rh::makeDouble(1.0), rh::makeEmptyValue(),
                                     rh::makeStruct(rh::Dimensions(1, 0), {"ModelName"})};
    for (const rh::OwnedValue& value : values) {
        SignalClient client;
        client.setObserverParams(value.get());
        client.renameModel(u"a", u"b");
        EXPECT_EQ(client.getSourceModel(), u"b");
    }
}

TEST_F(SignalClientTest, TheNewNameMayBeTheRecordsOwnText)
{
    const SignalClientPtr client = makeClient({.sourceModel = u"a", .paramsModelName = u"x"});
    client->renameModel(u"other", client->getSourceModel());
    EXPECT_EQ(valuesOf(*client).paramsModelName, u"a");
    client->renameModel(client->getSourceModel(), u"b");
    EXPECT_EQ(client->getSourceModel(), u"b");
}

TEST_F(SignalClientTest, RenamingFreesAllWhenAnOperationFails)
{
    const auto calls = rh::walkFaults(rh::Faults::anyOperation, rh::FaultKind::OutOfMemory, [] {
        const SignalClientPtr client = makeClient({.paramsModelName = u"a"});
        client->renameModel(u"a", u"b");
    });
    EXPECT_GE(calls, 4U);
}

// ---- the observed signal ------------------------------------------------------------------------

/// The host answers with one signal for every client, and counts how often it is asked.
class ObservedSignalTest : public ClientsTest {
protected:
    rh::OwnedValue signalObject() const { return makeSignalObject(m_signal); }

    SignalValues m_signal{.blockPath = u"m/Controller/Gain",
                          .zid = "m:12",
                          .subPath = u"inner.leaf",
                          .outputPort = 2,
                          .decimation = 4,
                          .maxPoints = 5000,
                          .cachedHandle = 12.5,
                          .cachedPort = 6};
    const CountedHostFunction m_signalInfo{
        "getSignalInfo", [this](rh::HostFunctionCall& call) { call.setOutput(0, signalObject()); }};
    SignalClientPtr m_client = makeClient({.uuid = "c", .modelPath = {u"Pult", u"inner/Anzeige"}});
};

TEST_F(ObservedSignalTest, IsReadFromTheHostsObjectWithoutTheModelName)
{
    const SignalSpecification* signal = m_client->getSignalSpecification(u"m");
    ASSERT_NE(signal, nullptr);
    SignalValues expected = m_signal;
    expected.blockPath = u"Controller/Gain";
    expected.zid = "12";
    EXPECT_EQ(valuesOf(*signal), expected);
    expectNoWarning();
}

TEST_F(ObservedSignalTest, IsAskedForOnce)
{
    const SignalSpecification* signal = m_client->getSignalSpecification(u"m");
    EXPECT_EQ(m_client->getSignalSpecification(u"m"), signal);
    EXPECT_EQ(m_client->getSignalSpecification(u"another"), signal);
    EXPECT_EQ(m_signalInfo.calls(), 1U);
}

TEST_F(ObservedSignalTest, StaysKnownAfterARename)
{
    const SignalSpecification* signal = m_client->getSignalSpecification(u"m");
    m_client->renameModel(u"m", u"n");
    EXPECT_EQ(m_client->getSignalSpecification(u"n"), signal);
}

TEST_F(ObservedSignalTest, IsNotClonedAlong)
{
    m_client->getSignalSpecification(u"m");
    const ClonePtr clone(m_client->clone());
    EXPECT_NE(clone->getSignalSpecification(u"m"), m_client->getSignalSpecification(u"m"));
    EXPECT_EQ(m_signalInfo.calls(), 2U);
}

TEST_F(ObservedSignalTest, PlaysNoPartInEquality)
{
    const SignalClientPtr other = makeClient(valuesOf(*m_client));
    m_client->getSignalSpecification(u"m");
    EXPECT_TRUE(m_client->isEqual(other.get()));
    EXPECT_TRUE(other->isEqual(m_client.get()));
}

TEST_F(ObservedSignalTest, IsUnknownAndAskedForAgainWhileTheHostRefusesTheClient)
{
    {
        const rh::ScopedHostFunction refused("Zelmar.HMI.SignalClient", fail);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(m_client->getSignalSpecification(u"m"), nullptr);
            expectOneWarning("Refused");
        }
    }
    EXPECT_NE(m_client->getSignalSpecification(u"m"), nullptr);
}

TEST_F(ObservedSignalTest, IsUnknownWithoutAWarningWhenTheHostMakesNothing)
{
    const rh::ScopedHostFunction odd("Zelmar.HMI.SignalClient", giveNothing);
    EXPECT_EQ(m_client->getSignalSpecification(u"m"), nullptr);
    expectNoWarning();
}

TEST_F(ObservedSignalTest, IsUnknownAndAskedForAgainWhileTheHostKnowsNone)
{
    {
        const CountedHostFunction none("getSignalInfo", giveNothing);
        EXPECT_EQ(m_client->getSignalSpecification(u"m"), nullptr);
        EXPECT_EQ(m_client->getSignalSpecification(u"m"), nullptr);
        EXPECT_EQ(none.calls(), 2U);
        expectNoWarning();
    }
    EXPECT_NE(m_client->getSignalSpecification(u"m"), nullptr);
}

TEST_F(ObservedSignalTest, OfAClientThatIsAnotherValueIsAHostErrorAndNotKept)
{
    const rh::ScopedHostFunction odd("Zelmar.HMI.SignalClient",
                                     [](auto& call) { call.setOutput(0, rh::makeDouble(3.0)); });
    EXPECT_THROW(m_client->getSignalSpecification(u"m"), zmsvException);
}

TEST_F(ObservedSignalTest, ThatIsAnotherValueIsAHostErrorAndNotKept)
{
    {
        const rh::ScopedHostFunction odd("getSignalInfo",
                                         [](auto& call) { call.setOutput(0, rh::makeDouble(3.0)); });
        EXPECT_THROW(m_client->getSignalSpecification(u"m"), zmsvException);
    }
    EXPECT_NE(m_client->getSignalSpecification(u"m"), nullptr);
}

TEST_F(ObservedSignalTest, ThatHostCodeHasResolvedMeanwhileStaysTheOneItGot)
{
    const SignalSpecification* inner = nullptr;
    const rh::ScopedHostFunction resolving("getSignalInfo", [&](rh::HostFunctionCall& call) {
        const rh::ScopedHostFunction plain("getSignalInfo",
                                           [&](auto& innerCall) { innerCall.setOutput(0, signalObject()); });
        inner = m_client->getSignalSpecification(u"m");
        call.setOutput(0, signalObject());
    });
    EXPECT_EQ(m_client->getSignalSpecification(u"m"), inner);
    EXPECT_NE(inner, nullptr);
}

TEST_F(ObservedSignalTest, FreesAllWhenAnOperationFails)
{
    for (const rh::FaultKind kind : {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException}) {
        const auto calls = rh::walkFaults(rh::Faults::anyOperation, kind, [] {
            const SignalClientPtr client = makeClient({});
            client->getSignalSpecification(u"m");
        });
        EXPECT_GT(calls, 40U);
        rh::Warnings::clear();
    }
}

TEST_F(ObservedSignalTest, GivesPortDecimationAndPoints)
{
    EXPECT_EQ(m_client->getAlignedPortIndex(u"m"), 6);
    EXPECT_EQ(m_client->getDecimation(u"m"), 4);
    EXPECT_EQ(m_client->getMaxPoints(u"m"), 5000);
}

TEST_F(ObservedSignalTest, NeutralNumbersStandForAnUnknownSignalEachAfterAWarning)
{
    const rh::ScopedHostFunction refused("Zelmar.HMI.SignalClient", fail);
    EXPECT_EQ(m_client->getAlignedPortIndex(u"m"), 0);
    expectOneWarning("Refused");
    EXPECT_EQ(m_client->getDecimation(u"m"), 1);
    expectOneWarning("Refused");
    EXPECT_EQ(m_client->getMaxPoints(u"m"), 0);
    expectOneWarning("Refused");
}

// ---- aligned path -------------------------------------------------------------------------------

using Path = std::vector<std::u16string>;

/// The path of the block, as the client's method gives it, after texts that must not stay.
std::pair<Path, std::u16string> alignedPath(SignalClient& client)
{
    Path path{u"former"};
    std::u16string subPath = u"former";
    client.getAlignedBlockPath(u"m", path, subPath);
    return {path, subPath};
}

TEST_F(ObservedSignalTest, AlignedPathIsTheObserversPathAndTheBlocks)
{
    const auto [path, subPath] = alignedPath(*m_client);
    EXPECT_EQ(path, (Path{u"m/Pult", u"inner/Anzeige", u"m/Controller/Gain"}));
    EXPECT_EQ(subPath, u"inner.leaf");
}

TEST_F(ObservedSignalTest, AlignedPathOfAnObserverWithoutAPathIsTheBlocks)
{
    const auto [path, subPath] = alignedPath(*makeClient({}));
    EXPECT_EQ(path, (Path{u"m/Controller/Gain"}));
    EXPECT_EQ(subPath, u"inner.leaf");
}

TEST_F(ObservedSignalTest, AlignedPathIsAsTheHostGivesItNow)
{
    const rh::ScopedHostFunction moved("getAlignedBlockPath",
                                       [](auto& call) { call.setOutput(0, rh::makeText(u"m/Moved")); });
    EXPECT_EQ(alignedPath(*m_client).first.back(), u"m/Moved");
}

TEST_F(ObservedSignalTest, AlignedPathIsEmptyForAnUnknownSignal)
{
    const rh::ScopedHostFunction refused("Zelmar.HMI.SignalClient", fail);
    EXPECT_EQ(alignedPath(*m_client), (std::pair<Path, std::u16string>{}));
    expectOneWarning("Refused");
}

TEST_F(ObservedSignalTest, AlignedPathIsEmptyAfterOneWarningWhenTheHostRefuses)
{
    const rh::ScopedHostFunction refused("getAlignedBlockPath", fail);
    EXPECT_EQ(alignedPath(*m_client), (std::pair<Path, std::u16string>{}));
    expectOneWarning("Refused");
}

TEST_F(ObservedSignalTest, AlignedPathIsEmptyWithoutAWarningWhenTheHostGivesNothing)
{
    const rh::ScopedHostFunction odd("getAlignedBlockPath", giveNothing);
    EXPECT_EQ(alignedPath(*m_client), (std::pair<Path, std::u16string>{}));
    expectNoWarning();
}

TEST_F(ObservedSignalTest, TheModelNameMayBeTheTextThatTakesTheSubPath)
{
    Path path;
    std::u16string text = u"m";
    m_client->getAlignedBlockPath(text, path, text);
    EXPECT_EQ(path.front(), u"m/Pult");
    EXPECT_EQ(text, u"inner.leaf");
}

TEST_F(ObservedSignalTest, AlignedPathFreesAllWhenAnOperationFails)
{
    const auto calls = rh::walkFaults(rh::Faults::anyOperation, rh::FaultKind::OutOfMemory, [] {
        const SignalClientPtr client = makeClient({});
        alignedPath(*client);
    });
    EXPECT_GT(calls, 60U);
    rh::Warnings::clear();
}

}  // namespace
}  // namespace zm_hmi
