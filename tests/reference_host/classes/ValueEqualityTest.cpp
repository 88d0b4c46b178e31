#include "reference_host/classes/ValueEquality.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <cmath>
#include <limits>
#include <utility>

namespace reference_host {

namespace {

class ValueEqualityTest : public ClassesTest {
protected:
    /// Both ways round, which has to give the same.
    static bool equal(const OwnedValue& left, const OwnedValue& right)
    {
        const bool result = areEqual(left.get(), right.get());
        EXPECT_EQ(areEqual(right.get(), left.get()), result);
        return result;
    }

    static OwnedValue makeNumbers(const std::vector<double>& numbers, nvClassID classID = nvClassID::Double)
    {
        OwnedValue value = makeNumeric(Dimensions(1, numbers.size()), classID);
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            setElement(value.get(), i, numbers[i]);
        }
        return value;
    }

    template <class Integer>
    static OwnedValue makeInteger(Integer number, nvClassID classID)
    {
        OwnedValue value = makeNumeric(Dimensions(1, 1), classID);
        *static_cast<Integer*>(writableNumericData(value.get())) = number;
        return value;
    }

    static OwnedValue makeComplexNumber(double real, double imaginary)
    {
        OwnedValue value = makeNumeric(Dimensions(1, 1), nvClassID::Double, nvComplexity::Complex);
        auto* pair = static_cast<double*>(writableNumericData(value.get()));
        pair[0] = real;
        pair[1] = imaginary;
        return value;
    }

    static OwnedValue makeRecord(const std::vector<std::string>& names, double number)
    {
        OwnedValue value = makeStruct(Dimensions(1, 1), names);
        for (const std::string& name : names) {
            setField(value.get(), 0, name.c_str(), makeDouble(number));
        }
        return value;
    }

    static OwnedValue makeCell(OwnedValue content)
    {
        OwnedValue value = makeCells(Dimensions(1, 1));
        setCell(value.get(), 0, std::move(content));
        return value;
    }
};

TEST_F(ValueEqualityTest, NumbersAreComparedWhateverTheirClasses)
{
    EXPECT_TRUE(equal(makeDouble(1.0), makeNumber(1.0, nvClassID::UInt32)));
    EXPECT_TRUE(equal(makeDouble(1.0), makeLogical(true)));
    EXPECT_TRUE(equal(makeNumber(-3.0, nvClassID::Int8), makeNumber(-3.0, nvClassID::Single)));
    EXPECT_FALSE(equal(makeDouble(1.0), makeDouble(2.0)));
    EXPECT_FALSE(equal(makeDouble(0.1), makeNumber(0.1, nvClassID::Single)));
}

TEST_F(ValueEqualityTest, EveryElementCounts)
{
    EXPECT_TRUE(equal(makeNumbers({1, 2, 3}), makeNumbers({1, 2, 3}, nvClassID::Int16)));
    EXPECT_FALSE(equal(makeNumbers({1, 2, 3}), makeNumbers({1, 2, 4})));
}

TEST_F(ValueEqualityTest, LargeIntegersAreNotRounded)
{
    const auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_TRUE(equal(makeInteger(most, nvClassID::Int64),
                      makeInteger(static_cast<std::uint64_t>(most), nvClassID::UInt64)));
    EXPECT_FALSE(equal(makeInteger(most, nvClassID::Int64), makeInteger(most - 1, nvClassID::Int64)));
    EXPECT_FALSE(equal(makeInteger(most, nvClassID::Int64), makeDouble(9223372036854775808.0)));
    EXPECT_FALSE(equal(makeInteger(std::int64_t{-1}, nvClassID::Int64),
                       makeInteger(std::numeric_limits<std::uint64_t>::max(), nvClassID::UInt64)));
}

TEST_F(ValueEqualityTest, NaNDiffersFromEverythingAndItself)
{
    const OwnedValue nan = makeDouble(std::nan(""));
    EXPECT_FALSE(equal(nan, nan));
    EXPECT_FALSE(equal(nan, makeDouble(0.0)));
}

TEST_F(ValueEqualityTest, NegativeZeroEqualsZeroAndInfinitiesThemselves)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(equal(makeDouble(-0.0), makeDouble(0.0)));
    EXPECT_TRUE(equal(makeDouble(infinity), makeDouble(infinity)));
    EXPECT_FALSE(equal(makeDouble(infinity), makeDouble(-infinity)));
}

TEST_F(ValueEqualityTest, ComplexNumbersEqualRealOnesWithoutAnImaginaryPart)
{
    EXPECT_TRUE(equal(makeComplexNumber(2.0, 0.0), makeDouble(2.0)));
    EXPECT_FALSE(equal(makeComplexNumber(2.0, 1.0), makeDouble(2.0)));
    EXPECT_FALSE(equal(makeComplexNumber(2.0, 1.0), makeComplexNumber(2.0, 2.0)));
}

TEST_F(ValueEqualityTest, DimensionsCount)
{
    EXPECT_FALSE(equal(makeLogicals(Dimensions(1, 2)), makeLogicals(Dimensions(2, 1))));
    EXPECT_FALSE(equal(makeCells(Dimensions(0, 0)), makeCells(Dimensions(1, 0))));
    EXPECT_TRUE(equal(makeCells(Dimensions(0, 3)), makeCells(Dimensions(0, 3))));
}

TEST_F(ValueEqualityTest, TextEqualsTheSameTextAndNothingElse)
{
    EXPECT_TRUE(equal(makeText(u"\u00e4"), makeText(u"\u00e4")));
    EXPECT_FALSE(equal(makeText(u"\u00e4"), makeText(u"\u00c4")));
    EXPECT_FALSE(equal(makeText("A"), makeDouble(65.0)));
    EXPECT_FALSE(equal(makeText(""), makeEmptyValue()));
    EXPECT_TRUE(
        equal(makeText(std::u16string_view(u"\xd800", 1)), makeText(std::u16string_view(u"\xd800", 1))));
}

TEST_F(ValueEqualityTest, FieldsMayStandInAnyOrder)
{
    EXPECT_TRUE(equal(makeRecord({"A", "B"}, 1.0), makeRecord({"B", "A"}, 1.0)));
    EXPECT_FALSE(equal(makeRecord({"A", "B"}, 1.0), makeRecord({"A", "B"}, 2.0)));
    EXPECT_FALSE(equal(makeRecord({"A"}, 1.0), makeRecord({"B"}, 1.0)));
    EXPECT_FALSE(equal(makeRecord({"A"}, 1.0), makeRecord({"A", "B"}, 1.0)));
}

TEST_F(ValueEqualityTest, FieldNamesCountWhereThereAreNoElements)
{
    EXPECT_FALSE(equal(makeStruct(Dimensions(1, 0), {"A"}), makeStruct(Dimensions(1, 0), {"B"})));
    EXPECT_TRUE(equal(makeStruct(Dimensions(1, 0), {"A"}), makeStruct(Dimensions(1, 0), {"A"})));
}

TEST_F(ValueEqualityTest, EveryElementOfAStructArrayCounts)
{
    const auto make = [](double second) {
        OwnedValue value = makeStruct(Dimensions(1, 2), {"A"});
        setField(value.get(), 0, "A", makeDouble(1.0));
        setField(value.get(), 1, "A", makeDouble(second));
        return value;
    };
    EXPECT_TRUE(equal(make(2.0), make(2.0)));
    EXPECT_FALSE(equal(make(2.0), make(3.0)));
}

TEST_F(ValueEqualityTest, OlderObjectsAreOfOneClassToo)
{
    const auto make = [](const char* className) {
        return makeStructObject(className, Dimensions(1, 1), {"A"});
    };
    EXPECT_TRUE(equal(make("Old"), make("Old")));
    EXPECT_FALSE(equal(make("Old"), make("Older")));
    EXPECT_FALSE(equal(make("Old"), makeStruct(Dimensions(1, 1), {"A"})));
}

TEST_F(ValueEqualityTest, ContainersAreComparedAtEveryDepth)
{
    EXPECT_TRUE(equal(makeCell(makeCell(makeText("x"))), makeCell(makeCell(makeText("x")))));
    EXPECT_FALSE(equal(makeCell(makeCell(makeText("x"))), makeCell(makeCell(makeText("y")))));
}

TEST_F(ValueEqualityTest, WhatIsMissingCountsAsTheEmptyValue)
{
    const OwnedValue unset = makeStruct(Dimensions(1, 1), {"A"});
    OwnedValue set = makeStruct(Dimensions(1, 1), {"A"});
    setField(set.get(), 0, "A", makeEmptyValue());
    EXPECT_TRUE(equal(unset, set));
    EXPECT_TRUE(equal(makeCells(Dimensions(1, 1)), makeCell(makeEmptyValue())));
    EXPECT_TRUE(equal(nullptr, nullptr));
    EXPECT_TRUE(equal(nullptr, makeEmptyValue()));
    EXPECT_FALSE(equal(nullptr, makeText("")));
    EXPECT_FALSE(equal(nullptr, makeNumbers({})));
    EXPECT_FALSE(equal(makeCells(Dimensions(1, 1)), makeCell(makeDouble(0.0))));
}

TEST_F(ValueEqualityTest, ClassesOfContainersCount)
{
    EXPECT_FALSE(equal(makeCell(makeDouble(1.0)), makeDouble(1.0)));
    EXPECT_FALSE(equal(makeCells(Dimensions(1, 1)), makeStruct(Dimensions(1, 1), {})));
}

// ---- objects ------------------------------------------------------------------------------------

/// "A.Card" with a name, anything more, and a label that differs with every reading.
class ObjectEqualityTest : public ValueEqualityTest {
protected:
    void SetUp() override
    {
        ClassSystem::contributeClass("A", [] {
            const auto makeLabel = [count = 0](const nvArray* /*object*/) mutable {
                return makeDouble(++count);
            };
            return makeRecordClass("Card", {textProperty("Name"), anyProperty("More"),
                                            computedProperty("Label", "any", makeLabel)});
        });
        ClassSystem::contributeClass("A", [] { return makeRecordClass("Other", {textProperty("Name")}); });
        ClassSystem::contributeClass("A", [] { return makeRecordClass("Plain", {}); });
        ClassSystem::createNamespace("A");
    }

    static OwnedValue makeNamed(const char* className, const char* name)
    {
        OwnedValue object = ObjectAccess::construct(className);
        ObjectAccess::setProperty(object.get(), "Name", makeText(name).get());
        return object;
    }
    static OwnedValue makeCard(const char* name) { return makeNamed("A.Card", name); }
    static OwnedValue arrayOf(const OwnedValue& first, const OwnedValue& second)
    {
        return ObjectAccess::makeObjectArray("A.Card",
                                             {objects(first.get()).front(), objects(second.get()).front()});
    }
};

TEST_F(ObjectEqualityTest, HandlesOfOneInstanceAreEqual)
{
    const OwnedValue plain = ObjectAccess::construct("A.Plain");
    EXPECT_TRUE(equal(plain, copyDeep(plain.get())));
}

TEST_F(ObjectEqualityTest, InstancesAreEqualWhenTheirAssignablePropertiesAre)
{
    EXPECT_TRUE(equal(makeCard("a"), makeCard("a")));
    EXPECT_FALSE(equal(makeCard("a"), makeCard("b")));
}

TEST_F(ObjectEqualityTest, InstancesWithoutSuchAPropertyAreNeverEqual)
{
    EXPECT_FALSE(equal(ObjectAccess::construct("A.Plain"), ObjectAccess::construct("A.Plain")));
}

TEST_F(ObjectEqualityTest, InstancesOfDifferentClassesDiffer)
{
    EXPECT_FALSE(equal(makeCard("a"), makeNamed("A.Other", "a")));
}

TEST_F(ObjectEqualityTest, EveryObjectOfAnArrayCounts)
{
    const OwnedValue a = makeCard("a");
    const OwnedValue b = makeCard("b");
    EXPECT_TRUE(equal(arrayOf(a, b), arrayOf(makeCard("a"), b)));
    EXPECT_FALSE(equal(arrayOf(a, b), arrayOf(a, a)));
}

TEST_F(ObjectEqualityTest, ObjectsInsideObjectsAreComparedToo)
{
    const auto makeOuter = [](const char* innerName) {
        OwnedValue outer = makeCard("outer");
        ObjectAccess::setProperty(outer.get(), "More", makeCard(innerName).get());
        return outer;
    };
    EXPECT_TRUE(equal(makeOuter("a"), makeOuter("a")));
    EXPECT_FALSE(equal(makeOuter("a"), makeOuter("b")));
}

TEST_F(ObjectEqualityTest, ObjectsThatLeadBackToThemselvesCanBeCompared)
{
    const OwnedValue a = makeCard("a");
    const OwnedValue b = makeCard("a");
    ObjectAccess::setProperty(a.get(), "More", b.get());
    ObjectAccess::setProperty(b.get(), "More", a.get());
    EXPECT_TRUE(equal(a, b));
    ObjectAccess::setProperty(a.get(), "More", makeEmptyValue().get());
    ObjectAccess::setProperty(b.get(), "More", makeEmptyValue().get());
}

// ---- the host function --------------------------------------------------------------------------

TEST_F(ValueEqualityTest, TheHostFunctionGivesOneLogicalForTwoValues)
{
    const ScopedHostFunction function("isequal", isEqual);
    const OwnedValue one = makeDouble(1.0);
    const OwnedValue two = makeDouble(2.0);
    const auto call = [](const std::vector<const nvArray*>& inputs) {
        return describe(HostFunctions::call("isequal", inputs, 1).front().get());
    };
    EXPECT_EQ(call({one.get(), one.get()}), "logical true");
    EXPECT_EQ(call({one.get(), two.get()}), "logical false");
    EXPECT_EQ(hostError([&] { call({one.get()}); }, {"isequal", "1"}), "WrongArgument");
    EXPECT_EQ(hostError([&] { call({one.get(), one.get(), one.get()}); }, {"isequal", "3"}), "WrongArgument");
}

}  // namespace

}  // namespace reference_host
