#include "hmi_foundation/bindings/HMIBasePI.hpp"

#include "hmi_foundation/bindings/HMICOSMethodInfo.hpp"
#include "host/Array.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi_foundation/bindings/RecordingClass.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace zm_hmi_foundation {
namespace {

namespace rh = reference_host;

class TestProperty final : public HMIBasePI {
public:
    TestProperty(const nvcos::COSClass* owner, ValueKind kind)
        : HMIBasePI(owner, "Test", type_name::doubleScalar, nvcos::COSPropAccess::ScriptReadOnly, kind)
    {
    }
    nvcos::COSValue getValue(nvcos::COSInterface* /*instance*/) override { return 1.0; }
    void setValue(nvcos::COSInterface* /*instance*/, nvcos::COSValue /*value*/) override {}

    using HMIBasePI::getInstanceData;
};

class HMIBasePITest : public zm_hmi::LibraryTest {
protected:
    RecordingClass m_class;
};

TEST_F(HMIBasePITest, APropertyHasNameTypeAndAccess)
{
    const TestProperty property(&m_class, ValueKind::Count);
    EXPECT_STREQ(property.getName(), "Test");
    EXPECT_EQ(property.getType(), getType("double scalar"));
    EXPECT_EQ(property.getAccess(), 5);
}

TEST_F(HMIBasePITest, EveryPropertyAnswersOne)
{
    EXPECT_EQ(TestProperty(&m_class, ValueKind::Count).getVersion(), 1.0);
    EXPECT_EQ(TestProperty(&m_class, ValueKind::NewArray).getVersion(), 1.0);
}

TEST_F(HMIBasePITest, ValueKindsHaveTheirCodes)
{
    EXPECT_EQ(static_cast<int>(ValueKind::Count), 0);
    EXPECT_EQ(static_cast<int>(ValueKind::NewArray), 1);
    EXPECT_EQ(static_cast<int>(ValueKind::Text), 2);
}

TEST_F(HMIBasePITest, TheOwningClassLeadsToTheInstance)
{
    int data = 0;
    m_class.data = &data;
    EXPECT_EQ(TestProperty(&m_class, ValueKind::Count).getInstanceData(nullptr), &data);
}

TEST_F(HMIBasePITest, ReleasingANewArrayDestroysExactlyThatArray)
{
    TestProperty property(&m_class, ValueKind::NewArray);
    nvArray* value = nvCreateDoubleScalar(1.0);
    rh::Journal::startRecording();
    property.releaseValue(nullptr, value);
    rh::Journal::stopRecording();
    EXPECT_EQ(rh::Journal::entries().size(), 1U);
    EXPECT_EQ(rh::Journal::count("nvDestroyArray"), 1U);
    // That it was this one, the ledger says.
}

TEST_F(HMIBasePITest, ReleasingAnyOtherKindDestroysNothing)
{
    TestProperty count(&m_class, ValueKind::Count);
    TestProperty text(&m_class, ValueKind::Text);
    nvArray* value = nvCreateDoubleScalar(1.0);
    rh::Journal::startRecording();
    count.releaseValue(nullptr, std::uint32_t{3});
    count.releaseValue(nullptr, value);
    text.releaseValue(nullptr, std::u16string(u"plant"));
    text.releaseValue(nullptr, value);
    rh::Journal::stopRecording();
    EXPECT_TRUE(rh::Journal::entries().empty());
    nvDestroyArray(value);
}

TEST_F(HMIBasePITest, PropertiesLiveInZeroedMemoryOfTheHost)
{
    rh::Journal::startRecording();
    nvcos::COSPropInfo* property = new TestProperty(&m_class, ValueKind::Count);
    EXPECT_EQ(rh::Journal::count("nvAllocateZeroed"), 1U);
    delete property;  // as the host does it, through its own base
    EXPECT_EQ(rh::Journal::count("nvFree"), 1U);
}

}  // namespace
}  // namespace zm_hmi_foundation
