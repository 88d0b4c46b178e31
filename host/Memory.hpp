#ifndef ZM_HOST_MEMORY_HPP
#define ZM_HOST_MEMORY_HPP

#include "host/Conventions.hpp"
#include "host/Exceptions.hpp"

#include <cstddef>
#include <new>

/// [owned] [no-throw] A zero-filled block of the host's allocator, aligned for any object; null when
/// memory is short. Ends in `nvFree`.
ZM_HOST_API void* nvAllocateZeroed(std::size_t size) noexcept;

/// [consumed: block] [null ok] [no-throw] Ends a block of the host's allocator.
ZM_HOST_API void nvFree(void* block) noexcept;

/// Runs what the host calls, so that short memory inside of us leaves as the host's own exception.
template <class Body>
decltype(auto) withHostMemoryErrors(Body&& body)
{
    try {
        return body();
    } catch (const std::bad_alloc&) {
        zmsvThrowOutOfMemory();
    }
}

/// Base of the objects that the library makes and the host's class object system comes to own: their
/// memory is the host's, zero-filled, and `delete` through any base pointer with a virtual
/// destructor gives it back with `nvFree`.
class HostAllocated {
public:
    static void* operator new(std::size_t size)
    {
        void* block = nvAllocateZeroed(size);
        if (block == nullptr) {
            zmsvThrowOutOfMemory();
        }
        return block;
    }
    static void operator delete(void* block) noexcept { nvFree(block); }

    // Arrays of descriptors and other places than the host's memory are not for these objects.
    static void* operator new[](std::size_t) = delete;
    static void operator delete[](void*) = delete;

protected:
    HostAllocated() = default;
    ~HostAllocated() = default;
    HostAllocated(const HostAllocated&) = default;
    HostAllocated& operator=(const HostAllocated&) = default;
};

#endif
