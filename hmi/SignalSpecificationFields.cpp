#include "hmi/SignalSpecificationFields.hpp"

#include "hmi/Numbers.hpp"
#include "hmi_foundation/ModelPath.hpp"

namespace zm_hmi {

namespace {

using Record = SignalSpecification;
using Model = std::u16string;

template <std::string Record::*Member>
OwnedArray writeNarrow(const Record& record, const Model&)
{
    return makeString(record.*Member);
}

template <std::string Record::*Member>
void readNarrow(Record& record, const nvArray* value)
{
    record.*Member = nvArrayToStdString(value);
}

template <std::u16string Record::*Member>
OwnedArray writeText(const Record& record, const Model&)
{
    return makeString(record.*Member);
}

template <std::u16string Record::*Member>
void readText(Record& record, const nvArray* value)
{
    record.*Member = nvGetUString(value);
}

template <int Record::*Member>
OwnedArray writeInt(const Record& record, const Model&)
{
    return makeDouble(record.*Member);
}

template <int Record::*Member>
void readInt(Record& record, const nvArray* value)
{
    record.*Member = truncateToInt(nvGetScalar(value));
}

// Flags are doubles in the struct form, not logicals; readers take any number.
template <bool Record::*Member>
OwnedArray writeFlag(const Record& record, const Model&)
{
    return makeDouble(record.*Member ? 1.0 : 0.0);
}

template <bool Record::*Member>
void readFlag(Record& record, const nvArray* value)
{
    record.*Member = nvGetScalar(value) != 0.0;
}

// The one flag that is a logical.
template <bool Record::*Member>
OwnedArray writeLogical(const Record& record, const Model&)
{
    return makeLogical(record.*Member);
}

template <bool Record::*Member>
void readLogical(Record& record, const nvArray* value)
{
    record.*Member = nvIsLogicalScalarTrue(value);
}

template <double Record::*Member>
OwnedArray writeDouble(const Record& record, const Model&)
{
    return makeDouble(record.*Member);
}

template <double Record::*Member>
void readDouble(Record& record, const nvArray* value)
{
    record.*Member = nvGetScalar(value);
}

template <std::u16string Record::*Member>
OwnedArray writePath(const Record& record, const Model& modelName)
{
    return makeString(zm_hmi_foundation::AddModelToPath(record.*Member, modelName));
}

template <std::string Record::*Member>
OwnedArray writeZID(const Record& record, const Model& modelName)
{
    return makeString(zm_hmi_foundation::AddModelToZID(record.*Member, modelName));
}

OwnedArray writeDomainParams(const Record& record, const Model&)
{
    return record.getDomainParamsAsNVArray();
}

template <Record::DomainParams Record::*Member>
void readDomainParams(Record& record, const nvArray* value)
{
    Record::extractDomainParamsFromNVArray(value, record.*Member);
}

}  // namespace

#define ZM_FIELD(member, write, read)                          \
    {                                                          \
        #member, write<&Record::member>, read<&Record::member> \
    }

const std::array<Record::Fields::Row, Record::Fields::Count> Record::Fields::table = {{
    ZM_FIELD(UUID, writeNarrow, readNarrow),
    ZM_FIELD(BlockPath_, writePath, readText),
    ZM_FIELD(ZID_, writeZID, readNarrow),
    ZM_FIELD(SubPath_, writeText, readText),
    ZM_FIELD(OutputPortIndex_, writeInt, readInt),
    ZM_FIELD(LogicalPortIndex_, writeInt, readInt),
    ZM_FIELD(SignalName_, writeText, readText),
    ZM_FIELD(SubSysPath_, writeText, readText),
    ZM_FIELD(Decimation_, writeInt, readInt),
    ZM_FIELD(MaxPoints_, writeInt, readInt),
    ZM_FIELD(TargetBufferedStreaming_, writeFlag, readFlag),
    ZM_FIELD(IsFrameBased_, writeFlag, readFlag),
    ZM_FIELD(HideInDVX_, writeFlag, readFlag),
    ZM_FIELD(DomainType_, writeText, readText),
    {"DomainParams_", writeDomainParams, readDomainParams<&Record::DomainParams_>},
    ZM_FIELD(VisualType_, writeText, readText),
    ZM_FIELD(BindingRule_, writeNarrow, readNarrow),
    ZM_FIELD(CachedBlockHandle_, writeDouble, readDouble),
    ZM_FIELD(CachedPortIdx_, writeInt, readInt),
    ZM_FIELD(ExcludeForSave_, writeLogical, readLogical),
}};

#undef ZM_FIELD

}  // namespace zm_hmi
