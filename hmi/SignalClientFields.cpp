#include "hmi/SignalClient.hpp"

#include "hmi_foundation/ModelPath.hpp"
#include "host/HostCall.hpp"
#include "host/Memory.hpp"

#include <algorithm>
#include <array>
#include <utility>

// The field table of a streaming client and the operations that walk over it.

namespace zm_hmi {

namespace {

using Record = SignalClient;

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

std::int32_t signed32(const nvArray* value)
{
    return static_cast<std::int32_t>(nvGetScalarInt(value));
}

bool firstLogical(const nvArray* value)
{
    const bool* logicals = nvGetLogicals(value);
    return !nvIsEmpty(value) && logicals[0];
}

// How a member of each type is written, read from a field of a struct, and read from a property of an object.
// A field may be missing, which is null. An object has every property in its own class; anything else is a
// host error.

OwnedArray write(const std::string& text, const std::u16string& /*modelName*/)
{
    return makeString(text);
}

OwnedArray write(const std::u16string& text, const std::u16string& /*modelName*/)
{
    return makeString(text);
}

// Element 0 of both paths is kept without the model name.
OwnedArray write(std::vector<std::u16string> path, const std::u16string& modelName)
{
    if (!path.empty()) {
        path.front() = zm_hmi_foundation::AddModelToPath(path.front(), modelName);
    }
    return makeCells(path);
}

OwnedArray write(std::vector<std::string> path, const std::u16string& modelName)
{
    if (!path.empty()) {
        path.front() = zm_hmi_foundation::AddModelToZID(path.front(), modelName);
    }
    return makeCells(path);
}

// Written as uint32, truncated.
OwnedArray write(std::uint64_t number, const std::u16string& /*modelName*/)
{
    OwnedArray value(nvCreateNumericScalar(nvClassID::UInt32, nvComplexity::Real));
    *static_cast<std::uint32_t*>(nvGetDataPointer(value.get())) = static_cast<std::uint32_t>(number);
    return value;
}

OwnedArray write(bool flag, const std::u16string& /*modelName*/)
{
    return makeLogical(flag);
}

OwnedArray write(const OwnedArray& params, const std::u16string& /*modelName*/)
{
    return OwnedArray(nvCreateDeepCopy(params.get()));
}

void read(std::string& text, const nvArray* value)
{
    text = nvArrayToStdString(value);
}

void read(std::u16string& text, const nvArray* value)
{
    text = nvGetUString(value);
}

void read(std::vector<std::u16string>& path, const nvArray* value)
{
    path = readCells<std::u16string>(value, nvGetUString);
}

void read(std::vector<std::string>& path, const nvArray* value)
{
    path = readCells<std::string>(value, nvArrayToStdString);
}

// Read as a signed 32-bit number and widened, so that -1 becomes a large number that is written as it came. A
// missing field gives 0, although a new record has 1.
void read(std::uint64_t& number, const nvArray* value)
{
    number = value == nullptr ? 0 : static_cast<std::uint64_t>(std::int64_t{signed32(value)});
}

void read(bool& flag, const nvArray* value)
{
    flag = nvIsLogical(value) ? firstLogical(value) : value != nullptr && nvGetScalar(value) != 0.0;
}

void read(OwnedArray& params, const nvArray* value)
{
    params = asPersistent(OwnedArray(nvCreateDeepCopy(value)));
}

void readFromObject(std::uint64_t& number, const nvArray* value)
{
    number = static_cast<std::uint64_t>(std::int64_t{signed32(value)});
}

void readFromObject(bool& flag, const nvArray* value)
{
    flag = firstLogical(value);
}

template <class Member>
void readFromObject(Member& member, const nvArray* value)
{
    read(member, value);
}

template <class Member>
void readPropertyOf(Member& member, const nvArray* object, const char* name)
{
    readFromObject(member, readProperty(object, name).get());
}

// The parameters take over the copy that the host made, instead of copying it once more.
void readPropertyOf(OwnedArray& params, const nvArray* object, const char* name)
{
    OwnedArray value(nvGetProperty(object, 0, name));
    if (value) {
        zmsvSetLocalScope(value.get());
    }
    params = asPersistent(std::move(value));
}

template <class Member>
void copy(Member& to, const Member& from)
{
    to = from;
}

void copy(OwnedArray& to, const OwnedArray& from)
{
    read(to, from.get());
}

template <class Member>
bool isSame(const Member& left, const Member& right)
{
    return left == right;
}

// The host compares the parameters: see `SignalClient::isEqual`.
bool isSame(const OwnedArray& /*left*/, const OwnedArray& /*right*/)
{
    return true;
}

}  // namespace

/// The rows of the field table and how they are made.
struct __attribute__((visibility("hidden"))) SignalClient::FieldRows {
    struct Row {
        const char* name;
        std::size_t writePlace;  ///< when the field is written: 0 for the first
        OwnedArray (*write)(const Record& record, const std::u16string& modelName);
        void (*readField)(Record& record, const nvArray* value);
        void (*readProperty)(Record& record, const nvArray* object, const char* name);
        void (*copy)(Record& to, const Record& from);
        bool (*isSame)(const Record& left, const Record& right);
        void (*swap)(Record& left, Record& right);
    };

    template <auto Member>
    static constexpr Row row(const char* name, std::size_t writePlace)
    {
        return {name,
                writePlace,
                [](const Record& record, const std::u16string& modelName) {
                    return zm_hmi::write(record.*Member, modelName);
                },
                [](Record& record, const nvArray* value) { read(record.*Member, value); },
                [](Record& record, const nvArray* object, const char* property) {
                    readPropertyOf(record.*Member, object, property);
                },
                [](Record& to, const Record& from) { zm_hmi::copy(to.*Member, from.*Member); },
                [](const Record& left, const Record& right) {
                    return zm_hmi::isSame(left.*Member, right.*Member);
                },
                [](Record& left, Record& right) { std::swap(left.*Member, right.*Member); }};
    }

    // An observer without a path belongs to the model that it is written for; one with a path keeps the model
    // that it names.
    static constexpr Row sourceModelRow(const char* name, std::size_t writePlace)
    {
        Row row = FieldRows::row<&Record::SourceModel_>(name, writePlace);
        row.write = [](const Record& record, const std::u16string& modelName) {
            return makeString(record.ModelPath_.empty() ? modelName : record.SourceModel_);
        };
        return row;
    }

    /// In the order of the host struct, in which fields are also read.
    static constexpr auto all()
    {
        return std::to_array<Row>({
            row<&Record::UUID>("UUID", 0),
            row<&Record::ModelPath_>("ModelPath_", 4),
            row<&Record::ModelPathZID_>("ModelPathZID_", 5),
            sourceModelRow("SourceModel_", 3),
            row<&Record::SignalUUID_>("SignalUUID_", 1),
            row<&Record::ObserverType_>("ObserverType_", 2),
            row<&Record::ObserverParams_>("ObserverParams_", 6),
            row<&Record::UpdateRate_>("UpdateRate_", 7),
            row<&Record::DimensionChannel_>("DimensionChannel_", 8),
            row<&Record::ObserveImaginaryPart_>("ObserveImaginaryPart_", 9),
            row<&Record::BusLeafPath_>("BusLeafPath_", 10),
        });
    }
};

struct __attribute__((visibility("hidden"))) SignalClient::Fields {
    using Row = FieldRows::Row;

    static constexpr auto table = FieldRows::all();

    static constexpr std::array<const char*, table.size()> names = [] {
        std::array<const char*, table.size()> all{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            all[i] = table[i].name;
        }
        return all;
    }();

    /// The rows by `writePlace`.
    static constexpr std::array<const Row*, table.size()> inWriteOrder = [] {
        std::array<const Row*, table.size()> rows{};
        for (const Row& row : table) {
            rows.at(row.writePlace) = &row;
        }
        return rows;
    }();
    static_assert(std::find(inWriteOrder.begin(), inWriteOrder.end(), nullptr) == inWriteOrder.end());
};

SignalClient::SignalClient(const SignalClient& other)
{
    for (const Fields::Row& row : Fields::table) {
        row.copy(*this, other);
    }
}

bool SignalClient::hasEqualMembers(const SignalClient& other) const
{
    return std::all_of(Fields::table.begin(), Fields::table.end(),
                       [&](const Fields::Row& row) { return row.isSame(*this, other); });
}

void SignalClient::swapFields(SignalClient& other) noexcept
{
    for (const Fields::Row& row : Fields::table) {
        row.swap(*this, other);
    }
}

const char* const* SignalClient::getStructFields()
{
    return Fields::names.data();
}

std::size_t SignalClient::getNumStructFields()
{
    return Fields::names.size();
}

void SignalClient::createStructData(nvArray* structArray, std::size_t index,
                                    const std::u16string& modelName) const
{
    withHostMemoryErrors([&] {
        for (const Fields::Row* row : Fields::inWriteOrder) {
            if (OwnedArray value = row->write(*this, modelName)) {
                setField(structArray, index, row->name, std::move(value));
            }
        }
    });
}

void SignalClient::getPersistenceData(nvArray* structArray, std::size_t index) const
{
    createStructData(structArray, index, std::u16string());
}

void SignalClient::setFromPersistentData(const nvArray* structArray, std::size_t index)
{
    withHostMemoryErrors([&] {
        SignalClient read;
        for (const Fields::Row& row : Fields::table) {
            row.readField(read, nvGetField(structArray, index, row.name));
        }
        swapFields(read);
    });
}

void SignalClient::setFromNVCOS(const nvArray* object, const std::u16string& modelName)
{
    withHostMemoryErrors([&] {
        SignalClient read;
        for (const Fields::Row& row : Fields::table) {
            row.readProperty(read, object, row.name);
        }
        read.stripModelName(modelName);
        swapFields(read);
    });
}

OwnedArray SignalClient::getNVCOSObject(const std::u16string& modelName) const
{
    return withHostMemoryErrors([&] {
        constexpr std::array<std::size_t, 2> scalar = {1, 1};
        const OwnedArray data = asTemporary(OwnedArray(
            nvCreateStructArray(scalar.size(), scalar.data(), getNumStructFields(), getStructFields())));
        createStructData(data.get(), 0, modelName);
        return std::move(callHostNoThrow<1>("Zelmar.HMI.SignalClient", data.get()).outputs[0]);
    });
}

}  // namespace zm_hmi
