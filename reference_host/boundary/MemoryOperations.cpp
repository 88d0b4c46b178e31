#include "host/Memory.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/support/MemoryBlocks.hpp"

using namespace reference_host;

void* nvAllocateZeroed(std::size_t size) noexcept
{
    BoundaryCall call({"nvAllocateZeroed", CanFail::Null}, size);
    return call.runNoThrow([&] { return allocateBlock(size); });
}

void nvFree(void* block) noexcept
{
    BoundaryCall({"nvFree", CanFail::Never}, block).runNoThrow([&] { releaseBlock(block); });
}
