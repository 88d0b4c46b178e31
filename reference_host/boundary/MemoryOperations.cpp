#include "host/Memory.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MemoryBlocks.hpp"
#include "reference_host/support/MemoryLimit.hpp"

#include <algorithm>
#include <cstdlib>

using namespace reference_host;

namespace {

std::uint64_t blockCount = 0;

void* allocate(std::size_t size) noexcept
{
    void* block = size <= largestBlock ? std::calloc(std::max<std::size_t>(size, 1), 1) : nullptr;
    if (block == nullptr) {
        return nullptr;
    }
    try {
        openMemoryBlocks()[block] = {++blockCount, size, CallSite::current(), false};
    } catch (const std::bad_alloc&) {
        std::free(block);
        return nullptr;
    }
    return block;
}

/// A block that is not open stays as it is: to free it would be worse than to keep it.
void release(void* block) noexcept
{
    if (block != nullptr && openMemoryBlocks().erase(block) == 0) {
        Ledger::recordMisuse("nvFree: the block is not open; it was given back before or is not the host's");
        return;
    }
    std::free(block);
}

}  // namespace

namespace reference_host {

std::unordered_map<const void*, MemoryBlock>& openMemoryBlocks()
{
    static auto& blocks = *new std::unordered_map<const void*, MemoryBlock>;
    return blocks;
}

std::uint64_t lastMemoryBlock()
{
    return blockCount;
}

}  // namespace reference_host

void* nvAllocateZeroed(std::size_t size) noexcept
{
    BoundaryCall call({"nvAllocateZeroed", CanFail::Null}, size);
    return call.runNoThrow([&] { return allocate(size); });
}

void nvFree(void* block) noexcept
{
    BoundaryCall({"nvFree", CanFail::Never}, block).runNoThrow([&] { release(block); });
}
