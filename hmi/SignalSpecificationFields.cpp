#include "hmi/SignalSpecificationFields.hpp"

#include "hmi_foundation/ModelPath.hpp"

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

OwnedArray writeDomainParams(const Record& record, const std::u16string& /*modelName*/)
{
    return record.getDomainParamsAsNVArray();
}

template <auto Member>
void readDomainParams(Record& record, const nvArray* value)
{
    Record::extractDomainParamsFromNVArray(value, record.*Member);
}

}  // namespace

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names
#define ZM_FIELD(member, write, read)                          \
    {                                                          \
        #member, write<&Record::member>, read<&Record::member> \
    }
// NOLINTEND(bugprone-macro-parentheses)

const std::array<Record::Fields::Row, Record::Fields::Count> Record::Fields::table = {{
    ZM_FIELD(UUID, writeText, readNarrow),
    ZM_FIELD(BlockPath_, writePath, readText),
    ZM_FIELD(ZID_, writeZID, readNarrow),
    ZM_FIELD(SubPath_, writeText, readText),
    ZM_FIELD(OutputPortIndex_, writeDouble, readInt),
    ZM_FIELD(LogicalPortIndex_, writeDouble, readInt),
    ZM_FIELD(SignalName_, writeText, readText),
    ZM_FIELD(SubSysPath_, writeText, readText),
    ZM_FIELD(Decimation_, writeDouble, readInt),
    ZM_FIELD(MaxPoints_, writeDouble, readInt),
    ZM_FIELD(TargetBufferedStreaming_, writeFlag, readFlag),
    ZM_FIELD(IsFrameBased_, writeFlag, readFlag),
    ZM_FIELD(HideInDVX_, writeFlag, readFlag),
    ZM_FIELD(DomainType_, writeText, readText),
    {"DomainParams_", writeDomainParams, readDomainParams<&Record::DomainParams_>},
    ZM_FIELD(VisualType_, writeText, readText),
    ZM_FIELD(BindingRule_, writeText, readNarrow),
    ZM_FIELD(CachedBlockHandle_, writeDouble, readDouble),
    ZM_FIELD(CachedPortIdx_, writeDouble, readInt),
    ZM_FIELD(ExcludeForSave_, writeLogical, readLogical),
}};

#undef ZM_FIELD

}  // namespace zm_hmi
