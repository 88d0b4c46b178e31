#ifndef ZM_REFERENCE_HOST_SUPPORT_MEMORY_BLOCKS_HPP
#define ZM_REFERENCE_HOST_SUPPORT_MEMORY_BLOCKS_HPP

#include "reference_host/support/CallSite.hpp"

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace reference_host {

/// A block of `nvAllocateZeroed` that was not given back yet.
struct MemoryBlock {
    std::uint64_t serial = 0;
    std::size_t size = 0;
    CallSite madeBy;
    bool meantToLive = false;  ///< declared to the ledger
};

/// Those that are open, by address. Never destroyed: libraries give blocks back while the process goes
/// down.
std::unordered_map<const void*, MemoryBlock>& openMemoryBlocks();

/// The number of the latest block.
std::uint64_t lastMemoryBlock();

}  // namespace reference_host

#endif
