#include "contract/Check.hpp"
#include "host/Memory.hpp"

#include <sys/resource.h>
#include <unistd.h>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <memory>

// The host's allocator: host/Memory.hpp.

using namespace contract;

namespace {

class Base : public HostAllocated {
public:
    Base() = default;
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;
    virtual ~Base() = default;
};

class Derived : public Base {
public:
    explicit Derived(int& destroyed) : m_destroyed(destroyed) {}
    ~Derived() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

std::size_t addressSpace()
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

ZM_CHECK(blocksAreZeroFilled, "nvAllocateZeroed", "A new block is filled with zeros.")
{
    for (int i = 0; i < 3; ++i) {
        constexpr std::size_t size = 1000;
        auto* block = static_cast<std::byte*>(nvAllocateZeroed(size));
        expectTrue(block != nullptr, "there is a block");
        const auto isZero = [](std::byte byte) { return byte == std::byte{0}; };
        expectTrue(std::all_of(block, block + size, isZero), "all bytes are 0");
        std::fill(block, block + size, std::byte{0xA5});
        nvFree(block);
    }
}

ZM_CHECK(blocksAreAligned, "nvAllocateZeroed", "A block is aligned for any object.")
{
    for (const auto size : std::initializer_list<std::size_t>{1, 8, 24, 100}) {
        void* block = nvAllocateZeroed(size);
        expectEqual(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), std::size_t{0});
        nvFree(block);
    }
}

ZM_CHECK(blockOfNoSizeIsABlock, "nvAllocateZeroed", "A block of size 0 is not null.")
{
    void* block = nvAllocateZeroed(0);
    expectTrue(block != nullptr, "there is a block");
    nvFree(block);
}

ZM_CHECK(blockBeyondMemoryIsNull, "nvAllocateZeroed", "A block that cannot fit into memory is null.")
{
    volatile std::size_t size = std::numeric_limits<std::size_t>::max() / 2;
    expectTrue(nvAllocateZeroed(size) == nullptr, "null");
}

ZM_CHECK(freeingNullDoesNothing, "nvFree", "Freeing null does nothing.")
{
    nvFree(nullptr);
}

ZM_CHECK(freedMemoryIsUsedAgain, "nvFree", "A freed block's memory is available again.")
{
    constexpr std::size_t block = std::size_t{64} << 20U;
    if (addressSpace() > (std::size_t{1} << 40U)) {
        skip("the address space of this process cannot be limited (a sanitizer?)");
    }
    const rlim_t limit = addressSpace() + 8 * block;
    const rlimit space{limit, limit};
    expectEqual(setrlimit(RLIMIT_AS, &space), 0);
    for (int i = 0; i < 32; ++i) {
        void* memory = nvAllocateZeroed(block);
        expectTrue(memory != nullptr, "block " + std::to_string(i));
        nvFree(memory);
    }
}

ZM_CHECK(descriptorsGoBackThroughTheirBase, "nvFree nvAllocateZeroed",
         "An object in the host's memory can be deleted through its base.")
{
    int destroyed = 0;
    std::unique_ptr<Base> object = std::make_unique<Derived>(destroyed);
    object.reset();
    expectEqual(destroyed, 1);
}
