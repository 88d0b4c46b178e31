#include "hmi/SignalSpecification.hpp"

#include "hmi/SignalSpecificationFields.hpp"
#include "hmi_foundation/ModelPath.hpp"

#include <algorithm>
#include <array>
#include <tuple>

namespace zm_hmi {

using zm_hmi_foundation::RemoveModelFromPath;
using zm_hmi_foundation::RemoveModelFromZID;

SignalSpecification::SignalSpecification(const nvArray* value, std::size_t index,
                                         const std::u16string& modelName)
{
    if (nvIsStruct(value)) {
        setFromPersistentData(value, index);
    } else {
        setFromNVCOS(value, modelName);
    }
}

SignalSpecification* SignalSpecification::clone() const
{
    return new SignalSpecification(*this);
}

bool SignalSpecification::isEqual(const SignalSpecification* other) const
{
    const auto settings = [](const SignalSpecification& s) {
        return std::tie(s.OutputPortIndex_, s.LogicalPortIndex_, s.Decimation_, s.MaxPoints_,
                        s.TargetBufferedStreaming_, s.IsFrameBased_, s.HideInDVX_, s.UUID, s.BlockPath_,
                        s.ZID_, s.SubPath_, s.SignalName_, s.SubSysPath_, s.DomainType_, s.VisualType_);
    };
    // The maps are walked side by side rather than looked up: the same parameters in another iteration
    // order count as different.
    return settings(*this) == settings(*other) &&
           std::equal(DomainParams_.begin(), DomainParams_.end(), other->DomainParams_.begin(),
                      other->DomainParams_.end());
}

bool SignalSpecification::isSameSignal(const SignalSpecification* other) const
{
    if (CachedBlockHandle_ != 0.0 && other->CachedBlockHandle_ != 0.0 &&
        CachedBlockHandle_ == other->CachedBlockHandle_ && CachedPortIdx_ == other->CachedPortIdx_) {
        return true;
    }
    return OutputPortIndex_ == other->OutputPortIndex_ && LogicalPortIndex_ == other->LogicalPortIndex_ &&
           BlockPath_ == other->BlockPath_ && SubPath_ == other->SubPath_;
}

void SignalSpecification::setCachedInfo(double blockHandle, int portIdx)
{
    CachedBlockHandle_ = blockHandle;
    CachedPortIdx_ = portIdx;
}

void SignalSpecification::renumberPortIndex(int newIndex)
{
    OutputPortIndex_ = newIndex;
    CachedPortIdx_ = newIndex;
}

void SignalSpecification::renameModel(const std::u16string& /*oldName*/, const std::u16string& /*newName*/) {}

void SignalSpecification::stripModelName(const std::u16string& modelName)
{
    BlockPath_ = RemoveModelFromPath(BlockPath_, modelName);
    ZID_ = RemoveModelFromZID(ZID_, modelName);
}

// ---- host struct form ---------------------------------------------------------------------------

const char* const* SignalSpecification::getStructFields()
{
    static const auto names = fieldNames(Fields::table);
    return names.data();
}

std::size_t SignalSpecification::getNumStructFields(bool withRuntimeFields)
{
    return withRuntimeFields ? Fields::Count : Fields::persistedCount;
}

void SignalSpecification::createStructData(nvArray* structArray, std::size_t index,
                                           const std::u16string& modelName) const
{
    static constexpr auto order = std::to_array<Fields::Field>({
        Fields::Uuid,
        Fields::ZID,
        Fields::BlockPath,
        Fields::SubPath,
        Fields::SignalName,
        Fields::SubSysPath,
        Fields::DomainType,
        Fields::VisualType,
        Fields::DomainParams,
        Fields::OutputPortIndex,
        Fields::LogicalPortIndex,
        Fields::Decimation,
        Fields::MaxPoints,
        Fields::TargetBufferedStreaming,
        Fields::IsFrameBased,
        Fields::HideInDVX,
    });
    static_assert(order.size() == Fields::persistedCount);
    for (const Fields::Field field : order) {
        const Fields::Row& row = Fields::table[field];
        replaceField(structArray, index, row.name, row.write(*this, modelName));
    }
}

void SignalSpecification::getPersistenceData(nvArray* structArray, std::size_t index,
                                             std::u16string modelName) const
{
    createStructData(structArray, index, std::u16string());
    // What is saved is the block's path as the host knows it now, and nothing when the host knows none:
    // the member may be out of date, and a stale path would bind to another block on loading.
    const std::u16string aligned = getAlignedBlockPath(modelName);
    replaceField(structArray, index, Fields::table[Fields::BlockPath].name,
                 makeString(RemoveModelFromPath(aligned, modelName)));
}

void SignalSpecification::setFromPersistentData(const nvArray* structArray, std::size_t index)
{
    enum class WhenAbsent { Read, Keep };  // a required field is read all the same, as the host reads null
    struct Step {
        Fields::Field field;
        WhenAbsent whenAbsent = WhenAbsent::Read;
    };
    // "DomainType_" and "VisualType_" are optional too: the text of a missing field reads as empty.
    static constexpr auto order = std::to_array<Step>({
        {Fields::Uuid},
        {Fields::ZID},
        {Fields::OutputPortIndex},
        {Fields::LogicalPortIndex, WhenAbsent::Keep},
        {Fields::BlockPath},
        {Fields::SubPath},
        {Fields::SubSysPath},
        {Fields::SignalName},
        {Fields::Decimation},
        {Fields::MaxPoints},
        {Fields::TargetBufferedStreaming, WhenAbsent::Keep},
        {Fields::IsFrameBased, WhenAbsent::Keep},
        {Fields::HideInDVX, WhenAbsent::Keep},
        {Fields::DomainType},
        {Fields::VisualType},
        {Fields::DomainParams, WhenAbsent::Keep},
    });
    static_assert(order.size() == Fields::persistedCount);
    for (const Step& step : order) {
        const Fields::Row& row = Fields::table[step.field];
        const nvArray* value = nvGetField(structArray, index, row.name);
        if (value != nullptr || step.whenAbsent == WhenAbsent::Read) {
            row.read(*this, value);
        }
    }
}

}  // namespace zm_hmi
