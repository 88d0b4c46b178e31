#include "reference_host/values/ValueMaking.hpp"

#include "reference_host/support/HostErrors.hpp"
#include "reference_host/support/MemoryLimit.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/Payload.hpp"

#include <string_view>
#include <unordered_set>
#include <utility>

namespace reference_host {

namespace {

template <class Content>
OwnedValue makeValue(ValueClass valueClass, Dimensions dimensions, Content content)
{
    return openValue(valueClass,
                     std::make_shared<Payload>(Payload{std::move(dimensions), std::move(content)}));
}

OwnedValue makeNumbers(ValueClass valueClass, Dimensions dimensions, bool isComplex)
{
    const std::size_t size = byteCount(valueClass, isComplex, dimensions.elementCount());
    return makeValue(valueClass, std::move(dimensions), Numbers(size, isComplex));
}

OwnedValue makeNumberOf(ValueClass valueClass, double number)
{
    OwnedValue value = makeNumbers(valueClass, Dimensions(1, 1), false);
    std::byte* data = std::get<Numbers>(value->payload->content).data();
    withNumericType(valueClass,
                    [&](auto type) { writeNumber<typename decltype(type)::type>(data, 0, number); });
    return value;
}

ValueClass numericClass(nvClassID classID)
{
    if (classID < nvClassID::Double || classID > nvClassID::UInt64) {
        throwHostError("UnknownClassID", {static_cast<std::int64_t>(classID)});
    }
    return static_cast<ValueClass>(classID);
}

OwnedValue makeFields(ValueClass valueClass, Dimensions dimensions, FieldTable table)
{
    std::unordered_set<std::string_view> names;
    for (const std::string& name : table.names) {
        if (!names.insert(name).second) {
            throwHostError("FieldNamedTwice", {name});
        }
    }
    const std::size_t bytesEach = requireBytes(table.names.size(), sizeof(HeldValue));
    requireBytes(dimensions.elementCount(), bytesEach);
    std::vector<HeldValue> values(dimensions.elementCount() * table.names.size());
    Fields fields{std::make_shared<FieldTable>(std::move(table)), std::move(values)};
    return makeValue(valueClass, std::move(dimensions), std::move(fields));
}

}  // namespace

OwnedValue makeText(std::u16string_view text)
{
    return makeValue(ValueClass::Char, text.empty() ? Dimensions(0, 0) : Dimensions(1, text.size()),
                     std::u16string(text));
}

OwnedValue makeText(std::string_view text)
{
    return makeText(utf16FromUtf8(text));
}

OwnedValue makeCharacters(Dimensions dimensions, std::u16string text)
{
    if (text.size() != dimensions.elementCount()) {
        throwHostError("WrongNumberOfElements",
                       {std::uint64_t{text.size()}, std::uint64_t{dimensions.elementCount()}});
    }
    return makeValue(ValueClass::Char, std::move(dimensions), std::move(text));
}

OwnedValue makeDouble(double value)
{
    return makeNumberOf(ValueClass::Double, value);
}

OwnedValue makeLogical(bool value)
{
    return makeNumberOf(ValueClass::Logical, value ? 1.0 : 0.0);
}

OwnedValue makeNumber(double value, nvClassID classID)
{
    return makeNumberOf(numericClass(classID), value);
}

OwnedValue makeNumeric(Dimensions dimensions, nvClassID classID, nvComplexity complexity)
{
    return makeNumbers(numericClass(classID), std::move(dimensions), complexity == nvComplexity::Complex);
}

OwnedValue makeLogicals(Dimensions dimensions)
{
    return makeNumbers(ValueClass::Logical, std::move(dimensions), false);
}

OwnedValue makeStruct(Dimensions dimensions, std::vector<std::string> fieldNames)
{
    return makeFields(ValueClass::Struct, std::move(dimensions), {std::move(fieldNames), {}});
}

OwnedValue makeStructObject(std::string className, Dimensions dimensions, std::vector<std::string> fieldNames)
{
    return makeFields(ValueClass::StructObject, std::move(dimensions),
                      {std::move(fieldNames), std::move(className)});
}

OwnedValue makeCells(Dimensions dimensions)
{
    requireBytes(dimensions.elementCount(), sizeof(HeldValue));
    Cells cells{std::vector<HeldValue>(dimensions.elementCount())};
    return makeValue(ValueClass::Cell, std::move(dimensions), std::move(cells));
}

OwnedValue makeObjects(std::string className, Dimensions dimensions,
                       std::vector<nvcos::COSInterfacePtr> instances)
{
    if (instances.size() != dimensions.elementCount()) {
        throwHostError("WrongNumberOfElements",
                       {std::uint64_t{instances.size()}, std::uint64_t{dimensions.elementCount()}});
    }
    return makeValue(ValueClass::ClassObject, std::move(dimensions),
                     Objects{std::make_shared<std::string>(std::move(className)), std::move(instances)});
}

OwnedValue makeEmptyValue()
{
    return makeNumbers(ValueClass::Double, Dimensions(0, 0), false);
}

OwnedValue copyDeep(const nvArray* value)
{
    if (value == nullptr) {
        return nullptr;
    }
    requireAlive(value);
    return openValue(value->valueClass, copyPayload(*value, true));
}

OwnedValue copyShared(const nvArray* value)
{
    if (value == nullptr) {
        return nullptr;
    }
    requireAlive(value);
    return openValue(value->valueClass, value->payload);
}

}  // namespace reference_host
