#ifndef ZM_HMI_FIELD_TABLE_HPP
#define ZM_HMI_FIELD_TABLE_HPP

#include "hmi/Numbers.hpp"
#include "host/OwnedArray.hpp"

#include <algorithm>
#include <string>
#include <vector>

/// The parts of the records' field tables: a row for each field, and the conversions between a member and a
/// host value that more than one row uses. A conversion is a template over the member:
/// `writeText<&Record::SubPath_>`.
namespace zm_hmi {

template <class Record>
struct FieldRow {
    const char* name;
    /// [owned] The member as a host value; the model name is for members that are held without it. Null
    /// leaves the field unset.
    OwnedArray (*write)(const Record& record, const std::u16string& modelName);
    /// Takes the member from a host value, which may be null where the host's readers take null.
    void (*read)(Record& record, const nvArray* value);
};

/// The names of a table's fields, in its order.
template <class Table>
std::vector<const char*> fieldNames(const Table& table)
{
    std::vector<const char*> names(table.size());
    std::transform(table.begin(), table.end(), names.begin(), [](const auto& row) { return row.name; });
    return names;
}

namespace field {

template <class Member>
struct MemberTraits;

template <class Type, class Class>
struct MemberTraits<Type Class::*> {
    using Record = Class;
};

template <auto Member>
using RecordOf = typename MemberTraits<decltype(Member)>::Record;

/// UTF-8 or UTF-16 text.
template <auto Member>
OwnedArray writeText(const RecordOf<Member>& record, const std::u16string& /*modelName*/)
{
    return makeString(record.*Member);
}

template <auto Member>
void readNarrow(RecordOf<Member>& record, const nvArray* value)
{
    record.*Member = nvArrayToStdString(value);
}

template <auto Member>
void readText(RecordOf<Member>& record, const nvArray* value)
{
    record.*Member = nvGetUString(value);
}

/// A number, as a double scalar.
template <auto Member>
OwnedArray writeDouble(const RecordOf<Member>& record, const std::u16string& /*modelName*/)
{
    return makeDouble(record.*Member);
}

template <auto Member>
void readDouble(RecordOf<Member>& record, const nvArray* value)
{
    record.*Member = nvGetScalar(value);
}

template <auto Member>
void readInt(RecordOf<Member>& record, const nvArray* value)
{
    record.*Member = truncateToInt(nvGetScalar(value));
}

/// A flag that is a logical.
template <auto Member>
OwnedArray writeLogical(const RecordOf<Member>& record, const std::u16string& /*modelName*/)
{
    return makeLogical(record.*Member);
}

}  // namespace field

}  // namespace zm_hmi

#endif
