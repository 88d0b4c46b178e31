#include "reference_host/classes/ValueConversion.hpp"

#include "reference_host/calls/CallArguments.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <cmath>
#include <limits>

namespace reference_host {

namespace {

using nvcos::COSType;
using nvcos::COSValue;
using Kind = COSType::Kind;

bool isText(const nvArray* value)
{
    if (value->valueClass != ValueClass::Char) {
        return isNumeric(value) && isEmpty(value);
    }
    const Dimensions& sizes = dimensions(value);
    return isEmpty(value) || (sizes.count() == 2 && sizes.list().front() == 1);
}

bool isRealScalar(const nvArray* value)
{
    const bool isNumber = isNumeric(value) && !isComplex(value);
    return (isNumber || value->valueClass == ValueClass::Logical) && elementCount(value) == 1;
}

/// The number as that integer type, when it is one of its values.
template <class Integer>
bool convertInteger(double number, COSValue& converted)
{
    const bool fits = number >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
                      number <= static_cast<double>(std::numeric_limits<Integer>::max()) &&
                      std::trunc(number) == number;  // false for NaN, as the comparisons are
    if (fits) {
        converted = static_cast<Integer>(number);
    }
    return fits;
}

bool convertNumber(const nvArray* value, Kind kind, COSValue& converted)
{
    if (!isRealScalar(value)) {
        return false;
    }
    const double number = element(value, 0);
    switch (kind) {
        case Kind::UInt32:
            return convertInteger<std::uint32_t>(number, converted);
        case Kind::Int32:
            return convertInteger<std::int32_t>(number, converted);
        case Kind::Logical:
            converted = number != 0.0;
            return true;
        default:
            converted = number;
            return true;
    }
}

bool isObjectOf(const nvArray* value, const std::string& fullName)
{
    return value->valueClass == ValueClass::ClassObject && elementCount(value) == 1 &&
           isOfClass(value, fullName.c_str());
}

bool convert(const nvArray* value, const COSType& type, COSValue& converted)
{
    switch (type.kind) {
        case Kind::UnicodeString:
            if (isText(value)) {
                converted = text(value);
                return true;
            }
            return false;
        case Kind::AsciiString:
            if (isText(value)) {
                converted = utf8Text(value);
                return true;
            }
            return false;
        case Kind::Any:
            // Borrowed and lent for the call; a body that writes it meets the check for that.
            converted = const_cast<nvArray*>(value);
            return true;
        case Kind::Class:
            converted = const_cast<nvArray*>(value);  // as above
            return isObjectOf(value, type.name);
        default:
            return convertNumber(value, type.kind, converted);
    }
}

std::string expectation(const COSType& type)
{
    switch (type.kind) {
        case Kind::UnicodeString:
        case Kind::AsciiString:
            return "text";
        case Kind::UInt32:
            return "an integer from 0 to 4294967295 (uint32 scalar)";
        case Kind::Int32:
            return "an integer from -2147483648 to 2147483647 (int32 scalar)";
        case Kind::Double:
            return "one real number (double scalar)";
        case Kind::Logical:
            return "one logical or real number (logical scalar)";
        case Kind::Any:
            return "a value";
        case Kind::Class:
            break;
    }
    return "one " + type.name;
}

struct ValueMaker {
    OwnedValue operator()(std::monostate) const { return nullptr; }
    OwnedValue operator()(const std::u16string& value) const { return makeText(value); }
    OwnedValue operator()(const std::string& value) const { return makeText(value); }
    OwnedValue operator()(std::uint32_t value) const { return makeNumber(value, nvClassID::UInt32); }
    OwnedValue operator()(std::int32_t value) const { return makeNumber(value, nvClassID::Int32); }
    OwnedValue operator()(double value) const { return makeDouble(value); }
    OwnedValue operator()(bool value) const { return makeLogical(value); }
    OwnedValue operator()(nvArray* /*value*/) const { return nullptr; }  // excluded by the caller
};

struct NativeValueText {
    std::string operator()(std::monostate) const { return "nothing"; }
    std::string operator()(const std::u16string& value) const
    {
        return describeArgument(std::u16string_view(value));
    }
    std::string operator()(const std::string& value) const
    {
        return describeArgument(std::string_view(value));
    }
    template <class Value>
    std::string operator()(Value value) const
    {
        return describeArgument(value);
    }
    std::string operator()(nvArray* value) const
    {
        return describeArgument(static_cast<const nvArray*>(value));
    }
};

}  // namespace

std::string convertToType(const nvArray* value, const COSType& type, COSValue& converted)
{
    if (value != nullptr) {
        requireAlive(value);
        if (convert(value, type, converted)) {
            return {};
        }
    }
    return "must be " + expectation(type) + ", not " + describe(value);
}

OwnedValue makeValue(const COSValue& value)
{
    return std::visit(ValueMaker{}, value);
}

std::string describeArgument(const NativeValues& values)
{
    std::string text;
    for (const nvcos::COSValue& value : values.values) {
        text += (text.empty() ? "" : ", ") + std::visit(NativeValueText{}, value);
    }
    return "(" + text + ")";
}

}  // namespace reference_host
