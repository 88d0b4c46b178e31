#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"

#include <string>

namespace reference_host {

class Block;

/// The current path, with the model name, of the block that a signal refers to among the open models. The
/// ZID decides, so that a renamed or moved block is followed: a full one ("plant:12"), or a relative
/// one ("12") in the model that the path begins with. A chart has the ZID of the block that carries
/// it. Where no block has the ZID, the path decides. A signal without a block is a host error
/// ("UnknownBlock": path, ZID).
ZM_REFHOST_API std::u16string alignedBlockPath(const std::string& zid, const std::u16string& path);

/// The block itself; null if neither ZID nor path leads to one.
ZM_REFHOST_API Block* alignedBlock(const std::string& zid, const std::u16string& path);

/// The host function "getAlignedBlockPath": takes one "Zelmar.HMI.SignalSpecification" and returns the
/// `alignedBlockPath` of its "ZID_" and "BlockPath_".
void getAlignedBlockPath(HostFunctionCall& call);

}  // namespace reference_host
