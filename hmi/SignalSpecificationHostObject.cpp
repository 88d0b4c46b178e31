#include "hmi/SignalSpecification.hpp"
#include "hmi/SignalSpecificationFields.hpp"

#include "hmi_foundation/ModelPath.hpp"
#include "host/HostCall.hpp"

#include <memory>
#include <span>
#include <utility>

namespace zm_hmi {

void SignalSpecification::setFromNVCOS(const nvArray* object, const std::u16string& modelName)
{
    const auto readAll = [&](std::initializer_list<Fields::Field> fields) {
        for (const Fields::Field field : fields) {
            const Fields::Row& row = Fields::table[field];
            row.read(*this, readProperty(object, row.name).get());
        }
    };
    readAll({Fields::Uuid, Fields::ZID, Fields::BlockPath, Fields::SubPath, Fields::SubSysPath,
             Fields::SignalName, Fields::DomainType, Fields::VisualType, Fields::DomainParams,
             Fields::OutputPortIndex, Fields::LogicalPortIndex, Fields::Decimation, Fields::MaxPoints,
             Fields::TargetBufferedStreaming, Fields::IsFrameBased, Fields::HideInDVX, Fields::BindingRule});

    // An empty handle means that none is cached: handle and port keep what they have.
    const Fields::Row& handle = Fields::table[Fields::CachedBlockHandle];
    const OwnedArray handleValue = readProperty(object, handle.name);
    if (!nvIsEmpty(handleValue.get())) {
        handle.read(*this, handleValue.get());
        readAll({Fields::CachedPortIdx});
    }

    readAll({Fields::ExcludeForSave});
    stripModelName(modelName);
}

OwnedArray SignalSpecification::getNVCOSObject(const std::u16string& modelName, bool asStruct) const
{
    constexpr std::array<std::size_t, 2> scalar = {1, 1};
    OwnedArray data(
        nvCreateStructArray(scalar.size(), scalar.data(), getNumStructFields(asStruct), getStructFields()));
    zmsvSetLocalScope(data.get());
    createStructData(data.get(), 0, modelName);

    const auto write = [&](Fields::Field field) { return Fields::table[field].write(*this, modelName); };
    if (asStruct) {
        for (const Fields::Field field : {Fields::BindingRule, Fields::CachedBlockHandle,
                                          Fields::CachedPortIdx, Fields::ExcludeForSave}) {
            setField(data.get(), 0, Fields::table[field].name, write(field));
        }
        nvSetArrayScope(data.get(), nvScope::CallerOwned);
        return data;
    }

    data = asTemporary(std::move(data));
    auto [succeeded, outputs] = callHostNoThrow<1>("Zelmar.HMI.SignalSpecification", data.get());
    OwnedArray object = std::move(outputs[0]);
    if (!object) {
        return nullptr;
    }
    const auto setProperty = [&](Fields::Field field) {
        nvSetProperty(object.get(), 0, Fields::table[field].name, write(field).get());
    };
    setProperty(Fields::BindingRule);
    // Unlike the struct, the object gets handle and port only when a handle is cached: on the host's
    // side an unset handle is what "not cached" looks like.
    if (CachedBlockHandle_ != 0.0) {
        setProperty(Fields::CachedBlockHandle);
        setProperty(Fields::CachedPortIdx);
    }
    setProperty(Fields::ExcludeForSave);
    return object;
}

std::u16string SignalSpecification::getAlignedBlockPath(const std::u16string& modelName) const
{
    OwnedArray object = getNVCOSObject(modelName, false);
    if (!object) {
        return {};
    }
    object = asTemporary(std::move(object));
    const HostCallResult<1> result = callHostNoThrow<1>("getAlignedBlockPath", object.get());
    return nvGetUString(result.outputs[0].get());  // an answer that is no text is the caller's host error
}

SignalSpecification* SignalSpecification::createSigSpecFromPort(const std::u16string& blockPath,
                                                                const std::string& zid, int outputPortIndex,
                                                                int logicalPortIndex, double blockHandle,
                                                                const std::u16string& modelName,
                                                                bool excludeForSave)
{
    auto record = std::make_unique<SignalSpecification>();
    record->BlockPath_ = blockPath;
    record->ZID_ = zid;
    record->OutputPortIndex_ = outputPortIndex;
    record->LogicalPortIndex_ = logicalPortIndex;
    record->setCachedInfo(blockHandle, outputPortIndex);
    record->stripModelName(modelName);
    const bool isKnownPort = isInBlockHandleUUIDmap(outputPortIndex, blockHandle);
    record->UUID = getUUIDFromBlockHandle(outputPortIndex, blockHandle, isKnownPort);
    record->ExcludeForSave_ = excludeForSave;
    return record.release();
}

}  // namespace zm_hmi
