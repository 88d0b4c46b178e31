#include "reference_host/ssp/RecordJson.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/ValueJson.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace reference_host {

namespace {

using Kind = RecordFieldKind;

constexpr std::size_t chunkSize = 1000;

constexpr std::array signalForm{
    RecordField{"UUID", Kind::Text, true},
    RecordField{"ZID_", Kind::Text, true},
    RecordField{"OutputPortIndex_", Kind::Number, true},
    RecordField{"LogicalPortIndex_", Kind::Number, false},
    RecordField{"BlockPath_", Kind::Text, true},
    RecordField{"SubPath_", Kind::Text, true},
    RecordField{"SubSysPath_", Kind::Text, true},
    RecordField{"SignalName_", Kind::Text, true},
    RecordField{"Decimation_", Kind::Number, true},
    RecordField{"MaxPoints_", Kind::Number, true},
    RecordField{"TargetBufferedStreaming_", Kind::Number, false},
    RecordField{"IsFrameBased_", Kind::Number, false},
    RecordField{"HideInDVX_", Kind::Number, false},
    RecordField{"DomainType_", Kind::Text, false},
    RecordField{"VisualType_", Kind::Text, false},
};

constexpr std::array clientForm{
    RecordField{"UUID", Kind::Text, true},
    RecordField{"ModelPath_", Kind::Texts, true},
    RecordField{"ModelPathZID_", Kind::Texts, true},
    RecordField{"SourceModel_", Kind::Text, true},
    RecordField{"SignalUUID_", Kind::Text, true},
    RecordField{"ObserverType_", Kind::Text, true},
    RecordField{"UpdateRate_", Kind::Number, false},
    RecordField{"DimensionChannel_", Kind::Number, false},
    RecordField{"ObserveImaginaryPart_", Kind::Number, false},
    RecordField{"BusLeafPath_", Kind::Text, false},
};

const char* expectedOf(Kind kind)
{
    switch (kind) {
        case Kind::Text:
            return "text";
        case Kind::Texts:
            return "a cell array of texts";
        default:
            return "a number";
    }
}

bool isOfKind(const nvArray* value, Kind kind)
{
    if (value == nullptr) {
        return false;
    }
    if (kind == Kind::Text) {
        return value->valueClass == ValueClass::Char;
    }
    if (kind == Kind::Number) {
        return elementCount(value) == 1 && (isNumeric(value) || value->valueClass == ValueClass::Logical);
    }
    if (!isCell(value)) {
        return false;
    }
    bool areTexts = true;
    for (std::size_t i = 0; i < elementCount(value); ++i) {
        areTexts = areTexts && isOfKind(cell(value, i), Kind::Text);
    }
    return areTexts;
}

/// Collects records with the same fields, and hands them over as struct arrays.
class RecordReader {
public:
    RecordReader(std::span<const RecordField> form, const std::function<void(const nvArray*)>& take)
        : m_form(form), m_take(take)
    {
    }

    void add(std::size_t index, const Json& record)
    {
        readingJson(record, "/" + std::to_string(index), [&] {
            checkFields(record);
            startRecord(record);
            for (const auto& [name, item] : record.get_ref<const Json::object_t&>()) {
                OwnedValue value = valueOfJson(item);
                const auto field = std::ranges::find(m_form, std::string_view(name), &RecordField::name);
                if (field != m_form.end() && !isOfKind(value.get(), field->kind)) {
                    refuseJson(item, expectedOf(field->kind));
                }
                m_values.push_back(std::move(value));
            }
        });
    }

    void finish()
    {
        if (m_values.empty()) {
            return;
        }
        const std::size_t count = m_values.size() / m_names.size();
        const OwnedValue records = makeStruct({1, count}, m_names);
        for (std::size_t i = 0; i < m_values.size(); ++i) {
            if (m_values[i]) {
                setNumberedField(records.get(), i / m_names.size(), i % m_names.size(),
                                 std::move(m_values[i]));
            }
        }
        m_values.clear();
        m_take(records.get());
    }

private:
    void checkFields(const Json& record) const
    {
        if (!record.is_object()) {
            refuseJson(record, "a record");
        }
        for (const RecordField& field : m_form) {
            if (field.isRequired && findMember(record, field.name) == nullptr) {
                refuseMissing(record, field.name, expectedOf(field.kind));
            }
        }
    }

    void startRecord(const Json& record)
    {
        const auto& members = record.get_ref<const Json::object_t&>();
        const bool hasSameFields =
            std::ranges::equal(members, m_names, {}, &Json::object_t::value_type::first);
        if (!hasSameFields || m_values.size() >= chunkSize * m_names.size()) {
            finish();
        }
        if (!hasSameFields) {
            m_names.clear();
            for (const auto& [name, item] : members) {
                m_names.push_back(name);
            }
        }
    }

    std::span<const RecordField> m_form;
    const std::function<void(const nvArray*)>& m_take;
    std::vector<std::string> m_names;
    std::vector<OwnedValue> m_values;  // record by record
};

/// The earlier form, {"class":"struct","size":[1,300],"fields":["UUID",…],"values":[["…",…],…]}: its columns
/// are taken apart into records.
void readColumns(Json& document, RecordReader& reader)
{
    const std::string& kind = stringIn(member(document, "class"));
    if (kind != "struct" && kind != "object") {
        refuseJson(document, "an array of records");
    }
    std::size_t count = 1;
    if (const Json* const sizes = findMember(document, "size")) {
        for (const Json& size : arrayIn(*sizes)) {
            count *= unsignedIn(size);
        }
    }
    std::vector<std::string> names;
    for (const Json& field : arrayIn(member(document, "fields"))) {
        names.push_back(byteTextIn(field));
    }
    Json& columns = document["values"];
    requireCount(arrayIn(columns), columns.size(), names.size());
    for (const Json& column : columns) {
        requireCount(arrayIn(column), column.size(), count);
    }
    count = names.empty() ? std::min<std::size_t>(count, 1) : count;  // no text is behind the others
    for (std::size_t i = 0; i < count; ++i) {
        Json record = Json::object();
        for (std::size_t number = 0; number < names.size(); ++number) {
            record[names[number]] = std::move(columns[number][i]);
        }
        reader.add(i, record);
    }
}

}  // namespace

std::span<const RecordField> signalFields()
{
    return signalForm;
}

std::span<const RecordField> clientFields()
{
    return clientForm;
}

std::string recordsToJson(const nvArray* persistence)
{
    if (!isStruct(persistence)) {
        throw fileError("NotRecords", {className(persistence)});
    }
    const std::vector<std::string>& names = fieldNames(persistence);
    Json record = Json::object();
    for (const std::string& name : names) {
        record[name] = nullptr;
    }
    auto& members = record.get_ref<Json::object_t&>();
    std::string text;
    const std::size_t count = elementCount(persistence);
    for (std::size_t i = 0; i < count; ++i) {
        for (auto member = members.begin(); member != members.end(); ++member) {
            const auto number = static_cast<std::size_t>(member - members.begin());
            try {
                member->second = jsonOfValue(numberedField(persistence, i, number));
            } catch (const ObjectInValue& found) {
                throw objectError("/" + std::to_string(i) + "/" + names[number], found);
            }
        }
        text += i == 0 ? "[\n" : ",\n";
        text += writeJson(record);
        if (text.size() > JsonLimits().bytes) {
            throw fileError("JsonTooLarge", {std::uint64_t{JsonLimits().bytes}});
        }
    }
    return text + (count == 0 ? "[]" : "\n]\n");
}

void recordsFromJson(std::string_view text, std::span<const RecordField> form,
                     const std::function<void(const nvArray*)>& take)
{
    RecordReader reader(form, take);
    Json document =
        parseJson(text, jsonLimitsFor(text.size()),
                  [&reader](std::size_t index, const Json& record) { reader.add(index, record); });
    if (!document.is_array()) {
        readingJson(document, "/", [&] { readColumns(document, reader); });
    }
    reader.finish();
}

}  // namespace reference_host
