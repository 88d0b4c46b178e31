#include "reference_host/ssp/NumberJson.hpp"
#include "reference_host/ssp/ValueJson.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

namespace reference_host {

namespace {

constexpr std::array numericClasses{
    std::pair{"double", nvClassID::Double}, std::pair{"single", nvClassID::Single},
    std::pair{"int8", nvClassID::Int8},     std::pair{"uint8", nvClassID::UInt8},
    std::pair{"int16", nvClassID::Int16},   std::pair{"uint16", nvClassID::UInt16},
    std::pair{"int32", nvClassID::Int32},   std::pair{"uint32", nvClassID::UInt32},
    std::pair{"int64", nvClassID::Int64},   std::pair{"uint64", nvClassID::UInt64},
};

Dimensions sizeIn(const Json& object)
{
    const Json* const sizes = findMember(object, "size");
    if (sizes == nullptr) {
        return {1, 1};
    }
    std::vector<std::size_t> list;
    for (const Json& size : arrayIn(*sizes)) {
        list.push_back(unsignedIn(size));
    }
    if (list.size() < 2) {
        refuseJson(*sizes, "two sizes or more");
    }
    try {
        return Dimensions(list);
    } catch (const std::bad_alloc&) {
        refuseJson(*sizes, "a size that memory can hold");
    }
}

/// An array with an element for each one of the value.
const Json& elementsIn(const Json& object, const char* name, const Dimensions& size)
{
    const Json& elements = arrayIn(member(object, name));
    requireCount(elements, elements.size(), size.elementCount());
    return elements;
}

OwnedValue numericOf(const Json& object, nvClassID classID)
{
    requireOnly(object, {"class", "size", "data", "imaginary"});
    Dimensions size = sizeIn(object);
    const Json& real = elementsIn(object, "data", size);
    const bool hasImaginary = findMember(object, "imaginary") != nullptr;
    const Json* const imaginary = hasImaginary ? &elementsIn(object, "imaginary", size) : nullptr;
    OwnedValue value =
        makeNumeric(std::move(size), classID, hasImaginary ? nvComplexity::Complex : nvComplexity::Real);
    setNumbers(value.get(), 0, real);
    if (imaginary != nullptr) {
        setNumbers(value.get(), 1, *imaginary);
    }
    return value;
}

OwnedValue logicalsOf(const Json& object)
{
    requireOnly(object, {"class", "size", "data"});
    Dimensions size = sizeIn(object);
    const Json& data = elementsIn(object, "data", size);
    OwnedValue value = makeLogicals(std::move(size));
    setNumbers(value.get(), 0, data);
    return value;
}

OwnedValue charactersOf(const Json& object)
{
    requireOnly(object, {"class", "size", "text"});
    const Json& text = member(object, "text");
    std::u16string characters = textIn(text);
    Dimensions size = sizeIn(object);
    requireCount(text, characters.size(), size.elementCount());
    return makeCharacters(std::move(size), std::move(characters));
}

OwnedValue cellsOf(const Json& object)
{
    requireOnly(object, {"class", "size", "values"});
    Dimensions size = sizeIn(object);
    const Json& values = elementsIn(object, "values", size);
    OwnedValue cells = makeCells(std::move(size));
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (OwnedValue value = valueOfJson(values[i])) {
            setCell(cells.get(), i, std::move(value));
        }
    }
    return cells;
}

std::vector<std::string> fieldNamesIn(const Json& fields)
{
    std::vector<std::string> names;
    std::unordered_set<std::string> known;
    for (const Json& field : arrayIn(fields)) {
        names.push_back(byteTextIn(field));
        if (!known.insert(names.back()).second) {
            refuseJson(field, "a name that no field before it has");
        }
    }
    return names;
}

OwnedValue structOf(const Json& object, bool isObject)
{
    if (isObject) {
        requireOnly(object, {"class", "name", "size", "fields", "values"});
    } else {
        requireOnly(object, {"class", "size", "fields", "values"});
    }
    std::vector<std::string> names = fieldNamesIn(member(object, "fields"));
    Dimensions size = sizeIn(object);
    const Json& fields = arrayIn(member(object, "values"));
    requireCount(fields, fields.size(), names.size());
    for (const Json& field : fields) {
        requireCount(arrayIn(field), field.size(), size.elementCount());
    }
    OwnedValue value =
        isObject ? makeStructObject(byteTextIn(member(object, "name")), std::move(size), std::move(names))
                 : makeStruct(std::move(size), std::move(names));
    for (std::size_t number = 0; number < fields.size(); ++number) {
        for (std::size_t i = 0; i < fields[number].size(); ++i) {
            if (OwnedValue field = valueOfJson(fields[number][i])) {
                setNumberedField(value.get(), i, number, std::move(field));
            }
        }
    }
    return value;
}

OwnedValue valueOfObject(const Json& object)
{
    const Json& classMember = member(object, "class");
    const std::string& name = stringIn(classMember);
    const auto* const numeric =
        std::ranges::find_if(numericClasses, [&](auto& row) { return name == row.first; });
    if (numeric != numericClasses.end()) {
        return numericOf(object, numeric->second);
    }
    if (name == "logical") {
        return logicalsOf(object);
    }
    if (name == "char") {
        return charactersOf(object);
    }
    if (name == "cell") {
        return cellsOf(object);
    }
    if (name == "struct" || name == "object") {
        return structOf(object, name == "object");
    }
    refuseJson(classMember, "the name of a class");
}

}  // namespace

OwnedValue valueOfJson(const Json& json)
{
    switch (json.type()) {
        case Json::value_t::null:
            return nullptr;
        case Json::value_t::boolean:
            return makeLogical(json.get<bool>());
        case Json::value_t::number_float:
            return makeDouble(json.get<double>());
        case Json::value_t::string:
            return makeText(std::string_view(json.get_ref<const std::string&>()));
        case Json::value_t::object:
            return valueOfObject(json);
        default:
            refuseJson(json, "a value (a double has a fraction or an exponent)");
    }
}

}  // namespace reference_host
