#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

using nvcos::COSInterfacePtr;

class ObjectElementsTest : public ClassesTest {};

TEST_F(ObjectElementsTest, SplitsAnArrayIntoScalars)
{
    defineThing();
    const OwnedValue first = makeThing();
    const OwnedValue second = makeThing();
    const OwnedValue both = ObjectAccess::makeObjectArray(
        "A.Thing", {omGetArrayElement(first.get(), 0), omGetArrayElement(second.get(), 0)});
    EXPECT_EQ(describe(both.get()), "2x1 A.Thing");
    const OwnedValue split(omCreateNVCOSScalar(omGetArrayElement(both.get(), 1)));
    EXPECT_EQ(describe(split.get()), "1x1 A.Thing");
    EXPECT_EQ(omGetArrayElement(split.get(), 0).get(), omGetArrayElement(second.get(), 0).get());
}

TEST_F(ObjectElementsTest, AnEmptyArrayHasAClassAndNoElements)
{
    defineThing();
    const OwnedValue none = ObjectAccess::makeObjectArray("A.Thing", {});
    EXPECT_TRUE(nvIsEmpty(none.get()));
    EXPECT_TRUE(nvIsA(none.get(), "A.Thing"));
    EXPECT_EQ(hostError([&] { omGetArrayElement(none.get(), 0); }, {"omGetArrayElement", "0 of 0"}),
              "BadIndex");
}

TEST_F(ObjectElementsTest, AnElementOfWhatIsNoObjectArrayIsAnErrorThatNamesTheOperation)
{
    const OwnedValue number = makeDouble(1.0);
    EXPECT_EQ(hostError([&] { omGetArrayElement(number.get(), 0); }, {"omGetArrayElement"}), "NoObject");
    EXPECT_THROW(omGetArrayElement(nullptr, 0), zmsvException);
}

TEST_F(ObjectElementsTest, NoInstanceMakesNoValue)
{
    EXPECT_EQ(hostError([] { omCreateNVCOSScalar(COSInterfacePtr()); }, {"omCreateNVCOSScalar"}), "NoObject");
}

TEST_F(ObjectElementsTest, AnArrayHoldsInstancesOfOneClass)
{
    defineThing();
    test_classes::ClassScript other;
    test_classes::addClass(*test_classes::findNamespace("A"), "Other", other);
    const OwnedValue thing = ObjectAccess::construct("A.Other");
    const COSInterfacePtr instance = omGetArrayElement(thing.get(), 0);
    EXPECT_EQ(
        hostError([&] { ObjectAccess::makeObjectArray("A.Thing", {instance}); }, {"A.Thing", "A.Other"}),
        "MixedClasses");
    EXPECT_EQ(hostError([] { ObjectAccess::makeObjectArray("A.Thing", {COSInterfacePtr()}); }, {"A.Thing"}),
              "MixedClasses");
}

}  // namespace

}  // namespace reference_host
