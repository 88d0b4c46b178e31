#include "tests/support/CountingNew.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> count{0};
std::atomic<std::size_t> failing{0};  // the number of the allocation that fails; 0 for none

}  // namespace

namespace counting_new {

std::size_t allocations()
{
    return count;
}

void failAllocation(std::size_t nth)
{
    failing = nth == 0 ? 0 : count + nth;
}

bool hasFailed()
{
    return failing != 0 && count >= failing;
}

}  // namespace counting_new

void* operator new(std::size_t size)
{
    const bool fails = ++count == failing;
    void* block = fails ? nullptr : std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}
