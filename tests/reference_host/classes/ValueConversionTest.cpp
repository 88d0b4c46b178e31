#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <limits>
#include <optional>

namespace reference_host {

namespace {

using nvcos::COSValue;
using test_classes::Call;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Conversions as the argument of a method meets them.
class ValueConversionTest : public ClassesTest {
protected:
    void SetUp() override
    {
        defineThing([this](nvcos::COSClass& cosClass) {
            for (const char* type : {"unicodeString", "asciiString", "uint32 scalar", "int32 scalar",
                                     "double scalar", "logical scalar", "any", "A.Thing"}) {
                // The object comes in behind a number, so that "A.Thing" makes no instance method.
                test_classes::addMethod(cosClass, {type, {"double scalar", type}, {}, 0, [this](Call& now) {
                                                       m_seen = now.inputs[1];
                                                   }});
            }
        });
    }

    /// What the method sees; nothing when the host refuses the argument.
    std::optional<COSValue> convert(const char* type, const OwnedValue& value)
    {
        const OwnedValue first = makeDouble(0.0);
        try {
            ObjectAccess::callStatic("A.Thing", type, {first.get(), value.get()});
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().key(), "WrongArgument");
            return std::nullopt;
        }
        return m_seen;
    }

    std::optional<COSValue> convertNumber(const char* type, double number)
    {
        return convert(type, makeDouble(number));
    }

private:
    COSValue m_seen;
};

TEST_F(ValueConversionTest, TextIsACharacterRow)
{
    EXPECT_EQ(convert("unicodeString", makeText(u"Gr\u00fc\u00dfe")),
              COSValue(std::u16string(u"Gr\u00fc\u00dfe")));
    EXPECT_EQ(convert("asciiString", makeText(u"Gr\u00fc\u00dfe")), COSValue(std::string("Gr\xc3\xbc\xc3\x9f"
                                                                                         "e")));
}

TEST_F(ValueConversionTest, TextMayBeEmpty)
{
    EXPECT_EQ(convert("unicodeString", makeText(std::u16string_view())), COSValue(std::u16string()));
    EXPECT_EQ(convert("unicodeString", makeCharacters({std::size_t{1}, std::size_t{0}}, u"")),
              COSValue(std::u16string()));
    EXPECT_EQ(convert("asciiString", makeEmptyValue()), COSValue(std::string()));
}

TEST_F(ValueConversionTest, TextIsNoColumnMatrixNumberOrContainer)
{
    EXPECT_FALSE(convert("unicodeString", makeCharacters({std::size_t{2}, std::size_t{1}}, u"ab")));
    EXPECT_FALSE(convert("unicodeString", makeCharacters({std::size_t{2}, std::size_t{2}}, u"abcd")));
    EXPECT_FALSE(convert("unicodeString", makeDouble(65.0)));
    EXPECT_FALSE(convert("asciiString", makeCells({std::size_t{0}, std::size_t{0}})));
    EXPECT_FALSE(convert("asciiString", makeLogicals({std::size_t{0}, std::size_t{0}})));
}

TEST_F(ValueConversionTest, ANumberIsAnyRealNumericOrLogicalScalar)
{
    EXPECT_EQ(convertNumber("double scalar", 2.5), COSValue(2.5));
    EXPECT_EQ(convert("double scalar", makeNumber(3.0, nvClassID::Int8)), COSValue(3.0));
    EXPECT_EQ(convert("double scalar", makeNumber(4.0, nvClassID::UInt64)), COSValue(4.0));
    EXPECT_EQ(convert("double scalar", makeLogical(true)), COSValue(1.0));
}

TEST_F(ValueConversionTest, ANumberIsNoTextArrayComplexNumberOrEmptyValue)
{
    const std::size_t one = 1;
    EXPECT_FALSE(convert("double scalar", makeText(u"1")));
    EXPECT_FALSE(convert("double scalar", makeNumeric({one, std::size_t{2}}, nvClassID::Double)));
    EXPECT_FALSE(convert("double scalar", makeNumeric({one, one}, nvClassID::Double, nvComplexity::Complex)));
    EXPECT_FALSE(convert("double scalar", makeEmptyValue()));
    EXPECT_FALSE(convert("double scalar", makeStruct({one, one}, {})));
}

TEST_F(ValueConversionTest, Uint32TakesTheWholeNumbersOfItsRange)
{
    EXPECT_EQ(convertNumber("uint32 scalar", 0.0), COSValue(std::uint32_t{0}));
    EXPECT_EQ(convertNumber("uint32 scalar", -0.0), COSValue(std::uint32_t{0}));
    EXPECT_EQ(convertNumber("uint32 scalar", 4294967295.0), COSValue(std::uint32_t{4294967295U}));
    EXPECT_EQ(convert("uint32 scalar", makeLogical(true)), COSValue(std::uint32_t{1}));
}

TEST_F(ValueConversionTest, Uint32RefusesWhatItCannotHold)
{
    for (const double number : {-1.0, 0.5, 4294967296.0, infinity, -infinity, notANumber}) {
        EXPECT_FALSE(convertNumber("uint32 scalar", number)) << number;
    }
}

TEST_F(ValueConversionTest, Int32TakesTheWholeNumbersOfItsRange)
{
    EXPECT_EQ(convertNumber("int32 scalar", -2147483648.0),
              COSValue(std::numeric_limits<std::int32_t>::min()));
    EXPECT_EQ(convertNumber("int32 scalar", 2147483647.0),
              COSValue(std::numeric_limits<std::int32_t>::max()));
}

TEST_F(ValueConversionTest, Int32RefusesWhatItCannotHold)
{
    for (const double number : {-2147483649.0, -0.5, 2147483648.0, infinity, -infinity, notANumber}) {
        EXPECT_FALSE(convertNumber("int32 scalar", number)) << number;
    }
}

TEST_F(ValueConversionTest, ALogicalIsTrueForAnythingButZero)
{
    EXPECT_EQ(convertNumber("logical scalar", 0.0), COSValue(false));
    EXPECT_EQ(convertNumber("logical scalar", -0.0), COSValue(false));
    EXPECT_EQ(convertNumber("logical scalar", -2.5), COSValue(true));
    EXPECT_EQ(convertNumber("logical scalar", notANumber), COSValue(true));
    EXPECT_EQ(convert("logical scalar", makeLogical(true)), COSValue(true));
    EXPECT_FALSE(convert("logical scalar", makeText(u"true")));
}

TEST_F(ValueConversionTest, AnyPassesTheVeryValue)
{
    const OwnedValue cells = makeCells({std::size_t{2}, std::size_t{3}});
    EXPECT_EQ(convert("any", cells), COSValue(cells.get()));
}

TEST_F(ValueConversionTest, AClassTakesOneObjectOfItself)
{
    const OwnedValue thing = makeThing();
    EXPECT_EQ(convert("A.Thing", thing), COSValue(thing.get()));
}

TEST_F(ValueConversionTest, AClassRefusesEverythingElse)
{
    test_classes::ClassScript other;
    test_classes::addClass(*test_classes::findNamespace("A"), "Other", other);
    EXPECT_FALSE(convert("A.Thing", ObjectAccess::construct("A.Other")));
    EXPECT_FALSE(convert("A.Thing", ObjectAccess::makeObjectArray("A.Thing", {})));
    EXPECT_FALSE(convert("A.Thing", makeStruct({std::size_t{1}, std::size_t{1}}, {})));
    EXPECT_FALSE(convert("A.Thing", makeEmptyValue()));
    const OwnedValue thing = makeThing();
    const nvcos::COSInterfacePtr instance = omGetArrayElement(thing.get(), 0);
    EXPECT_FALSE(convert("A.Thing", ObjectAccess::makeObjectArray("A.Thing", {instance, instance})));
}

}  // namespace

}  // namespace reference_host
