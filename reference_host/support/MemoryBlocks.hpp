#pragma once

#include <cstddef>

namespace reference_host {

// The blocks of `nvAllocateZeroed`. The ledger lists those that are not released.

/// A zero-filled block of at least one byte, or null if memory is short.
void* allocateBlock(std::size_t size) noexcept;

/// Releases a block. A pointer that is not an open block is a misuse and is left alone: freeing it could
/// corrupt the heap. Null is ignored.
void releaseBlock(void* block) noexcept;

/// Sets whether the ledger expects an open block to stay open. Other addresses are ignored.
void setBlockMeantToLive(const void* block, bool isMeant) noexcept;

}  // namespace reference_host
