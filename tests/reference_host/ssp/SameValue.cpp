#include "tests/reference_host/ssp/SameValue.hpp"

#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <cstddef>
#include <cstring>
#include <map>
#include <string>

namespace reference_host {

namespace {

std::size_t bytesOfElement(const nvArray* value)
{
    static const std::map<std::string, std::size_t> sizes{
        {"double", 8}, {"single", 4}, {"int8", 1},   {"uint8", 1}, {"int16", 2},
        {"uint16", 2}, {"int32", 4},  {"uint32", 4}, {"int64", 8}, {"uint64", 8}};
    return sizes.at(className(value)) * (isComplex(value) ? 2 : 1);
}

std::string numberDifference(const nvArray* first, const nvArray* second)
{
    if (isComplex(first) != isComplex(second)) {
        return "complexity";
    }
    const auto* bytes = static_cast<const unsigned char*>(numericData(first));
    const auto* otherBytes = static_cast<const unsigned char*>(numericData(second));
    for (std::size_t i = 0; i < elementCount(first) * bytesOfElement(first); ++i) {
        if (bytes[i] != otherBytes[i]) {
            return "byte " + std::to_string(i);
        }
    }
    return {};
}

std::string logicalDifference(const nvArray* first, const nvArray* second)
{
    for (std::size_t i = 0; i < elementCount(first); ++i) {
        if (logicals(first)[i] != logicals(second)[i]) {
            return "element " + std::to_string(i);
        }
    }
    return {};
}

std::string cellDifference(const nvArray* first, const nvArray* second)
{
    for (std::size_t i = 0; i < elementCount(first); ++i) {
        const std::string inside = difference(cell(first, i), cell(second, i));
        if (!inside.empty()) {
            return "cell " + std::to_string(i) + ": " + inside;
        }
    }
    return {};
}

std::string structDifference(const nvArray* first, const nvArray* second)
{
    if (fieldNames(first) != fieldNames(second)) {
        return "fields";
    }
    for (std::size_t number = 0; number < fieldNames(first).size(); ++number) {
        for (std::size_t i = 0; i < elementCount(first); ++i) {
            const std::string inside =
                difference(numberedField(first, i, number), numberedField(second, i, number));
            if (!inside.empty()) {
                return fieldNames(first)[number] + " of " + std::to_string(i) + ": " + inside;
            }
        }
    }
    return {};
}

std::string contentDifference(const nvArray* first, const nvArray* second)
{
    if (isNumeric(first)) {
        return numberDifference(first, second);
    }
    if (isCell(first)) {
        return cellDifference(first, second);
    }
    if (isStruct(first)) {
        return structDifference(first, second);
    }
    if (first->valueClass == ValueClass::Logical) {
        return logicalDifference(first, second);
    }
    return text(first) == text(second) ? "" : "text";
}

}  // namespace

std::string difference(const nvArray* first, const nvArray* second)
{
    if (first == nullptr || second == nullptr) {
        return first == second ? "" : "null";
    }
    if (first->valueClass != second->valueClass || className(first) != className(second)) {
        return "class";
    }
    if (dimensions(first).list() != dimensions(second).list()) {
        return "sizes";
    }
    return contentDifference(first, second);
}

}  // namespace reference_host
