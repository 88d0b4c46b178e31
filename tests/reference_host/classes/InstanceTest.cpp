#include "reference_host/values/ValueMaking.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <stdexcept>

namespace reference_host {

namespace {

using nvcos::COSInterfacePtr;

class InstanceTest : public ClassesTest {};

TEST_F(InstanceTest, HoldsWhatTheClassAllocated)
{
    defineThing();
    const OwnedValue thing = makeThing();
    EXPECT_EQ(omGetInstanceData(omGetArrayElement(thing.get(), 0).get()), &m_thing);
}

TEST_F(InstanceTest, NoInstanceHasNoData)
{
    EXPECT_EQ(omGetInstanceData(nullptr), nullptr);
}

TEST_F(InstanceTest, EndsWithTheValueThatRefersToIt)
{
    defineThing();
    OwnedValue thing = makeThing();
    EXPECT_EQ(m_thing.deallocated, 0);
    thing.reset();
    EXPECT_EQ(m_thing.deallocated, 1);
    EXPECT_EQ(m_thing.lastData, &m_thing);
}

TEST_F(InstanceTest, LivesWhileAnyReferenceDoes)
{
    defineThing();
    OwnedValue thing = makeThing();
    COSInterfacePtr reference = omGetArrayElement(thing.get(), 0);
    OwnedValue copy = copyDeep(thing.get());
    thing.reset();
    copy.reset();
    EXPECT_EQ(m_thing.deallocated, 0);
    reference = COSInterfacePtr();
    EXPECT_EQ(m_thing.deallocated, 1);
}

TEST_F(InstanceTest, ACopyOfAValueRefersToTheSameInstance)
{
    defineThing();
    const OwnedValue thing = makeThing();
    const OwnedValue copy = copyDeep(thing.get());
    EXPECT_EQ(omGetArrayElement(thing.get(), 0).get(), omGetArrayElement(copy.get(), 0).get());
}

TEST_F(InstanceTest, TheClassMayReferToAnInstanceThatEnds)
{
    defineThing();
    m_thing.atDeallocation = [](nvcos::COSInterface* instance) { const COSInterfacePtr reference(instance); };
    makeThing().reset();
    EXPECT_EQ(m_thing.deallocated, 1);
}

TEST_F(InstanceTest, AClassWithoutNativeDataIsAskedToEndNull)
{
    defineThing();
    m_thing.allocate = [] { return nullptr; };
    m_thing.lastData = &m_thing;
    makeThing().reset();
    EXPECT_EQ(m_thing.deallocated, 1);
    EXPECT_EQ(m_thing.lastData, nullptr);
}

TEST_F(InstanceTest, AnInstanceWithoutDataForWantOfMemoryIsNeverDeallocated)
{
    defineThing();
    m_thing.allocate = []() -> void* { throw std::runtime_error("no data"); };
    EXPECT_THROW(makeThing(), std::runtime_error);
    EXPECT_EQ(m_thing.deallocated, 0);
}

TEST_F(InstanceTest, IsCountedWhileItLives)
{
    defineThing();
    makeThing();
    const Ledger::Snapshot before = Ledger::snapshot();
    OwnedValue thing = makeThing();
    const COSInterfacePtr reference = omGetArrayElement(thing.get(), 0);
    thing.reset();
    const std::vector<std::string> open = Ledger::openSince(before);
    ASSERT_EQ(open.size(), 1U);
    EXPECT_NE(open.front().find("class instances"), std::string::npos) << open.front();
}

}  // namespace

}  // namespace reference_host
