#include "reference_host/values/ValueContainers.hpp"

#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/values/Payload.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <algorithm>
#include <utility>

namespace reference_host {

namespace {

const Fields* fieldsOf(const nvArray* value)
{
    if (value == nullptr) {
        return nullptr;
    }
    requireAlive(value);
    return std::get_if<Fields>(&value->payload->content);
}

const Cells* cellsOf(const nvArray* value)
{
    if (value == nullptr) {
        return nullptr;
    }
    requireAlive(value);
    return std::get_if<Cells>(&value->payload->content);
}

/// The index of a field among the names of a struct; the number of fields if there is none.
std::size_t fieldNumber(const Fields& fields, const char* name)
{
    const auto& names = fields.table->names;
    return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
}

/// Throws unless the container can take the value.
void requireStorable(const nvArray* container, const nvArray* value)
{
    requireOwned(value);
    if (container == value) {
        throwMisuse("ContainsItself", {describeWithSerial(value)});
    }
    if (value->payload->nesting >= deepestNesting) {
        throwHostError("NestedTooDeep", {deepestNesting, describe(value)});
    }
}

/// Puts a storable value into its place and destroys the former one. REQUIRES: `requireStorable`.
void put(nvArray* container, HeldValue& place, nvArray* value) noexcept
{
    Payload& payload = *container->payload;
    payload.nesting = std::max(payload.nesting, value->payload->nesting + 1);
    value->ownership = Ownership::Held;
    const HeldValue former = std::exchange(place, HeldValue(value));
}

const Fields& requireFields(const nvArray* value)
{
    requireAlive(value);
    const Fields* fields = fieldsOf(value);
    if (fields == nullptr) {
        throwHostError("WrongClass", {"a struct", describe(value)});
    }
    return *fields;
}

/// The place of a field to be filled. Stops sharing the struct's data.
HeldValue& fieldPlace(nvArray* value, std::size_t index, std::size_t number, const nvArray* field)
{
    requireStorable(value, field);
    Fields& fields = std::get<Fields>(writablePayload(value).content);
    return fields.values[index * fields.table->names.size() + number];
}

HeldValue& fieldPlace(nvArray* value, std::size_t index, const char* name, const nvArray* field)
{
    const Fields& fields = requireFields(value);
    requireIndex(index, value->payload->dimensions.elementCount());
    const std::size_t number = name != nullptr ? fieldNumber(fields, name) : fields.table->names.size();
    if (number == fields.table->names.size()) {
        throwHostError("NoSuchField", {name != nullptr ? name : "", describe(value)});
    }
    return fieldPlace(value, index, number, field);
}

}  // namespace

bool isStruct(const nvArray* value)
{
    return fieldsOf(value) != nullptr;
}

bool isCell(const nvArray* value)
{
    return cellsOf(value) != nullptr;
}

const std::vector<std::string>& fieldNames(const nvArray* value)
{
    static const std::vector<std::string>& none = *new std::vector<std::string>;
    const Fields* fields = fieldsOf(value);
    return fields != nullptr ? fields->table->names : none;
}

const nvArray* field(const nvArray* value, std::size_t index, const char* name)
{
    const Fields* fields = fieldsOf(value);
    if (fields == nullptr || name == nullptr) {
        return nullptr;
    }
    requireIndex(index, value->payload->dimensions.elementCount());
    const std::size_t number = fieldNumber(*fields, name);
    const std::size_t count = fields->table->names.size();
    return number < count ? fields->values[index * count + number].get() : nullptr;
}

void setField(nvArray* value, std::size_t index, const char* name, OwnedValue field)
{
    storeField(value, index, name, field.get(), false);
    static_cast<void>(field.release());
}

const nvArray* numberedField(const nvArray* value, std::size_t index, std::size_t number)
{
    const Fields* fields = fieldsOf(value);
    if (fields == nullptr) {
        return nullptr;
    }
    requireIndex(index, value->payload->dimensions.elementCount());
    requireIndex(number, fields->table->names.size());
    return fields->values[index * fields->table->names.size() + number].get();
}

void setNumberedField(nvArray* value, std::size_t index, std::size_t number, OwnedValue field)
{
    const Fields& fields = requireFields(value);
    requireIndex(index, value->payload->dimensions.elementCount());
    requireIndex(number, fields.table->names.size());
    HeldValue& place = fieldPlace(value, index, number, field.get());
    if (place) {
        throwMisuse("FieldIsSet", {fieldNames(value)[number], describeWithSerial(place.get())});
    }
    put(value, place, field.release());
}

void replaceField(nvArray* value, std::size_t index, const char* name, OwnedValue field)
{
    storeField(value, index, name, field.get(), true);
    static_cast<void>(field.release());
}

void storeField(nvArray* value, std::size_t index, const char* name, nvArray* field, bool mayBeSet)
{
    HeldValue& place = fieldPlace(value, index, name, field);
    if (place && !mayBeSet) {
        throwMisuse("FieldIsSet", {name, describeWithSerial(place.get())});
    }
    put(value, place, field);
}

const nvArray* cell(const nvArray* value, std::size_t index)
{
    const Cells* cells = cellsOf(value);
    if (cells == nullptr) {
        return nullptr;
    }
    requireIndex(index, cells->values.size());
    return cells->values[index].get();
}

void setCell(nvArray* value, std::size_t index, OwnedValue element)
{
    storeCell(value, index, element.get());
    static_cast<void>(element.release());
}

void storeCell(nvArray* value, std::size_t index, nvArray* element)
{
    requireAlive(value);
    const Cells* cells = cellsOf(value);
    if (cells == nullptr) {
        throwHostError("WrongClass", {"a cell array", describe(value)});
    }
    requireIndex(index, cells->values.size());
    requireStorable(value, element);
    HeldValue& place = std::get<Cells>(writablePayload(value).content).values[index];
    put(value, place, element);
}

}  // namespace reference_host
