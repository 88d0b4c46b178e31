#include "hmi/SignalClientFields.hpp"

#include "hmi_foundation/ModelPath.hpp"

#include <utility>

namespace zm_hmi {

namespace {

using Record = SignalClient;
using namespace field;

template <class Text>
OwnedArray makeCells(const std::vector<Text>& texts)
{
    const std::array<std::size_t, 2> row = {1, texts.size()};
    OwnedArray cells(nvCreateCellArray(row.size(), row.data()));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        setCell(cells.get(), i, makeString(texts[i]));
    }
    return cells;
}

// The text of every cell, as `toText` reads it.
template <class Text>
std::vector<Text> readCells(const nvArray* cells, Text (*toText)(const nvArray*))
{
    std::vector<Text> texts(nvGetNumberOfElements(cells));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        texts[i] = toText(nvGetCell(cells, i));
    }
    return texts;
}

template <auto Member>
OwnedArray writePath(const Record& record, const std::u16string& modelName)
{
    std::vector<std::u16string> path = record.*Member;
    if (!path.empty()) {
        path.front() = zm_hmi_foundation::AddModelToPath(path.front(), modelName);
    }
    return makeCells(path);
}

template <auto Member>
void readPath(Record& record, const nvArray* value)
{
    record.*Member = readCells<std::u16string>(value, nvGetUString);
}

template <auto Member>
OwnedArray writePathZID(const Record& record, const std::u16string& modelName)
{
    std::vector<std::string> path = record.*Member;
    if (!path.empty()) {
        path.front() = zm_hmi_foundation::AddModelToZID(path.front(), modelName);
    }
    return makeCells(path);
}

template <auto Member>
void readPathZID(Record& record, const nvArray* value)
{
    record.*Member = readCells<std::string>(value, nvArrayToStdString);
}

// An observer without a path of its own belongs to the model it is written for; one with a path keeps the
// model that it names.
OwnedArray writeSourceModel(const Record& record, const std::u16string& modelName)
{
    return makeString(record.getModelPath().empty() ? modelName : record.getSourceModel());
}

template <auto Member>
OwnedArray writeArray(const Record& record, const std::u16string& /*modelName*/)
{
    return OwnedArray(nvCreateDeepCopy((record.*Member).get()));
}

// A uint32 in the host, wider here: written truncated, read as a signed 32-bit number and widened, so that
// -1 becomes very large and comes back as it was.
template <auto Member>
OwnedArray writeUInt32(const Record& record, const std::u16string& /*modelName*/)
{
    OwnedArray value(nvCreateNumericScalar(nvClassID::UInt32, nvComplexity::Real));
    *static_cast<std::uint32_t*>(nvGetDataPointer(value.get())) = static_cast<std::uint32_t>(record.*Member);
    return value;
}

std::uint64_t widenedInt(const nvArray* value)
{
    return static_cast<std::uint64_t>(
        static_cast<std::int64_t>(static_cast<std::int32_t>(nvGetScalarInt(value))));
}

// A missing field reads as 0, although a new record has 1.
template <auto Member>
void readUInt32(Record& record, const nvArray* value)
{
    record.*Member = value == nullptr ? 0 : widenedInt(value);
}

bool firstLogical(const nvArray* value)
{
    const bool* logicals = nvGetLogicals(value);
    return !nvIsEmpty(value) && logicals[0];
}

template <auto Member>
void readFlag(Record& record, const nvArray* value)
{
    record.*Member = nvIsLogical(value) ? firstLogical(value) : value != nullptr && nvGetScalar(value) != 0.0;
}

}  // namespace

OwnedArray SignalClient::Fields::persistent(OwnedArray value)
{
    if (value) {
        zmsvSetPersistentScope(value.get());
    }
    return value;
}

void SignalClient::Fields::readProperty(SignalClient& record, Field field, const nvArray* value)
{
    switch (field) {
        case UpdateRate:
            record.UpdateRate_ = widenedInt(value);
            break;
        case DimensionChannel:
            record.DimensionChannel_ = widenedInt(value);
            break;
        case ObserveImaginaryPart:
            record.ObserveImaginaryPart_ = firstLogical(value);
            break;
        default:
            table[field].read(record, value);
    }
}

const std::array<Record::Fields::Row, Record::Fields::Count> Record::Fields::table = {{
    {"UUID", writeText<&Record::UUID>, readNarrow<&Record::UUID>},
    {"ModelPath_", writePath<&Record::ModelPath_>, readPath<&Record::ModelPath_>},
    {"ModelPathZID_", writePathZID<&Record::ModelPathZID_>, readPathZID<&Record::ModelPathZID_>},
    {"SourceModel_", writeSourceModel, readText<&Record::SourceModel_>},
    {"SignalUUID_", writeText<&Record::SignalUUID_>, readNarrow<&Record::SignalUUID_>},
    {"ObserverType_", writeText<&Record::ObserverType_>, readNarrow<&Record::ObserverType_>},
    {"ObserverParams_", writeArray<&Record::ObserverParams_>,
     [](Record& record, const nvArray* value) { record.setObserverParams(value); }},
    {"UpdateRate_", writeUInt32<&Record::UpdateRate_>, readUInt32<&Record::UpdateRate_>},
    {"DimensionChannel_", writeUInt32<&Record::DimensionChannel_>, readUInt32<&Record::DimensionChannel_>},
    {"ObserveImaginaryPart_", writeLogical<&Record::ObserveImaginaryPart_>,
     readFlag<&Record::ObserveImaginaryPart_>},
    {"BusLeafPath_", writeText<&Record::BusLeafPath_>, readNarrow<&Record::BusLeafPath_>},
}};

}  // namespace zm_hmi
