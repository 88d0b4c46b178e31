#include "NotImplemented.hpp"
#include "host/Memory.hpp"

#include <utility>

// The operations of host/Memory.hpp. Written by contract/generate.py; yours to change.

void* nvAllocateZeroed(std::size_t /*size*/) noexcept
{
    abortNotImplemented("nvAllocateZeroed");
}

void nvFree(void* /*block*/) noexcept
{
    abortNotImplemented("nvFree");
}
