#include "hmi_foundation/bindings/InstrumentedSignalsCOSClassInfo.hpp"

#include "hmi/InstrumentedSignals.hpp"
#include "host/OwnedArray.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/hmi_foundation/bindings/RecordingClass.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace zm_hmi_foundation {
namespace {

namespace rh = reference_host;
using nvcos::COSValue;
using zm_hmi::InstrumentedSignals;

class InstrumentedSignalsCOSClassInfoTest : public zm_hmi::LibraryTest {
protected:
    void initialize() { m_info.initializeClass(&m_class, nullptr); }

    InstrumentedSignalsCOSClassInfo m_info;
    RecordingClass m_class;
};

TEST_F(InstrumentedSignalsCOSClassInfoTest, ClassNameIsTheOneWithinTheNamespace)
{
    EXPECT_STREQ(m_info.getClassName(), "InstrumentedSignals");
}

TEST_F(InstrumentedSignalsCOSClassInfoTest, RegistersPropertiesThenMethodsInOrder)
{
    initialize();
    EXPECT_EQ(m_class.order,
              (std::vector<std::string>{"Model", "Count", "Persistence", "InstrumentedSignals", "add", "set",
                                        "remove", "get", "isPortObserved", "isGivenKWActivityObserved",
                                        "isAnyKWActivityObserved", "isGivenPortObserved", "setUUIDForBlock",
                                        "getUUIDForBlock", "getUUID"}));
}

TEST_F(InstrumentedSignalsCOSClassInfoTest, EveryDescriptorLivesInMemoryOfTheHost)
{
    rh::Journal::startRecording();
    initialize();
    EXPECT_EQ(rh::Journal::count("nvAllocateZeroed"), 15U);
    m_class.properties.clear();
    m_class.methods.clear();
    EXPECT_EQ(rh::Journal::count("nvFree"), 15U);
}

TEST_F(InstrumentedSignalsCOSClassInfoTest, ShortMemoryLeavesTheRestUnregistered)
{
    rh::Faults::arm("nvAllocateZeroed", rh::FaultKind::Null, 6);
    EXPECT_THROW(initialize(), zmsvOutOfMemoryException);
    EXPECT_TRUE(rh::Faults::disarm());
    EXPECT_EQ(m_class.order,
              (std::vector<std::string>{"Model", "Count", "Persistence", "InstrumentedSignals", "add"}));
}

TEST_F(InstrumentedSignalsCOSClassInfoTest, AFailingRegistrationLeavesNothingOpen)
{
    for (const rh::FaultKind kind :
         {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException, rh::FaultKind::Null}) {
        rh::walkFaults(rh::Faults::anyOperation, kind, [] {
            RecordingClass recording;
            InstrumentedSignalsCOSClassInfo info;
            info.initializeClass(&recording, nullptr);
        });
    }
}

/// A class object that takes so many members and refuses the next.
class RefusingClass final : public nvcos::COSClass {
public:
    explicit RefusingClass(std::size_t taken) : m_left(taken) {}
    ~RefusingClass() override = default;
    void addProperty(nvcos::COSPropInfo* property) override
    {
        take([&] { m_properties.emplace_back(property); });
    }
    void addMethod(nvcos::COSMethodInfo* method) override
    {
        take([&] { m_methods.emplace_back(method); });
    }
    void* getInstanceData(const nvcos::COSInterface* /*instance*/) const noexcept override { return nullptr; }

private:
    template <class Take>
    void take(Take doTake)
    {
        if (m_left == 0) {
            zm_hmi::throwTestError("Refused");
        }
        --m_left;
        doTake();
    }

    std::size_t m_left;
    std::vector<std::unique_ptr<nvcos::COSPropInfo>> m_properties;
    std::vector<std::unique_ptr<nvcos::COSMethodInfo>> m_methods;
};

TEST_F(InstrumentedSignalsCOSClassInfoTest, AMemberThatTheHostRefusesIsFreed)
{
    for (std::size_t taken = 0; taken < 15; ++taken) {
        RefusingClass refusing(taken);
        EXPECT_THROW(m_info.initializeClass(&refusing, nullptr), zmsvException);
    }
}

// ---- instances --------------------------------------------------------------------------------------

TEST_F(InstrumentedSignalsCOSClassInfoTest, AnInstanceHasAnEmptyCollectionOfItsOwn)
{
    void* one = m_info.allocateInstance(nullptr);
    void* other = m_info.allocateInstance(nullptr);
    EXPECT_NE(one, other);
    EXPECT_EQ(static_cast<InstrumentedSignals*>(one)->getCount(), 0U);
    EXPECT_EQ(static_cast<InstrumentedSignals*>(one)->getModelName(), u"");
    m_info.deallocateInstance(nullptr, one);
    m_info.deallocateInstance(nullptr, other);
}

TEST_F(InstrumentedSignalsCOSClassInfoTest, EndingAnInstanceEndsItsCollection)
{
    const zm_hmi::SignalSpecificationPtr signal = zm_hmi::makeSignal({});
    void* data = m_info.allocateInstance(nullptr);
    static_cast<InstrumentedSignals*>(data)->add(signal);
    m_info.deallocateInstance(nullptr, data);
    EXPECT_EQ(signal.use_count(), 1);
}

TEST_F(InstrumentedSignalsCOSClassInfoTest, EndingAnInstanceWithoutDataDoesNothing)
{
    m_info.deallocateInstance(nullptr, nullptr);
}

// ---- what the host sees when it calls -----------------------------------------------------------------

class InvokedMethods : public InstrumentedSignalsCOSClassInfoTest {
protected:
    void SetUp() override
    {
        InstrumentedSignalsCOSClassInfoTest::SetUp();
        initialize();
        m_object = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
        signals().add(zm_hmi::makeSignal(zm_hmi::distinctValues()));
    }

    InstrumentedSignals& signals() { return *InstrumentedSignals::getFromNVArray(m_object.get()); }
    nvArray* object() { return m_object.get(); }

    /// The output count after the call, which is made with 7. The result ends.
    int countAfter(const char* method, const std::vector<COSValue>& inputs)
    {
        int count = 7;
        COSValue output;
        m_class.method(method).invoke(nullptr, count, &output, static_cast<int>(inputs.size()),
                                      inputs.data());
        if (nvArray** value = std::get_if<nvArray*>(&output)) {
            nvDestroyArray(*value);
        }
        return count;
    }

private:
    rh::OwnedValue m_object;
};

TEST_F(InvokedMethods, MethodsWithAResultSetTheOutputCountToOne)
{
    const rh::OwnedValue spec = zm_hmi::makeSignalObject({});
    const COSValue self = object();
    const std::u16string text = u"1";
    EXPECT_EQ(countAfter("get", {self, std::uint32_t{1}}), 1);
    EXPECT_EQ(countAfter("getUUID", {self, std::uint32_t{1}}), 1);
    EXPECT_EQ(countAfter("isPortObserved", {self, spec.get()}), 1);
    EXPECT_EQ(countAfter("isGivenPortObserved", {self, 1.0, std::int32_t{1}}), 1);
    EXPECT_EQ(countAfter("isGivenKWActivityObserved", {self, text, 1.0, text}), 1);
    EXPECT_EQ(countAfter("isAnyKWActivityObserved", {self, text, 1.0}), 1);
}

TEST_F(InvokedMethods, GettingAUUIDForABlockLeavesTheOutputCountAsItCame)
{
    EXPECT_EQ(countAfter("getUUIDForBlock", {1.0, std::uint32_t{1}, false}), 7);
}

TEST_F(InvokedMethods, MethodsWithoutAResultLeaveTheOutputCountAsItCame)
{
    const rh::OwnedValue spec = zm_hmi::makeSignalObject({});
    const COSValue self = object();
    EXPECT_EQ(countAfter("add", {self, spec.get()}), 7);
    EXPECT_EQ(countAfter("set", {self, std::uint32_t{1}, spec.get()}), 7);
    EXPECT_EQ(countAfter("remove", {self, std::uint32_t{1}}), 7);
}

TEST_F(InvokedMethods, TheConstructorTakesTheObjectFromItsOutput)
{
    int count = 0;
    COSValue output = object();
    const COSValue name = std::u16string(u"plant");
    m_class.method("InstrumentedSignals").invoke(nullptr, count, &output, 1, &name);
    EXPECT_EQ(signals().getModelName(), u"plant");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(std::get<nvArray*>(output), object());
    m_class.method("InstrumentedSignals").invoke(nullptr, count, &output, 0, nullptr);
    EXPECT_EQ(signals().getModelName(), u"plant") << "no input, no change";
}

TEST_F(InvokedMethods, GetReadsItsFlagOnlyWhereThreeInputsWerePassed)
{
    // The flag's place is not looked at: what stands there is no flag.
    const std::vector<COSValue> inputs = {object(), std::uint32_t{1}, std::u16string(u"not a flag")};
    int count = 0;
    COSValue output;
    m_class.method("get").invoke(nullptr, count, &output, 2, inputs.data());
    const OwnedArray result(std::get<nvArray*>(output));
    EXPECT_FALSE(nvIsStruct(result.get()));
}

TEST_F(InvokedMethods, GetGivesANullObjectWhereTheHostMakesNone)
{
    const rh::ScopedHostFunction refused("Zelmar.HMI.SignalSpecification", zm_hmi::fail);
    const std::vector<COSValue> inputs = {object(), std::uint32_t{1}};
    int count = 0;
    COSValue output;
    m_class.method("get").invoke(nullptr, count, &output, 2, inputs.data());
    ASSERT_TRUE(std::holds_alternative<nvArray*>(output));
    EXPECT_EQ(std::get<nvArray*>(output), nullptr);
    EXPECT_EQ(count, 1);
}

TEST_F(InvokedMethods, TextAndCountOfAPropertyAreValuesNotArrays)
{
    signals().setModelName(u"plant");
    m_class.data = &signals();
    EXPECT_EQ(m_class.property("Model").getValue(nullptr), COSValue(std::u16string(u"plant")));
    EXPECT_EQ(m_class.property("Count").getValue(nullptr), COSValue(std::uint32_t{1}));
}

TEST_F(InvokedMethods, PersistenceIsANewArrayThatReleasingEnds)
{
    m_class.data = &signals();
    nvcos::COSPropInfo& persistence = m_class.property("Persistence");
    const COSValue value = persistence.getValue(nullptr);
    const COSValue again = persistence.getValue(nullptr);
    EXPECT_NE(std::get<nvArray*>(value), std::get<nvArray*>(again));
    EXPECT_TRUE(nvIsStruct(std::get<nvArray*>(value)));
    persistence.releaseValue(nullptr, value);
    persistence.releaseValue(nullptr, again);
}

}  // namespace
}  // namespace zm_hmi_foundation
