#include "host/Containers.hpp"
#include "host/OwnedArray.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <stdexcept>

namespace reference_host {

namespace {

using nvcos::COSValue;
using test_classes::addProperty;

class PropertyAccessTest : public ClassesTest {
protected:
    /// One object of a class with the property "P", which holds `m_value`.
    OwnedValue makeWithProperty(const char* type,
                                nvcos::COSPropAccess access = nvcos::COSPropAccess::ReadWrite)
    {
        m_script.getValue = [this](nvcos::COSInterface*) { return m_value; };
        m_script.setValue = [this](nvcos::COSInterface*, const COSValue& value) { m_assigned = value; };
        defineThing(
            [=, this](nvcos::COSClass& cosClass) { addProperty(cosClass, "P", type, &m_script, access); });
        return makeThing();
    }

    /// The property makes a new value at each reading and ends it when it is released.
    void makeValueOnReading()
    {
        m_script.getValue = [](nvcos::COSInterface*) { return COSValue(nvCreateDoubleScalar(3.0)); };
        m_script.releaseValue = [](const COSValue& value) { nvDestroyArray(std::get<nvArray*>(value)); };
    }

    test_classes::PropertyScript m_script;
    COSValue m_value;
    COSValue m_assigned;
};

TEST_F(PropertyAccessTest, ReadsByWhatThePropertyHolds)
{
    const OwnedValue thing = makeWithProperty("any");
    m_value = std::u16string(u"model");
    EXPECT_EQ(describe(ObjectAccess::getProperty(thing.get(), "P").get()), "\"model\"");
    m_value = std::uint32_t{2};
    EXPECT_EQ(describe(ObjectAccess::getProperty(thing.get(), "P").get()), "uint32 2");
    m_value = static_cast<nvArray*>(nullptr);
    EXPECT_EQ(describe(ObjectAccess::getProperty(thing.get(), "P").get()), "0x0 double");
    m_value = {};
    EXPECT_EQ(ObjectAccess::getProperty(thing.get(), "P"), nullptr);
}

TEST_F(PropertyAccessTest, ReleasesEachValueOnce)
{
    const OwnedValue thing = makeWithProperty("any");
    makeValueOnReading();
    const OwnedValue value = ObjectAccess::getProperty(thing.get(), "P");
    EXPECT_EQ(m_script.released, 1);
    EXPECT_EQ(describe(value.get()), "double 3");
}

TEST_F(PropertyAccessTest, ReleasesAValueThatCannotBeCopied)
{
    const OwnedValue thing = makeWithProperty("any");
    nvArray* const dead = nvCreateDoubleScalar(1.0);
    nvDestroyArray(dead);
    m_value = dead;
    EXPECT_THROW(ObjectAccess::getProperty(thing.get(), "P"), zmsvException);
    EXPECT_EQ(m_script.released, 1);
    expectMisuses(1);
}

TEST_F(PropertyAccessTest, ReleasesNothingWhenReadingFails)
{
    const OwnedValue thing = makeWithProperty("any");
    m_script.getValue = [](nvcos::COSInterface*) -> COSValue { throw std::runtime_error("unreadable"); };
    EXPECT_THROW(ObjectAccess::getProperty(thing.get(), "P"), std::runtime_error);
    EXPECT_EQ(m_script.released, 0);
}

TEST_F(PropertyAccessTest, AssignsTheConvertedValue)
{
    const OwnedValue thing = makeWithProperty("uint32 scalar");
    ObjectAccess::setProperty(thing.get(), "P", makeDouble(4.0).get());
    EXPECT_EQ(m_assigned, COSValue(std::uint32_t{4}));
}

TEST_F(PropertyAccessTest, AssigningAWrongTypeIsAnErrorThatNamesThePropertyAndTheValue)
{
    const OwnedValue thing = makeWithProperty("uint32 scalar");
    const OwnedValue text = makeText(u"abc");
    EXPECT_EQ(hostError([&] { ObjectAccess::setProperty(thing.get(), "P", text.get()); },
                        {"A.Thing.P", "uint32 scalar", "\"abc\""}),
              "WrongValue");
    EXPECT_EQ(m_assigned, COSValue());
}

TEST_F(PropertyAccessTest, AssignmentReachesAPropertyThatScriptsCannotWrite)
{
    const OwnedValue thing = makeWithProperty("double scalar", nvcos::COSPropAccess::ScriptReadOnly);
    ObjectAccess::setProperty(thing.get(), "P", makeDouble(4.0).get());
    EXPECT_EQ(m_assigned, COSValue(4.0));
}

TEST_F(PropertyAccessTest, AnUnknownPropertyIsAnErrorThatNamesClassAndProperty)
{
    const OwnedValue thing = makeWithProperty("any");
    EXPECT_EQ(hostError([&] { ObjectAccess::getProperty(thing.get(), "Q"); }, {"A.Thing", "\"Q\""}),
              "UnknownProperty");
}

TEST_F(PropertyAccessTest, WhatIsNoObjectHasNoProperties)
{
    const OwnedValue number = makeDouble(1.0);
    EXPECT_EQ(hostError([&] { nvGetProperty(number.get(), 0, "P"); }, {"nvGetProperty", "double 1"}),
              "NoObject");
    EXPECT_THROW(nvGetPropertyShared(nullptr, 0, "P"), zmsvException);
}

TEST_F(PropertyAccessTest, AnIndexPastTheEndIsAnErrorThatNamesTheOperation)
{
    const OwnedValue thing = makeWithProperty("any");
    EXPECT_EQ(
        hostError([&] { nvSetProperty(thing.get(), 1, "P", thing.get()); }, {"nvSetProperty", "1 of 1"}),
        "BadIndex");
}

TEST_F(PropertyAccessTest, ReachesEachObjectOfAnArray)
{
    const OwnedValue first = makeWithProperty("any");
    const OwnedValue second = makeThing();
    nvcos::COSInterface* asked = nullptr;
    m_script.getValue = [&](nvcos::COSInterface* instance) {
        asked = instance;
        return COSValue(1.0);
    };
    const nvcos::COSInterfacePtr wanted = omGetArrayElement(second.get(), 0);
    const OwnedValue both =
        ObjectAccess::makeObjectArray("A.Thing", {omGetArrayElement(first.get(), 0), wanted});
    ObjectAccess::getProperty(both.get(), "P", 1);
    EXPECT_EQ(asked, wanted.get());
}

TEST_F(PropertyAccessTest, TheBoundaryGivesTheEmptyValueOrNullForNoValue)
{
    const OwnedValue thing = makeWithProperty("any");
    const OwnedArray copy(nvGetProperty(thing.get(), 0, "P"));
    EXPECT_EQ(describe(copy.get()), "0x0 double");
    EXPECT_EQ(nvGetPropertyShared(thing.get(), 0, "P"), nullptr);
}

TEST_F(PropertyAccessTest, WhatTheBoundaryGivesBelongsToTheCaller)
{
    const OwnedValue thing = makeWithProperty("any");
    makeValueOnReading();
    const OwnedArray copy(nvGetProperty(thing.get(), 0, "P"));
    const OwnedArray shared(nvGetPropertyShared(thing.get(), 0, "P"));
    EXPECT_EQ(describe(copy.get()), "double 3");
    EXPECT_EQ(describe(shared.get()), "double 3");
    EXPECT_EQ(m_script.released, 2);
}

TEST_F(PropertyAccessTest, AssignedValuesStayTheCallers)
{
    const OwnedValue thing = makeWithProperty("any");
    m_script.setValue = [](nvcos::COSInterface*, const COSValue& value) {
        nvDestroyArray(std::get<nvArray*>(value));
    };
    const OwnedValue value = makeDouble(1.0);
    EXPECT_THROW(nvSetProperty(thing.get(), 0, "P", value.get()), zmsvException);
    EXPECT_EQ(describe(value.get()), "double 1");
    expectMisuses(1);
}

TEST_F(PropertyAccessTest, ReadingAndAssigningSurviveShortMemory)
{
    const OwnedValue thing = makeWithProperty("any");
    makeValueOnReading();
    const OwnedValue value = makeDouble(1.0);
    const auto strikes = walkFaults(Faults::anyOperation, FaultKind::OutOfMemory, [&] {
        const OwnedArray read(nvGetProperty(thing.get(), 0, "P"));
        nvSetProperty(thing.get(), 0, "P", value.get());
    });
    EXPECT_GE(strikes, 2U);
}

}  // namespace

}  // namespace reference_host
