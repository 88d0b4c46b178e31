#ifndef ZM_REFERENCE_HOST_OBSERVERS_ALIGNED_BLOCK_PATH_HPP
#define ZM_REFERENCE_HOST_OBSERVERS_ALIGNED_BLOCK_PATH_HPP

#include "reference_host/Export.hpp"

#include <string>

namespace reference_host {

class Block;

/// The current path, with the model name, of the block that a signal names among the open models. The
/// ZID decides, so that a renamed or moved block is followed: a full one ("plant:12"), or a relative
/// one ("12") in the model that the path begins with. A chart has the ZID of the block that carries
/// it. Where the ZID leads to no block, the path does. A signal that leads to none is a host error
/// ("UnknownBlock": path, ZID).
ZM_REFHOST_API std::u16string alignedBlockPath(const std::string& zid, const std::u16string& path);

/// The block itself; null where ZID and path lead to none.
ZM_REFHOST_API Block* alignedBlock(const std::string& zid, const std::u16string& path);

/// Adds the host functions that answer from the open models: "getAlignedBlockPath" takes one
/// "Zelmar.HMI.SignalSpecification" and returns the `alignedBlockPath` of its "ZID_" and "BlockPath_".
ZM_REFHOST_API void installDiagramFunctions();

}  // namespace reference_host

#endif
