#include "hmi/SignalSpecificationFields.hpp"

#include "hmi_foundation/ModelPath.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <type_traits>
#include <utility>

namespace zm_hmi {

namespace {

using Record = SignalSpecification;
using namespace field;

// Flags are doubles in the struct form, not logicals; readers take any number.
template <auto Member>
OwnedArray writeFlag(const Record& record, const std::u16string& /*modelName*/)
{
    return makeDouble(record.*Member ? 1.0 : 0.0);
}

template <auto Member>
void readFlag(Record& record, const nvArray* value)
{
    record.*Member = nvGetScalar(value) != 0.0;
}

// The one flag that is a logical.
template <auto Member>
void readLogical(Record& record, const nvArray* value)
{
    record.*Member = nvIsLogicalScalarTrue(value);
}

template <auto Member>
OwnedArray writePath(const Record& record, const std::u16string& modelName)
{
    return makeString(zm_hmi_foundation::AddModelToPath(record.*Member, modelName));
}

template <auto Member>
OwnedArray writeZID(const Record& record, const std::u16string& modelName)
{
    return makeString(zm_hmi_foundation::AddModelToZID(record.*Member, modelName));
}

template <auto Member>
OwnedArray writeDomainParams(const Record& record, const std::u16string& /*modelName*/)
{
    return record.getDomainParamsAsNVArray();
}

template <auto Member>
void readDomainParams(Record& record, const nvArray* value)
{
    Record::extractDomainParamsFromNVArray(value, record.*Member);
}

template <auto Member>
bool areEqual(const Record& one, const Record& other)
{
    const auto& left = one.*Member;
    const auto& right = other.*Member;
    if constexpr (std::is_same_v<decltype(left), const Record::DomainParams&>) {
        // Walked side by side rather than looked up: the same parameters in another iteration order count as
        // different.
        return std::equal(left.begin(), left.end(), right.begin(), right.end());
    } else {
        return left == right;
    }
}

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names
#define ZM_FIELD(member, write, read, role, ...)                                              \
    {                                                                                         \
        {#member, write<&Record::member>, read<&Record::member>}, Record::Fields::Role::role, \
            areEqual<&Record::member>, __VA_ARGS__                                            \
    }
// NOLINTEND(bugprone-macro-parentheses)

constexpr bool required = true;
constexpr bool optional = false;

}  // namespace

// The last three columns are the turns: write, load, read. "DomainType_" and "VisualType_" may be missing,
// too: the text of a missing field is empty.
std::span<const Record::Fields::Row> Record::Fields::table()
{
    static constexpr auto rows = std::to_array<Row>({
        ZM_FIELD(UUID, writeText, readNarrow, Persisted, required, 1, 1, 1),
        ZM_FIELD(BlockPath_, writePath, readText, Persisted, required, 3, 5, 3),
        ZM_FIELD(ZID_, writeZID, readNarrow, Persisted, required, 2, 2, 2),
        ZM_FIELD(SubPath_, writeText, readText, Persisted, required, 4, 6, 4),
        ZM_FIELD(OutputPortIndex_, writeDouble, readInt, Persisted, required, 10, 3, 10),
        ZM_FIELD(LogicalPortIndex_, writeDouble, readInt, Persisted, optional, 11, 4, 11),
        ZM_FIELD(SignalName_, writeText, readText, Persisted, required, 5, 8, 6),
        ZM_FIELD(SubSysPath_, writeText, readText, Persisted, required, 6, 7, 5),
        ZM_FIELD(Decimation_, writeDouble, readInt, Persisted, required, 12, 9, 12),
        ZM_FIELD(MaxPoints_, writeDouble, readInt, Persisted, required, 13, 10, 13),
        ZM_FIELD(TargetBufferedStreaming_, writeFlag, readFlag, Persisted, optional, 14, 11, 14),
        ZM_FIELD(IsFrameBased_, writeFlag, readFlag, Persisted, optional, 15, 12, 15),
        ZM_FIELD(HideInDVX_, writeFlag, readFlag, Persisted, optional, 16, 13, 16),
        ZM_FIELD(DomainType_, writeText, readText, Persisted, required, 7, 14, 7),
        ZM_FIELD(DomainParams_, writeDomainParams, readDomainParams, Persisted, optional, 9, 16, 9),
        ZM_FIELD(VisualType_, writeText, readText, Persisted, required, 8, 15, 8),
        ZM_FIELD(BindingRule_, writeText, readNarrow, RunTime, optional, last, last, 17),
        ZM_FIELD(CachedBlockHandle_, writeDouble, readDouble, CachedHandle, optional, last, last, 18),
        ZM_FIELD(CachedPortIdx_, writeDouble, readInt, CachedPort, optional, last, last, 19),
        ZM_FIELD(ExcludeForSave_, writeLogical, readLogical, RunTime, optional, last, last, 20),
    });
    return rows;
}

#undef ZM_FIELD

std::span<const Record::Fields::Row> Record::Fields::persisted()
{
    const std::span<const Row> all = table();
    const auto end =
        std::find_if(all.begin(), all.end(), [](const Row& row) { return row.role != Role::Persisted; });
    return {all.begin(), end};
}

std::vector<const Record::Fields::Row*> Record::Fields::sorted(std::span<const Row> rows, int Row::*turn)
{
    std::vector<const Row*> order;
    order.reserve(rows.size());
    std::transform(rows.begin(), rows.end(), std::back_inserter(order), [](const Row& row) { return &row; });
    // Not std::stable_sort, which takes memory for itself.
    std::sort(order.begin(), order.end(), [&](const Row* one, const Row* other) {
        return std::pair(one->*turn, one) < std::pair(other->*turn, other);
    });
    return order;
}

}  // namespace zm_hmi
