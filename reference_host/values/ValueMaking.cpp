#include "reference_host/values/ValueMaking.hpp"

#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/MemoryLimit.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/Payload.hpp"

#include <cstring>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <utility>

namespace reference_host {

namespace {

OwnedValue openValue(ValueClass valueClass, std::shared_ptr<Payload> payload)
{
    nvArray* value = liveValueRegistry().open();
    value->payload = std::move(payload);
    value->madeBy = CallSite::current();
    value->loans = 0;
    value->valueClass = valueClass;
    value->ownership = Ownership::Owned;
    value->scope = Scope::None;
    value->meantToLive = false;
    return OwnedValue(value);
}

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
        throwHostError("WrongNumberOfElements", {text.size(), dimensions.elementCount()});
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
        throwHostError("WrongNumberOfElements", {instances.size(), dimensions.elementCount()});
    }
    return makeValue(ValueClass::ClassObject, std::move(dimensions),
                     Objects{std::make_shared<std::string>(std::move(className)), std::move(instances)});
}

OwnedValue makeEmptyValue()
{
    return makeNumbers(ValueClass::Double, Dimensions(0, 0), false);
}

namespace {

HeldValue held(OwnedValue value) noexcept
{
    if (value) {
        value->ownership = Ownership::Held;
    }
    return HeldValue(value.release());
}

std::vector<HeldValue> copyHeld(const std::vector<HeldValue>& values, bool deep)
{
    std::vector<HeldValue> copies;
    copies.reserve(values.size());
    for (const HeldValue& value : values) {
        copies.push_back(held(deep ? copyDeep(value.get()) : copyShared(value.get())));
    }
    return copies;
}

/// A copy of a value's payload; the values that it holds become shared or deep copies.
std::shared_ptr<Payload> copyPayload(const nvArray& value, bool deep)
{
    const Payload& payload = *value.payload;
    const std::size_t count = payload.dimensions.elementCount();
    auto content = std::visit(
        [&](const auto& from) -> decltype(Payload::content) {
            using Content = std::decay_t<decltype(from)>;
            if constexpr (std::is_same_v<Content, Numbers>) {
                const std::size_t size = byteCount(value.valueClass, from.isComplex(), count);
                Numbers copy(size, from.isComplex());
                std::memcpy(copy.data(), from.data(), size);
                return copy;
            } else if constexpr (std::is_same_v<Content, Fields>) {
                return Fields{from.table, copyHeld(from.values, deep)};
            } else if constexpr (std::is_same_v<Content, Cells>) {
                return Cells{copyHeld(from.values, deep)};
            } else {
                return from;
            }
        },
        payload.content);
    return std::make_shared<Payload>(Payload{payload.dimensions, std::move(content), payload.nesting});
}

}  // namespace

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

Payload& writablePayload(nvArray* value)
{
    requireOwned(value);
    if (value->payload.use_count() > 1) {
        value->payload = copyPayload(*value, false);
    }
    return *value->payload;
}

}  // namespace reference_host
