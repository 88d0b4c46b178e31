#include "reference_host/values/Value.hpp"

#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/QuotedText.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/Payload.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <utility>
#include <vector>

namespace reference_host {

LiveRegistry<nvArray>& liveValueRegistry()
{
    static LiveRegistry<nvArray>& registry = *new LiveRegistry<nvArray>;
    return registry;
}

namespace {

/// Closes the header first: destroying the payload may run code that looks at the value.
void endValue(nvArray* value) noexcept
{
    const std::shared_ptr<Payload> payload = std::move(value->payload);
    value->ownership = Ownership::Dead;
    liveValueRegistry().close(value);
}

/// Reports a held value that dies with its container during a call that borrowed it. Destroying a container
/// cannot fail, so this is only recorded.
void reportEndWhileLent(const nvArray* value) noexcept
{
    try {
        Ledger::recordMisuse(
            std::string(CallSite::current().operationName()) +
            ": destroys a container while a call has borrowed a value in it: " + describeWithSerial(value));
    } catch (const std::exception&) {
        Ledger::recordMisuse({});
    }
}

}  // namespace

void HeldDeleter::operator()(nvArray* value) const noexcept
{
    if (value->loans > 0) {
        reportEndWhileLent(value);
    }
    endValue(value);
}

void destroyValue(nvArray* value)
{
    if (value != nullptr) {
        requireOwned(value);
        endValue(value);
    }
}

void requireAlive(const nvArray* value)
{
    if (value == nullptr) {
        throwHostError("NullArgument");
    }
    if (value->ownership == Ownership::Dead) {
        throwMisuse("ValueIsDead", {describeWithSerial(value)});
    }
}

void requireOwned(const nvArray* value)
{
    requireAlive(value);
    if (value->ownership == Ownership::Held) {
        throwMisuse("ValueIsHeld", {describeWithSerial(value)});
    }
    if (value->loans > 0) {
        throwMisuse("ValueIsLent", {describeWithSerial(value)});
    }
}

void setScope(nvArray* value, Scope scope)
{
    requireOwned(value);
    if (value->scope == Scope::Persistent) {
        throwMisuse("ValueIsPersistent", {describeWithSerial(value)});
    }
    value->scope = scope;
}

// The number of loans is kept in the header, also of a value that the borrower may only read.
Loan::Loan(const nvArray* value) : m_value(const_cast<nvArray*>(value))
{
    if (m_value != nullptr) {
        requireAlive(m_value);
        m_serial = m_value->serial;
        ++m_value->loans;
    }
}

Loan::Loan(Loan&& other) noexcept : m_value(std::exchange(other.m_value, nullptr)), m_serial(other.m_serial)
{
}

Loan::~Loan()
{
    const bool isSameValue = m_value != nullptr && m_value->serial == m_serial;
    if (isSameValue && m_value->ownership != Ownership::Dead) {
        --m_value->loans;
    }
}

namespace {

/// In the order of `ValueClass`.
constexpr std::array builtInClassNames{"double", "single", "int8",  "uint8",  "int16",   "uint16",
                                       "int32",  "uint32", "int64", "uint64", "logical", "char",
                                       "struct", "object", "cell",  "object"};

std::string_view builtInClassName(ValueClass valueClass)
{
    return builtInClassNames.at(static_cast<std::size_t>(valueClass) -
                                static_cast<std::size_t>(ValueClass::Double));
}

std::string_view classNameOf(const nvArray& value)
{
    if (const auto* objects = std::get_if<Objects>(&value.payload->content)) {
        return *objects->className;
    }
    const auto* fields = std::get_if<Fields>(&value.payload->content);
    return value.valueClass == ValueClass::StructObject ? std::string_view(fields->table->className)
                                                        : builtInClassName(value.valueClass);
}

std::string describeNumber(const nvArray& value, const Numbers& numbers)
{
    return withNumericType(value.valueClass, [&](auto type) -> std::string {
        using Number = typename decltype(type)::type;
        const auto number = readNumber<Number>(numbers.data(), 0);
        if constexpr (std::is_same_v<Number, bool>) {
            return number ? "true" : "false";
        } else if constexpr (std::is_floating_point_v<Number>) {
            return numberText(static_cast<double>(number));
        } else {
            return std::to_string(number);
        }
    });
}

std::string fieldList(const Fields& fields)
{
    std::string list;
    for (const std::string& name : fields.table->names) {
        list += (list.empty() ? "" : ", ") + printableText(name);
    }
    return " {" + list + "}";
}

bool isRowOfText(const Dimensions& dimensions)
{
    const std::vector<std::size_t> sizes = dimensions.list();
    return sizes.size() == 2 && (sizes[0] == 1 || (sizes[0] == 0 && sizes[1] == 0));
}

std::string describeAlive(const nvArray& value)
{
    const Payload& payload = *value.payload;
    const auto* text = std::get_if<std::u16string>(&payload.content);
    if (text != nullptr && isRowOfText(payload.dimensions)) {
        return quotedText(utf8FromUtf16(*text));
    }
    const std::string name(classNameOf(value));
    const auto* numbers = std::get_if<Numbers>(&payload.content);
    const bool isComplex = numbers != nullptr && numbers->isComplex();
    if (numbers != nullptr && !isComplex && payload.dimensions.elementCount() == 1) {
        return name + " " + describeNumber(value, *numbers);
    }
    const auto* fields = std::get_if<Fields>(&payload.content);
    return payload.dimensions.text() + (isComplex ? " complex " : " ") + name +
           (fields != nullptr ? fieldList(*fields) : "");
}

}  // namespace

std::string className(const nvArray* value)
{
    if (value == nullptr) {
        return {};
    }
    requireAlive(value);
    return std::string(classNameOf(*value));
}

bool isOfClass(const nvArray* value, const char* name)
{
    if (value == nullptr) {
        return false;
    }
    requireAlive(value);
    return name != nullptr && classNameOf(*value) == name;
}

std::string describe(const nvArray* value)
{
    if (value == nullptr) {
        return "null";
    }
    return value->ownership == Ownership::Dead ? "a destroyed value" : describeAlive(*value);
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

namespace {

/// The owned and undeclared values that are newer than a serial number, the oldest first.
std::vector<const nvArray*> openValues(std::uint64_t after)
{
    std::vector<const nvArray*> values;
    for (const nvArray* value = liveValueRegistry().newest(); value != nullptr && value->serial > after;
         value = value->previous) {
        if (value->ownership == Ownership::Owned && !value->meantToLive) {
            values.push_back(value);
        }
    }
    std::reverse(values.begin(), values.end());
    return values;
}

std::vector<std::string> listOpenValues(std::uint64_t after)
{
    std::vector<std::string> lines;
    for (const nvArray* value : openValues(after)) {
        lines.push_back("value " + describeWithSerial(value) + ", made by " +
                        describeCallSite(value->madeBy));
    }
    return lines;
}

/// The number of values, and a line for each class and place of creation.
std::string summarizeOpenValues()
{
    std::map<std::pair<std::string, std::string>, std::size_t> counts;
    for (const nvArray* value : openValues(0)) {
        ++counts[{className(value), describeCallSite(value->madeBy)}];
    }
    if (counts.empty()) {
        return {};
    }
    std::string text = std::to_string(liveValues()) + (liveValues() == 1 ? " live value" : " live values");
    for (const auto& [key, count] : counts) {
        text += "\n  " + std::to_string(count) + " " + key.first + ", made by " + key.second;
    }
    return text;
}

[[maybe_unused]] const bool isInLedger = Ledger::addAccount(
    "values", {[] { return liveValueRegistry().lastSerial(); }, listOpenValues, summarizeOpenValues});

}  // namespace

void declareMeantToLive(nvArray* value)
{
    requireAlive(value);
    value->meantToLive = true;
}

std::size_t liveValues()
{
    return openValues(0).size();
}

}  // namespace reference_host
