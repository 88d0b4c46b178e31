#include "reference_host/values/ValueReading.hpp"

#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/Payload.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace reference_host {

namespace {

/// Null counts as nothing; a dead value never does.
bool isNull(const nvArray* value)
{
    if (value == nullptr) {
        return true;
    }
    requireAlive(value);
    return false;
}

[[noreturn]] void refuse(const char* wanted, const nvArray* value)
{
    throwHostError("WrongClass", {wanted, describe(value)});
}

/// The bytes of a numeric or logical value.
const std::byte* numberBytes(const nvArray* value)
{
    requireAlive(value);
    const auto* numbers = std::get_if<Numbers>(&value->payload->content);
    if (numbers == nullptr) {
        refuse("a numeric or logical value", value);
    }
    return numbers->data();
}

/// Where element `index` starts when complex elements are pairs.
std::size_t realPart(const nvArray* value, std::size_t index)
{
    requireIndex(index, value->payload->dimensions.elementCount());
    return std::get<Numbers>(value->payload->content).isComplex() ? 2 * index : index;
}

/// Calls `read` with the element, in its own type.
template <class Read>
auto readElement(const nvArray* value, std::size_t index, Read read)
{
    const std::byte* data = numberBytes(value);
    const std::size_t at = realPart(value, index);
    return withNumericType(value->valueClass, [&](auto type) {
        return read(readNumber<typename decltype(type)::type>(data, at));
    });
}

/// Calls `read` with the first element of a number, logical or text.
template <class Read>
auto readScalar(const nvArray* value, Read read)
{
    requireAlive(value);
    const auto* characters = std::get_if<std::u16string>(&value->payload->content);
    if (characters == nullptr) {
        numberBytes(value);  // refuses other classes before it looks at the number of elements
    }
    if (value->payload->dimensions.elementCount() == 0) {
        throwHostError("EmptyValue", {describe(value)});
    }
    return characters != nullptr ? read(characters->front()) : readElement(value, 0, read);
}

double asDouble(auto number)
{
    return static_cast<double>(number);
}

template <class Number>
std::int64_t asInteger(Number number)
{
    if constexpr (std::is_floating_point_v<Number>) {
        return toInteger<std::int64_t>(static_cast<double>(number));
    } else if constexpr (std::is_same_v<Number, std::uint64_t>) {
        constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
        return static_cast<std::int64_t>(std::min(number, largest));
    } else {
        return static_cast<std::int64_t>(number);
    }
}

}  // namespace

const Dimensions& dimensions(const nvArray* value)
{
    requireAlive(value);
    return value->payload->dimensions;
}

std::size_t elementCount(const nvArray* value)
{
    return isNull(value) ? 0 : value->payload->dimensions.elementCount();
}

bool isEmpty(const nvArray* value)
{
    return elementCount(value) == 0;
}

bool isNumeric(const nvArray* value)
{
    return !isNull(value) && isNumericClass(value->valueClass);
}

bool isComplex(const nvArray* value)
{
    return isNumeric(value) && std::get<Numbers>(value->payload->content).isComplex();
}

std::u16string text(const nvArray* value)
{
    if (isEmpty(value)) {
        return {};
    }
    const auto* characters = std::get_if<std::u16string>(&value->payload->content);
    if (characters == nullptr) {
        refuse("text", value);
    }
    return *characters;
}

std::string utf8Text(const nvArray* value)
{
    return utf8FromUtf16(text(value));
}

double scalar(const nvArray* value)
{
    return readScalar(value, [](auto number) { return asDouble(number); });
}

std::int64_t scalarInteger(const nvArray* value)
{
    return readScalar(value, [](auto number) { return asInteger(number); });
}

bool isTrueScalar(const nvArray* value)
{
    return !isNull(value) && value->valueClass == ValueClass::Logical && elementCount(value) == 1 &&
           element(value, 0) != 0.0;
}

double element(const nvArray* value, std::size_t index)
{
    return readElement(value, index, [](auto number) { return asDouble(number); });
}

std::int64_t integerElement(const nvArray* value, std::size_t index)
{
    return readElement(value, index, [](auto number) { return asInteger(number); });
}

void setElement(nvArray* value, std::size_t index, double element)
{
    numberBytes(value);
    const std::size_t at = realPart(value, index);
    std::byte* data = std::get<Numbers>(writablePayload(value).content).data();
    withNumericType(value->valueClass,
                    [&](auto type) { writeNumber<typename decltype(type)::type>(data, at, element); });
}

const bool* logicals(const nvArray* value)
{
    requireAlive(value);
    if (value->valueClass != ValueClass::Logical) {
        refuse("a logical value", value);
    }
    return reinterpret_cast<const bool*>(numberBytes(value));
}

const void* numericData(const nvArray* value)
{
    requireAlive(value);
    if (!isNumericClass(value->valueClass)) {
        refuse("a numeric value", value);
    }
    return numberBytes(value);
}

void* writableNumericData(nvArray* value)
{
    numericData(value);
    return std::get<Numbers>(writablePayload(value).content).data();
}

const std::vector<nvcos::COSInterfacePtr>& objects(const nvArray* value)
{
    requireAlive(value);
    const auto* found = std::get_if<Objects>(&value->payload->content);
    if (found == nullptr) {
        refuse("an array of objects", value);
    }
    return found->instances;
}

}  // namespace reference_host
