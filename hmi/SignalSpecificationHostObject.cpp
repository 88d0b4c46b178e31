#include "hmi/SignalSpecificationFields.hpp"

#include "hmi_foundation/ModelPath.hpp"
#include "host/HostCall.hpp"

#include <array>
#include <memory>
#include <span>
#include <utility>

namespace zm_hmi {

void SignalSpecification::setFromNVCOS(const nvArray* object, const std::u16string& modelName)
{
    static const auto order = Fields::sorted(Fields::table(), &Fields::Row::readTurn);
    bool isCached = true;
    for (const Fields::Row* row : order) {
        if (row->role == Fields::Role::CachedPort && !isCached) {
            continue;
        }
        const OwnedArray value = readProperty(object, row->name);
        if (row->role == Fields::Role::CachedHandle && nvIsEmpty(value.get())) {
            isCached = false;  // handle and port keep what they have
            continue;
        }
        row->read(*this, value.get());
        if (row->role != Fields::Role::Persisted) {
            cachedInfoChanged();
        }
    }
    stripModelName(modelName);
}

OwnedArray SignalSpecification::getNVCOSObject(const std::u16string& modelName, bool asStruct) const
{
    constexpr std::array<std::size_t, 2> scalar = {1, 1};
    OwnedArray data(
        nvCreateStructArray(scalar.size(), scalar.data(), getNumStructFields(asStruct), getStructFields()));
    zmsvSetLocalScope(data.get());
    createStructData(data.get(), 0, modelName);

    const std::span<const Fields::Row> runTimeRows = Fields::table().subspan(Fields::persisted().size());
    if (asStruct) {
        for (const Fields::Row& row : runTimeRows) {
            setField(data.get(), 0, row.name, row.write(*this, modelName));
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
    for (const Fields::Row& row : runTimeRows) {
        // Unlike the struct, the object gets handle and port only when a handle is cached: for the host, a
        // handle that is not set means that none is cached.
        if (row.role == Fields::Role::RunTime || CachedBlockHandle_ != 0.0) {
            nvSetProperty(object.get(), 0, row.name, row.write(*this, modelName).get());
        }
    }
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
