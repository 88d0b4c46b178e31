#include "reference_host/ssp/ValueObject.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/JsonPlace.hpp"
#include "reference_host/ssp/NumberForm.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <type_traits>
#include <unordered_set>
#include <utility>

namespace reference_host {

namespace {

using Values = ValueObject::Values;

constexpr std::array numericClasses{
    std::pair{"double", nvClassID::Double}, std::pair{"single", nvClassID::Single},
    std::pair{"int8", nvClassID::Int8},     std::pair{"uint8", nvClassID::UInt8},
    std::pair{"int16", nvClassID::Int16},   std::pair{"uint16", nvClassID::UInt16},
    std::pair{"int32", nvClassID::Int32},   std::pair{"uint32", nvClassID::UInt32},
    std::pair{"int64", nvClassID::Int64},   std::pair{"uint64", nvClassID::UInt64},
};

std::optional<nvClassID> numericClass(const std::string& name)
{
    const auto* found = std::find_if(numericClasses.begin(), numericClasses.end(),
                                     [&](const auto& row) { return name == row.first; });
    return found != numericClasses.end() ? std::optional(found->second) : std::nullopt;
}

Dimensions sizeOf(const JsonView& object)
{
    const std::optional<JsonView> sizes = object.find("size");
    if (!sizes) {
        return {1, 1};
    }
    if (sizes->count() < 2) {
        sizes->refuse("two sizes or more");
    }
    std::vector<std::size_t> list;
    for (const Json& size : sizes->json()) {
        list.push_back(size.is_number_unsigned() ? size.get<std::size_t>()
                                                 : sizes->element(list.size()).unsignedInteger());
    }
    try {
        return Dimensions(list);
    } catch (const std::bad_alloc&) {
        sizes->refuse("a size that memory can hold");
    }
}

[[noreturn]] void refuseCount(std::string place, std::size_t count, std::size_t wanted)
{
    throw fileError("JsonWrongCount", {std::move(place), std::uint64_t{count}, std::uint64_t{wanted}});
}

void requireCount(const JsonView& elements, std::size_t count, std::size_t wanted)
{
    if (count != wanted) {
        refuseCount(elements.place(), count, wanted);
    }
}

template <std::floating_point Number>
std::optional<Number> numberFrom(const Json& json)
{
    if (json.is_string()) {
        return notFiniteNumber<Number>(json.get_ref<const std::string&>());
    }
    if (!json.is_number_float()) {
        return std::nullopt;
    }
    const auto number = json.get<double>();
    const bool isInRange = std::abs(number) <= static_cast<double>(std::numeric_limits<Number>::max());
    const bool isExact = isInRange && static_cast<double>(static_cast<Number>(number)) == number;
    return isExact ? std::optional(static_cast<Number>(number)) : std::nullopt;
}

template <std::integral Number>
std::optional<Number> numberFrom(const Json& json)
{
    if constexpr (std::is_same_v<Number, bool>) {
        return json.is_boolean() ? std::optional(json.get<bool>()) : std::nullopt;
    } else {
        const bool isInRange =
            json.is_number_unsigned()
                ? std::in_range<Number>(json.get<std::uint64_t>())
                : json.is_number_integer() && std::in_range<Number>(json.get<std::int64_t>());
        return isInRange ? std::optional(json.get<Number>()) : std::nullopt;
    }
}

template <class Number>
constexpr const char* expectedNumber()
{
    return std::is_floating_point_v<Number> ? "a number of the class, with a fraction or an exponent"
                                            : "an integer of the class";
}

/// Calls `store` with the index and the number of each element.
template <class Number, class Store>
void readElements(const JsonView& data, const char* expected, Store store)
{
    std::size_t index = 0;
    for (const Json& json : data.json()) {
        const std::optional<Number> number = numberFrom<Number>(json);
        if (!number) {
            data.element(index).refuse(expected);
        }
        store(index++, *number);
    }
}

OwnedValue readNumeric(const JsonView& object, nvClassID classID)
{
    object.requireOnly({"class", "size", "data", "imaginary"});
    const JsonView real = object.member("data");
    const std::optional<JsonView> imaginary = object.find("imaginary");
    Dimensions size = sizeOf(object);
    requireCount(real, real.count(), size.elementCount());
    if (imaginary) {
        requireCount(*imaginary, imaginary->count(), size.elementCount());
    }
    const nvComplexity complexity = imaginary ? nvComplexity::Complex : nvComplexity::Real;
    OwnedValue value = makeNumeric(std::move(size), classID, complexity);
    auto* data = static_cast<std::byte*>(writableNumericData(value.get()));
    withNumericType(value->valueClass, [&](auto type) {
        using Number = typename decltype(type)::type;
        const auto fill = [&](const JsonView& part, std::size_t offset, std::size_t step) {
            readElements<Number>(part, expectedNumber<Number>(), [&](std::size_t index, Number number) {
                std::memcpy(data + (index * step + offset) * sizeof(Number), &number, sizeof(Number));
            });
        };
        fill(real, 0, imaginary ? 2 : 1);
        if (imaginary) {
            fill(*imaginary, 1, 2);
        }
    });
    return value;
}

OwnedValue readLogicals(const JsonView& object)
{
    object.requireOnly({"class", "size", "data"});
    const JsonView data = object.member("data");
    Dimensions size = sizeOf(object);
    requireCount(data, data.count(), size.elementCount());
    OwnedValue value = makeLogicals(std::move(size));
    readElements<bool>(data, "true or false", [&](std::size_t index, bool element) {
        setElement(value.get(), index, element ? 1.0 : 0.0);
    });
    return value;
}

OwnedValue readCharacters(const JsonView& object)
{
    object.requireOnly({"class", "size", "text"});
    const JsonView text = object.member("text");
    std::u16string characters = text.text();
    Dimensions size = sizeOf(object);
    requireCount(text, characters.size(), size.elementCount());
    return makeCharacters(std::move(size), std::move(characters));
}

OwnedValue readCells(const JsonView& object, Values values, const std::vector<Values>& fields)
{
    object.requireOnly({"class", "size", "values"});
    const JsonView place = object.member("values");
    if (!fields.empty()) {
        place.refuse("an array of values");
    }
    Dimensions size = sizeOf(object);
    requireCount(place, values.size(), size.elementCount());
    OwnedValue cells = makeCells(std::move(size));
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i]) {
            setCell(cells.get(), i, std::move(values[i]));
        }
    }
    return cells;
}

std::vector<std::string> readFieldNames(const JsonView& fields)
{
    std::vector<std::string> names;
    std::unordered_set<std::string> known;
    for (std::size_t i = 0; i < fields.count(); ++i) {
        names.push_back(fields.element(i).byteText());
        if (!known.insert(names.back()).second) {
            fields.element(i).refuse("a name that no field before it has");
        }
    }
    return names;
}

void setFields(nvArray* value, std::size_t number, Values values)
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i]) {
            setNumberedField(value, i, number, std::move(values[i]));
        }
    }
}

OwnedValue readStruct(const JsonView& object, const Values& values, std::vector<Values> fields, bool isObject)
{
    if (isObject) {
        object.requireOnly({"class", "name", "size", "fields", "values"});
    } else {
        object.requireOnly({"class", "size", "fields", "values"});
    }
    const std::vector<std::string> names = readFieldNames(object.member("fields"));
    const JsonView place = object.member("values");
    if (!values.empty()) {
        place.refuse("an array of values for each field");
    }
    requireCount(place, fields.size(), names.size());
    Dimensions size = sizeOf(object);
    for (std::size_t number = 0; number < fields.size(); ++number) {
        if (fields[number].size() != size.elementCount()) {
            std::string ofField = place.place();
            appendPlace(ofField, std::to_string(number));
            refuseCount(std::move(ofField), fields[number].size(), size.elementCount());
        }
    }
    OwnedValue value = isObject ? makeStructObject(object.member("name").byteText(), std::move(size), names)
                                : makeStruct(std::move(size), names);
    for (std::size_t number = 0; number < fields.size(); ++number) {
        setFields(value.get(), number, std::move(fields[number]));
    }
    return value;
}

}  // namespace

OwnedValue valueOf(ValueObject content, const JsonPlace& place)
{
    const JsonView object(content.members, place);
    const JsonView classMember = object.member("class");
    const std::string name = classMember.string();
    if (const std::optional<nvClassID> classID = numericClass(name)) {
        return readNumeric(object, *classID);
    }
    if (name == "logical") {
        return readLogicals(object);
    }
    if (name == "char") {
        return readCharacters(object);
    }
    if (name == "cell") {
        return readCells(object, std::move(content.values), content.fields);
    }
    if (name == "struct" || name == "object") {
        return readStruct(object, content.values, std::move(content.fields), name == "object");
    }
    classMember.refuse("the name of a class");
}

}  // namespace reference_host
