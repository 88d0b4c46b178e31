#include "hmi/InstrumentedSignals.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

constexpr const char* signalsClass = "Zelmar.HMI.InstrumentedSignals";

/// The class as a script uses it: through the host's class object system alone.
class InstrumentedSignalsClass : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        m_object = rh::ObjectAccess::construct(signalsClass, {rh::makeText("plant").get()});
    }

    rh::OwnedValue call(const char* method, const std::vector<const nvArray*>& arguments = {})
    {
        rh::ObjectAccess::Results results = rh::ObjectAccess::callMethod(m_object.get(), method, arguments);
        return results.empty() ? nullptr : std::move(results.front());
    }

    static rh::OwnedValue callStatic(const char* method, const std::vector<const nvArray*>& arguments)
    {
        rh::ObjectAccess::Results results = rh::ObjectAccess::callStatic(signalsClass, method, arguments);
        return results.empty() ? nullptr : std::move(results.front());
    }

    rh::OwnedValue property(const char* name) { return rh::ObjectAccess::getProperty(m_object.get(), name); }
    void assign(const char* name, const rh::OwnedValue& value)
    {
        rh::ObjectAccess::setProperty(m_object.get(), name, value.get());
    }

    void add(const SignalValues& values) { call("add", {makeSignalObject(values).get()}); }
    rh::OwnedValue get(double index) { return call("get", {number(index).get()}); }
    double count() { return rh::scalar(property("Count").get()); }
    bool isTrue(const rh::OwnedValue& value) { return rh::isTrueScalar(value.get()); }

    static rh::OwnedValue number(double value) { return rh::makeDouble(value); }

    /// Expects the element-index error with this count.
    template <class Action>
    static void expectInvalidIndex(std::uint64_t count, Action action)
    {
        try {
            action();
            FAIL() << "nothing was thrown";
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().catalog(), "dvx_hmi_foundation:errors");
            EXPECT_EQ(error.id().key(), "InvalidElementIndex");
            EXPECT_EQ(error.id().arguments(), std::vector<zmsvMessageArgument>{zmsvMessageArgument(count)});
        }
    }

    rh::OwnedValue m_object;
};

const SignalValues portA = {.blockPath = u"plant/A", .zid = "plant:1", .outputPort = 1};
const SignalValues portB = {.blockPath = u"plant/B", .zid = "plant:2", .outputPort = 1};

// ---- what is registered ---------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsClass, MethodsHaveTheirSignatures)
{
    std::vector<std::string> signatures;
    for (const rh::MethodDescription& method : rh::describeClass(signalsClass).methods) {
        signatures.push_back(method.signature);
    }
    EXPECT_EQ(
        signatures,
        (std::vector<std::string>{
            "add(obj, Zelmar.HMI.SignalSpecification)",
            "set(obj, uint32 scalar, Zelmar.HMI.SignalSpecification)", "remove(obj, uint32 scalar)",
            "get(obj, uint32 scalar, [logical scalar]) -> any",
            "isPortObserved(obj, Zelmar.HMI.SignalSpecification) -> logical scalar",
            "isGivenKWActivityObserved(obj, unicodeString, double scalar, unicodeString) -> logical scalar",
            "isAnyKWActivityObserved(obj, unicodeString, double scalar) -> logical scalar",
            "isGivenPortObserved(obj, double scalar, int32 scalar) -> logical scalar",
            "setUUIDForBlock(double scalar, uint32 scalar, asciiString)",
            "getUUIDForBlock(double scalar, uint32 scalar, logical scalar) -> any",
            "getUUID(obj, uint32 scalar) -> any"}));
}

TEST_F(InstrumentedSignalsClass, ConstructorTakesAnOptionalName)
{
    EXPECT_EQ(rh::describeClass(signalsClass).constructor.value().signature,
              "InstrumentedSignals([unicodeString]) -> Zelmar.HMI.InstrumentedSignals");
}

TEST_F(InstrumentedSignalsClass, PropertiesHaveTheirTypesAndAccess)
{
    const std::vector<rh::PropertyDescription> properties = rh::describeClass(signalsClass).properties;
    ASSERT_EQ(properties.size(), 3U);
    EXPECT_EQ(properties[0].name, "Model");
    EXPECT_EQ(properties[0].type, "unicodeString");
    EXPECT_EQ(static_cast<int>(properties[0].access), 5);
    EXPECT_EQ(properties[1].name, "Count");
    EXPECT_EQ(properties[1].type, "uint32 scalar");
    EXPECT_EQ(static_cast<int>(properties[1].access), 5);
    EXPECT_EQ(properties[2].name, "Persistence");
    EXPECT_EQ(properties[2].type, "any");
    EXPECT_EQ(static_cast<int>(properties[2].access), 2);
}

// ---- construction ---------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsClass, ConstructedWithANameHasItAsModel)
{
    EXPECT_EQ(rh::text(property("Model").get()), u"plant");
    EXPECT_EQ(count(), 0.0);
}

TEST_F(InstrumentedSignalsClass, ConstructedWithoutANameHasNoModel)
{
    m_object = rh::ObjectAccess::construct(signalsClass);
    EXPECT_EQ(rh::text(property("Model").get()), u"");
}

TEST_F(InstrumentedSignalsClass, ObjectsHaveCollectionsOfTheirOwn)
{
    add(portA);
    const rh::OwnedValue other = rh::ObjectAccess::construct(signalsClass);
    EXPECT_EQ(rh::scalar(rh::ObjectAccess::getProperty(other.get(), "Count").get()), 0.0);
}

TEST_F(InstrumentedSignalsClass, ACopyOfTheValueIsTheSameObject)
{
    const rh::OwnedValue copy = rh::copyDeep(m_object.get());
    add(portA);
    EXPECT_EQ(rh::scalar(rh::ObjectAccess::getProperty(copy.get(), "Count").get()), 1.0);
}

// ---- properties -----------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsClass, CountIsTheNumberOfElements)
{
    add(portA);
    add(portA);
    EXPECT_EQ(rh::describe(property("Count").get()), "uint32 2");
}

TEST_F(InstrumentedSignalsClass, AssigningCountOrModelChangesNothing)
{
    add(portA);
    assign("Count", rh::makeNumber(9, nvClassID::UInt32));
    assign("Model", rh::makeText("other"));
    EXPECT_EQ(count(), 1.0);
    EXPECT_EQ(rh::text(property("Model").get()), u"plant");
}

TEST_F(InstrumentedSignalsClass, PersistenceOfAnEmptyCollectionIsAStructArrayWithoutElements)
{
    const rh::OwnedValue saved = property("Persistence");
    EXPECT_TRUE(rh::isStruct(saved.get()));
    EXPECT_EQ(rh::elementCount(saved.get()), 0U);
    EXPECT_EQ(rh::fieldNames(saved.get()).size(), 16U);
}

TEST_F(InstrumentedSignalsClass, PersistenceStaysValidWhenTheCollectionChanges)
{
    add(portA);
    const rh::OwnedValue saved = property("Persistence");
    call("remove", {number(1).get()});
    m_object.reset();
    EXPECT_EQ(rh::text(rh::field(saved.get(), 0, "BlockPath_")), u"A");
}

TEST_F(InstrumentedSignalsClass, AssigningPersistenceAppends)
{
    add(portA);
    add(portB);
    assign("Persistence", property("Persistence"));
    EXPECT_EQ(count(), 4.0);
}

TEST_F(InstrumentedSignalsClass, SavedAndLoadedIntoAFreshObjectNothingIsLost)
{
    add(portA);
    add(stateValues("plant:7", u"3", u"Self"));
    const rh::OwnedValue saved = property("Persistence");
    m_object = rh::ObjectAccess::construct(signalsClass, {rh::makeText("plant").get()});
    assign("Persistence", saved);
    EXPECT_EQ(count(), 2.0);
    EXPECT_TRUE(isTrue(call("isPortObserved", {makeSignalObject(portA).get()})));
    EXPECT_TRUE(isTrue(call("isAnyKWActivityObserved", {rh::makeText("plant:7").get(), number(3).get()})));
}

// ---- elements -------------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsClass, AddTakesTheModelNameOffAndGetPutsItBack)
{
    add(portA);
    const rh::OwnedValue object = get(1);
    EXPECT_EQ(rh::text(rh::ObjectAccess::getProperty(object.get(), "BlockPath_").get()), u"plant/A");
    EXPECT_EQ(rh::utf8Text(rh::ObjectAccess::getProperty(object.get(), "ZID_").get()), "plant:1");
    const InstrumentedSignals& signals = *InstrumentedSignals::getFromNVArray(m_object.get());
    EXPECT_EQ(signals.get(0)->getBlockPath(), u"A");
    EXPECT_EQ(signals.get(0)->getZID(), "1");
}

TEST_F(InstrumentedSignalsClass, IndicesBeginAtOne)
{
    add(portA);
    add(portB);
    EXPECT_EQ(rh::text(rh::ObjectAccess::getProperty(get(2).get(), "BlockPath_").get()), u"plant/B");
}

TEST_F(InstrumentedSignalsClass, IndexZeroAndPastTheEndAreErrorsWithTheCount)
{
    add(portA);
    add(portB);
    for (const double index : {0.0, 3.0}) {
        expectInvalidIndex(2, [&] { get(index); });
        expectInvalidIndex(2, [&] { call("getUUID", {number(index).get()}); });
        expectInvalidIndex(2, [&] { call("remove", {number(index).get()}); });
        expectInvalidIndex(2, [&] { call("set", {number(index).get(), makeSignalObject(portA).get()}); });
    }
    EXPECT_EQ(count(), 2.0);
}

TEST_F(InstrumentedSignalsClass, SetChecksItsIndexBeforeItReadsTheSignal)
{
    const rh::OwnedValue spec = makeSignalObject(portA);
    rh::Journal::startRecording();
    expectInvalidIndex(0, [&] { call("set", {number(0).get(), spec.get()}); });
    EXPECT_EQ(rh::Journal::count("nvGetPropertyShared"), 0U);
}

TEST_F(InstrumentedSignalsClass, GetWithoutTheFlagIsGetWithFalse)
{
    add(portA);
    const rh::OwnedValue plain = get(1);
    const rh::OwnedValue withFalse = call("get", {number(1).get(), rh::makeLogical(false).get()});
    EXPECT_EQ(rh::describe(plain.get()), "1x1 Zelmar.HMI.SignalSpecification");
    EXPECT_EQ(rh::describe(withFalse.get()), rh::describe(plain.get()));
    EXPECT_EQ(valuesOf(SignalSpecification(withFalse.get(), 0, u"")),
              valuesOf(SignalSpecification(plain.get(), 0, u"")));
}

TEST_F(InstrumentedSignalsClass, GetWithTrueIsTheStruct)
{
    add(portA);
    const rh::OwnedValue data = call("get", {number(1).get(), rh::makeLogical(true).get()});
    EXPECT_TRUE(rh::isStruct(data.get()));
    EXPECT_EQ(rh::fieldNames(data.get()).size(), 20U);
    EXPECT_EQ(rh::text(rh::field(data.get(), 0, "BlockPath_")), u"plant/A");
}

TEST_F(InstrumentedSignalsClass, GetGivesAnEmptyValueAndOneWarningWhereTheHostMakesNoObject)
{
    add(portA);
    const rh::ScopedHostFunction refused("Zelmar.HMI.SignalSpecification", fail);
    const rh::OwnedValue object = get(1);
    EXPECT_TRUE(rh::isEmpty(object.get()));
    EXPECT_EQ(rh::Warnings::reported().size(), 1U);
}

TEST_F(InstrumentedSignalsClass, SetReplacesAndRemoveErases)
{
    add(portA);
    call("set", {number(1).get(), makeSignalObject(portB).get()});
    EXPECT_FALSE(isTrue(call("isPortObserved", {makeSignalObject(portA).get()})));
    EXPECT_TRUE(isTrue(call("isPortObserved", {makeSignalObject(portB).get()})));
    call("remove", {number(1).get()});
    EXPECT_EQ(count(), 0.0);
    EXPECT_FALSE(isTrue(call("isPortObserved", {makeSignalObject(portB).get()})));
}

TEST_F(InstrumentedSignalsClass, GetUUIDIsTheTextOfTheElement)
{
    SignalValues values = portA;
    values.uuid = "0fa1e07c-3a5e-4f0b-9d50-3f3d0d5b2d11";
    add(values);
    EXPECT_EQ(rh::utf8Text(call("getUUID", {number(1).get()}).get()), values.uuid);
}

TEST_F(InstrumentedSignalsClass, AnErrorInASignalReachesTheScriptAndAddsNothing)
{
    const rh::OwnedValue spec = makeSignalObject(portA);
    rh::Faults::arm("nvGetPropertyShared", rh::FaultKind::HostException, 7);
    EXPECT_THROW(call("add", {spec.get()}), zmsvException);
    EXPECT_TRUE(rh::Faults::disarm());
    EXPECT_EQ(count(), 0.0);
}

// ---- queries --------------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsClass, AGivenPortIsFoundByHandleAndPort)
{
    SignalValues values = portA;
    values.cachedHandle = 2.5;
    values.cachedPort = 3;
    add(values);
    EXPECT_TRUE(isTrue(call("isGivenPortObserved", {number(2.5).get(), number(3).get()})));
    EXPECT_FALSE(isTrue(call("isGivenPortObserved", {number(2.5).get(), number(4).get()})));
    EXPECT_FALSE(isTrue(call("isGivenPortObserved", {number(3.5).get(), number(3).get()})));
}

TEST_F(InstrumentedSignalsClass, TheGivenPortIsSigned)
{
    SignalValues values = portA;
    values.cachedHandle = 2.5;
    values.cachedPort = -3;
    add(values);
    EXPECT_TRUE(isTrue(call("isGivenPortObserved", {number(2.5).get(), number(-3).get()})));
}

TEST_F(InstrumentedSignalsClass, APortIsObservedByPathAndThenByHandle)
{
    add(portA);
    SignalValues asked = portA;
    asked.cachedHandle = 2.5;
    asked.cachedPort = 1;
    EXPECT_FALSE(isTrue(call("isGivenPortObserved", {number(2.5).get(), number(1).get()})));
    EXPECT_TRUE(isTrue(call("isPortObserved", {makeSignalObject(asked).get()})));
    EXPECT_TRUE(isTrue(call("isGivenPortObserved", {number(2.5).get(), number(1).get()})));
    EXPECT_EQ(count(), 1.0);
}

TEST_F(InstrumentedSignalsClass, ChartActivitiesAreAskedForInInputOrder)
{
    add(stateValues("plant:7", u"3", u"Child"));
    const auto ask = [&](const char* zid, double kzid, const char* activity) {
        return isTrue(call("isGivenKWActivityObserved",
                           {rh::makeText(zid).get(), number(kzid).get(), rh::makeText(activity).get()}));
    };
    EXPECT_TRUE(ask("plant:7", 3.0, "Child"));
    EXPECT_TRUE(ask("7", 3.0, "Child"));
    EXPECT_FALSE(ask("Child", 3.0, "7"));
    EXPECT_FALSE(ask("7", 3.0, "Self"));
    EXPECT_TRUE(isTrue(call("isAnyKWActivityObserved", {rh::makeText("7").get(), number(3).get()})));
    EXPECT_FALSE(isTrue(call("isAnyKWActivityObserved", {rh::makeText("7").get(), number(4).get()})));
}

TEST_F(InstrumentedSignalsClass, ResultsOfQueriesAreLogicals)
{
    EXPECT_EQ(rh::describe(call("isGivenPortObserved", {number(1).get(), number(1).get()}).get()),
              "logical false");
}

// ---- UUIDs of blocks ------------------------------------------------------------------------------------

class UUIDsOfBlocks : public InstrumentedSignalsClass {
protected:
    void SetUp() override
    {
        SignalSpecification::getBlockUUIDmap().clear();
        InstrumentedSignalsClass::SetUp();
    }
    void TearDown() override { SignalSpecification::getBlockUUIDmap().clear(); }

    static std::string uuidFor(double handle, double port, bool useMap)
    {
        return rh::utf8Text(callStatic("getUUIDForBlock", {number(handle).get(), number(port).get(),
                                                           rh::makeLogical(useMap).get()})
                                .get());
    }
    static void setUUIDFor(double handle, double port, const char* uuid)
    {
        callStatic("setUUIDForBlock", {number(handle).get(), number(port).get(), rh::makeText(uuid).get()});
    }
};

TEST_F(UUIDsOfBlocks, AStoredUUIDComesBack)
{
    setUUIDFor(12.5, 2, "stored");
    EXPECT_EQ(uuidFor(12.5, 2, true), "stored");
    EXPECT_NE(uuidFor(2, 12, true), "stored");
    EXPECT_TRUE(SignalSpecification::getBlockUUIDmap().contains("2-12.500000")) << "port, then handle";
}

TEST_F(UUIDsOfBlocks, WithoutTheMapEveryUUIDIsNew)
{
    setUUIDFor(12.5, 2, "stored");
    EXPECT_NE(uuidFor(12.5, 2, false), "stored");
    EXPECT_NE(uuidFor(12.5, 2, false), uuidFor(12.5, 2, false));
}

TEST_F(UUIDsOfBlocks, WithTheMapABlockKeepsItsUUID)
{
    const std::string uuid = uuidFor(12.5, 2, true);
    EXPECT_EQ(uuid.size(), 36U);
    EXPECT_EQ(uuidFor(12.5, 2, true), uuid);
}

TEST_F(UUIDsOfBlocks, TheMapIsTheProcesssNotAnObjects)
{
    call("setUUIDForBlock", {number(12.5).get(), number(2).get(), rh::makeText("stored").get()});
    m_object.reset();
    EXPECT_EQ(uuidFor(12.5, 2, true), "stored");
}

TEST_F(UUIDsOfBlocks, APortBeyondTheSignedRangeWrapsRound)
{
    setUUIDFor(1.0, 4294967295.0, "stored");
    EXPECT_TRUE(SignalSpecification::getBlockUUIDmap().contains("-1-1.000000"));
}

TEST_F(UUIDsOfBlocks, ANegativePortIsAHostError)
{
    EXPECT_THROW(setUUIDFor(1.0, -1.0, "stored"), zmsvException);
}

// ---- faults ---------------------------------------------------------------------------------------------

class InstrumentedSignalsClassFaults : public InstrumentedSignalsClass,
                                       public testing::WithParamInterface<rh::FaultKind> {};

TEST_P(InstrumentedSignalsClassFaults, EveryMethodLeavesNothingOpen)
{
    const rh::OwnedValue a = makeSignalObject(portA);
    const rh::OwnedValue b = makeSignalObject(portB);
    const rh::OwnedValue one = number(1);
    const rh::OwnedValue two = number(2);
    const rh::OwnedValue yes = rh::makeLogical(true);
    const rh::OwnedValue no = rh::makeLogical(false);
    const rh::OwnedValue text = rh::makeText("7");
    const auto callEveryMethod = [&] {
        m_object = rh::ObjectAccess::construct(signalsClass, {text.get()});
        call("add", {a.get()});
        call("add", {b.get()});
        call("set", {two.get(), a.get()});
        call("get", {one.get()});
        call("get", {one.get(), yes.get()});
        call("getUUID", {one.get()});
        call("isPortObserved", {a.get()});
        call("isGivenPortObserved", {one.get(), one.get()});
        call("isGivenKWActivityObserved", {text.get(), one.get(), text.get()});
        call("isAnyKWActivityObserved", {text.get(), one.get()});
        callStatic("setUUIDForBlock", {one.get(), one.get(), text.get()});
        callStatic("getUUIDForBlock", {one.get(), one.get(), no.get()});
        assign("Persistence", property("Persistence"));
        property("Model");
        property("Count");
        call("remove", {one.get()});
    };
    rh::walkFaults(rh::Faults::anyOperation, GetParam(), [&] {
        try {
            callEveryMethod();
        } catch (...) {
            m_object.reset();
            throw;
        }
        m_object.reset();
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, InstrumentedSignalsClassFaults,
                         testing::Values(rh::FaultKind::OutOfMemory, rh::FaultKind::HostException,
                                         rh::FaultKind::Diagnostic),
                         nameOfFaultKind);

}  // namespace
}  // namespace zm_hmi
