#include "reference_host/values/ValueMaking.hpp"

#include "host/Containers.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/values/Misuse.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace reference_host;
using ValueMakingTest = HostTest;
using Sizes = std::vector<std::size_t>;

/// An instance that counts the references to it and does nothing else.
class CountedInstance final : public nvcos::COSInterface {
public:
    void addReference() noexcept override { ++m_references; }
    void releaseReference() noexcept override { --m_references; }
    int references() const { return m_references; }

private:
    int m_references = 0;
};

TEST_F(ValueMakingTest, TextIsARow)
{
    EXPECT_EQ(dimensions(makeText(std::string_view("Größe")).get()).list(), (Sizes{1, 5}));
}

TEST_F(ValueMakingTest, EmptyTextIsZeroByZero)
{
    const OwnedValue value = makeText(std::u16string_view());
    EXPECT_EQ(dimensions(value.get()).list(), (Sizes{0, 0}));
    EXPECT_EQ(className(value.get()), "char");
}

TEST_F(ValueMakingTest, TheEmptyValueIsAZeroByZeroDouble)
{
    const OwnedValue value = makeEmptyValue();
    EXPECT_EQ(dimensions(value.get()).list(), (Sizes{0, 0}));
    EXPECT_EQ(className(value.get()), "double");
}

TEST_F(ValueMakingTest, CharactersHaveToFillTheirDimensions)
{
    EXPECT_EQ(text(makeCharacters(Dimensions(2, 2), u"acbd").get()), u"acbd");
    refusedWith("WrongNumberOfElements", [] { makeCharacters(Dimensions(2, 2), u"abc"); });
}

TEST_F(ValueMakingTest, ANumberIsConvertedToItsClass)
{
    EXPECT_EQ(scalar(makeNumber(300, nvClassID::UInt8).get()), 255.0);
    EXPECT_EQ(scalar(makeNumber(-2.9, nvClassID::Int32).get()), -2.0);
    EXPECT_EQ(scalar(makeNumber(0.5, nvClassID::Single).get()), 0.5);
}

TEST_F(ValueMakingTest, ACodeThatIsNoNumericClassIsRefused)
{
    refusedWith("UnknownClassID", [] { makeNumber(1, static_cast<nvClassID>(5)); });
    refusedWith("UnknownClassID",
                [] { nvCreateNumericScalar(static_cast<nvClassID>(16), nvComplexity::Real); });
}

TEST_F(ValueMakingTest, AFieldNamedTwiceIsRefused)
{
    refusedWith("FieldNamedTwice", [] { makeStruct(Dimensions(1, 1), {"A", "B", "A"}); });
}

TEST_F(ValueMakingTest, AStructBeyondAllMemoryIsRefused)
{
    const std::size_t size = std::numeric_limits<std::size_t>::max() / 2;
    const char* names[] = {"A", "B", "C"};
    EXPECT_THROW(nvCreateStructArray(1, &size, 3, names), zmsvOutOfMemoryException);
}

TEST_F(ValueMakingTest, ObjectsHoldReferencesToTheirInstances)
{
    CountedInstance instance;
    {
        const nvcos::COSInterfacePtr reference(&instance);
        const OwnedValue value = makeObjects("Some.Class", Dimensions(1, 2), {reference, reference});
        EXPECT_EQ(instance.references(), 3);
        EXPECT_EQ(elementCount(value.get()), 2u);
        EXPECT_TRUE(isOfClass(value.get(), "Some.Class"));
        EXPECT_EQ(objects(value.get())[1].get(), &instance);
    }
    EXPECT_EQ(instance.references(), 0);
}

TEST_F(ValueMakingTest, ADeepCopyOfObjectsRefersToTheSameInstances)
{
    CountedInstance instance;
    const OwnedValue value = makeObjects("Some.Class", Dimensions(1, 1), {nvcos::COSInterfacePtr(&instance)});
    const OwnedValue copy = copyDeep(value.get());
    EXPECT_EQ(objects(copy.get())[0].get(), &instance);
    EXPECT_TRUE(isOfClass(copy.get(), "Some.Class"));
}

TEST_F(ValueMakingTest, ObjectsHaveToFillTheirDimensions)
{
    refusedWith("WrongNumberOfElements", [] { makeObjects("Some.Class", Dimensions(1, 2), {}); });
    EXPECT_TRUE(isEmpty(makeObjects("Some.Class", Dimensions(0, 0), {}).get()));
}

TEST_F(ValueMakingTest, ACopyIsOwnedAndInNoScope)
{
    const OwnedValue cells = makeCells(Dimensions(1, 1));
    OwnedValue element = makeDouble(1);
    setScope(element.get(), Scope::Persistent);
    setCell(cells.get(), 0, std::move(element));
    const OwnedValue copy = copyShared(cell(cells.get(), 0));
    EXPECT_EQ(copy->ownership, Ownership::Owned);
    EXPECT_EQ(copy->scope, Scope::None);
}

}  // namespace
