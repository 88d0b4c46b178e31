#include "hmi/SignalSpecification.hpp"

#include "hmi/BlockPortUUIDs.hpp"
#include "hmi_foundation/ModelPath.hpp"

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

bool SignalSpecification::isSameSignal(const SignalSpecification* other) const
{
    if (other == nullptr) {
        return false;
    }
    if (CachedBlockHandle_ != 0.0 && other->CachedBlockHandle_ != 0.0 &&
        CachedBlockHandle_ == other->CachedBlockHandle_ && CachedPortIdx_ == other->CachedPortIdx_) {
        return true;
    }
    return OutputPortIndex_ == other->OutputPortIndex_ && LogicalPortIndex_ == other->LogicalPortIndex_ &&
           BlockPath_ == other->BlockPath_ && SubPath_ == other->SubPath_;
}

std::size_t SignalSpecification::m_changesOfEntered = 0;

void SignalSpecification::setCachedInfo(double blockHandle, int portIdx) noexcept
{
    CachedBlockHandle_ = blockHandle;
    CachedPortIdx_ = portIdx;
    cachedInfoChanged();
}

void SignalSpecification::renumberPortIndex(int newIndex) noexcept
{
    OutputPortIndex_ = newIndex;
    CachedPortIdx_ = newIndex;
    cachedInfoChanged();
}

void SignalSpecification::renameModel(const std::u16string& /*oldName*/, const std::u16string& /*newName*/) {}

void SignalSpecification::stripModelName(const std::u16string& modelName)
{
    BlockPath_ = RemoveModelFromPath(BlockPath_, modelName);
    ZID_ = RemoveModelFromZID(ZID_, modelName);
}

// ---- UUIDs of block ports -----------------------------------------------------------------------

BlockPortUUIDs SignalSpecification::m_blockUUIDmap;

bool SignalSpecification::isInBlockHandleUUIDmap(const int& portIndex, const double& blockHandle)
{
    return m_blockUUIDmap.contains(portIndex, blockHandle);
}

void SignalSpecification::addToBlockHandleUUIDmap(const int& portIndex, const double& blockHandle,
                                                  const std::string& uuid)
{
    m_blockUUIDmap.assign(portIndex, blockHandle, uuid);
}

std::string SignalSpecification::getUUIDFromBlockHandle(const int& portIndex, const double& blockHandle,
                                                        const bool& useMap)
{
    return useMap ? m_blockUUIDmap.findOrMake(portIndex, blockHandle) : BlockPortUUIDs::makeUUID();
}

std::unordered_map<std::string, std::string>& SignalSpecification::getBlockUUIDmap()
{
    return m_blockUUIDmap.map();
}

}  // namespace zm_hmi
