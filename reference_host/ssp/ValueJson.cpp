#include "reference_host/ssp/ValueJson.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/NumberJson.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <cmath>
#include <utility>
#include <vector>

namespace reference_host {

namespace {

/// Turns the elements of a container into JSON, with their index in the place of what is refused.
template <class Element>
Json arrayOf(std::size_t count, const std::string& place, const Element& element)
{
    Json array = Json::array();
    auto& elements = array.get_ref<Json::array_t&>();
    elements.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        try {
            elements.push_back(element(i));
        } catch (ObjectInValue& found) {
            found.place = place + "/" + std::to_string(i) + found.place;
            throw;
        }
    }
    return array;
}

Json header(const nvArray* value, std::string nameOfClass)
{
    Json object = {{"class", std::move(nameOfClass)}};
    if (elementCount(value) != 1) {
        object["size"] = dimensions(value).list();
    }
    return object;
}

Json charactersToJson(const nvArray* value)
{
    const std::u16string characters = text(value);
    Json json = textToJson(characters);
    const std::vector<std::size_t> sizes = dimensions(value).list();
    const bool isText = sizes.size() == 2 && (characters.empty() ? sizes[0] + sizes[1] == 0 : sizes[0] == 1);
    if (isText && json.is_string()) {
        return json;
    }
    Json object = header(value, "char");
    object["text"] = std::move(json);
    return object;
}

Json structToJson(const nvArray* value)
{
    const bool isObject = value->valueClass == ValueClass::StructObject;
    Json object = header(value, isObject ? "object" : "struct");
    if (isObject) {
        object["name"] = byteTextToJson(className(value));
    }
    const std::vector<std::string>& names = fieldNames(value);
    object["fields"] = arrayOf(names.size(), "", [&](std::size_t i) { return byteTextToJson(names[i]); });
    object["values"] = arrayOf(names.size(), "/values", [&](std::size_t number) {
        return arrayOf(elementCount(value), "",
                       [&](std::size_t i) { return jsonOfValue(numberedField(value, i, number)); });
    });
    return object;
}

}  // namespace

Json jsonOfValue(const nvArray* value)
{
    if (value == nullptr) {
        return nullptr;
    }
    requireAlive(value);
    const bool isScalar = elementCount(value) == 1 && !isComplex(value);
    switch (value->valueClass) {
        case ValueClass::Char:
            return charactersToJson(value);
        case ValueClass::Cell: {
            Json object = header(value, "cell");
            object["values"] = arrayOf(elementCount(value), "/values",
                                       [&](std::size_t i) { return jsonOfValue(cell(value, i)); });
            return object;
        }
        case ValueClass::Struct:
        case ValueClass::StructObject:
            return structToJson(value);
        case ValueClass::ClassObject:
            throw ObjectInValue{"", className(value)};
        default:
            break;
    }
    if (isScalar && value->valueClass == ValueClass::Logical) {
        return *logicals(value);
    }
    if (isScalar && value->valueClass == ValueClass::Double && std::isfinite(scalar(value))) {
        return scalar(value);
    }
    Json object = header(value, className(value));
    object["data"] = numbersToJson(value, 0);
    if (isComplex(value)) {
        object["imaginary"] = numbersToJson(value, 1);
    }
    return object;
}

zmsvException objectError(const std::string& place, const ObjectInValue& found)
{
    const std::string whole = place + found.place;
    return fileError("ObjectInValue", {whole.empty() ? "/" : whole, found.className});
}

std::string valueToJson(const nvArray* value, const JsonLimits& limits)
{
    try {
        return writeJson(jsonOfValue(value), limits);
    } catch (const ObjectInValue& found) {
        throw objectError("", found);
    }
}

OwnedValue valueFromJson(std::string_view json, const JsonLimits& limits)
{
    const Json document = parseJson(json, limits);
    return readingJson(document, "/", [&document] { return valueOfJson(document); });
}

}  // namespace reference_host
