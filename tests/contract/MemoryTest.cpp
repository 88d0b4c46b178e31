#include "host/Memory.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>

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

class Failing : public HostAllocated {
public:
    Failing() { throw std::runtime_error("cannot be made"); }
};

TEST(Memory, OfTheHostIsZeroFilledAndAligned)
{
    constexpr std::size_t size = 1000;
    auto* block = static_cast<std::byte*>(nvAllocateZeroed(size));
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(std::all_of(block, block + size, [](std::byte byte) { return byte == std::byte{0}; }));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
    nvFree(block);
}

TEST(Memory, OfNoSizeIsABlockToo)
{
    void* block = nvAllocateZeroed(0);
    EXPECT_NE(block, nullptr);
    nvFree(block);
}

TEST(Memory, BeyondAllMeasureIsNull)
{
    volatile std::size_t size = std::numeric_limits<std::size_t>::max() / 2;
    EXPECT_EQ(nvAllocateZeroed(size), nullptr);
}

TEST(Memory, NullIsGivenBackQuietly)
{
    EXPECT_NO_THROW(nvFree(nullptr));
}

TEST(Memory, OfADescriptorGoesBackThroughItsBase)
{
    int destroyed = 0;
    std::unique_ptr<Base> object = std::make_unique<Derived>(destroyed);
    object.reset();
    EXPECT_EQ(destroyed, 1);
}

TEST(Memory, OfAnObjectThatCannotBeMadeGoesBack)
{
    EXPECT_THROW(std::make_unique<Failing>(), std::runtime_error);
}

}  // namespace
