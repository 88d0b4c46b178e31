#include "reference_host/values/ValueDescription.hpp"

#include "reference_host/support/QuotedText.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/Payload.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <string>

namespace reference_host {

const char* builtInClassName(ValueClass valueClass)
{
    switch (valueClass) {
        case ValueClass::Double:
            return "double";
        case ValueClass::Single:
            return "single";
        case ValueClass::Int8:
            return "int8";
        case ValueClass::UInt8:
            return "uint8";
        case ValueClass::Int16:
            return "int16";
        case ValueClass::UInt16:
            return "uint16";
        case ValueClass::Int32:
            return "int32";
        case ValueClass::UInt32:
            return "uint32";
        case ValueClass::Int64:
            return "int64";
        case ValueClass::UInt64:
            return "uint64";
        case ValueClass::Logical:
            return "logical";
        case ValueClass::Char:
            return "char";
        case ValueClass::Struct:
            return "struct";
        case ValueClass::Cell:
            return "cell";
        case ValueClass::StructObject:
        case ValueClass::ClassObject:
            break;
    }
    return "object";
}

namespace {

std::string integerText(const nvArray* value)
{
    const auto* data = static_cast<const std::byte*>(numericData(value));
    return value->valueClass == ValueClass::UInt64 ? std::to_string(readNumber<std::uint64_t>(data, 0))
                                                   : std::to_string(integerElement(value, 0));
}

std::string numberOfScalar(const nvArray* value)
{
    if (value->valueClass == ValueClass::Logical) {
        return isTrueScalar(value) ? "true" : "false";
    }
    const bool isFloating =
        value->valueClass == ValueClass::Double || value->valueClass == ValueClass::Single;
    return isFloating ? numberText(element(value, 0)) : integerText(value);
}

std::string fieldList(const nvArray* value)
{
    std::string list;
    for (const std::string& name : fieldNames(value)) {
        list += (list.empty() ? "" : ", ") + name;
    }
    return " {" + list + "}";
}

bool isRowOfText(const nvArray* value)
{
    const std::vector<std::size_t> sizes = dimensions(value).list();
    const bool isRow = sizes.size() == 2 && sizes[0] == 1;
    const bool isNothing = sizes.size() == 2 && sizes[0] == 0 && sizes[1] == 0;
    return value->valueClass == ValueClass::Char && (isRow || isNothing);
}

std::string describeAlive(const nvArray* value)
{
    if (isRowOfText(value)) {
        return quotedText(utf8Text(value));
    }
    const bool hasNumbers = isNumeric(value) || value->valueClass == ValueClass::Logical;
    if (hasNumbers && elementCount(value) == 1 && !isComplex(value)) {
        return className(value) + " " + numberOfScalar(value);
    }
    return dimensions(value).text() + (isComplex(value) ? " complex " : " ") + className(value) +
           (isStruct(value) ? fieldList(value) : "");
}

}  // namespace

std::string describe(const nvArray* value)
{
    if (value == nullptr) {
        return "null";
    }
    return value->ownership == Ownership::Dead ? "a value that has ended" : describeAlive(value);
}

std::string describeWithSerial(const nvArray* value)
{
    if (value == nullptr) {
        return "null";
    }
    std::string result = "#" + std::to_string(value->serial) + " " + describe(value);
    if (value->ownership == Ownership::Dead) {
        result += ", made by " + std::string(value->madeBy.operationName());
    }
    return result;
}

}  // namespace reference_host
