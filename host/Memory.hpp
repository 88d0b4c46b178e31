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

/// Runs the body of a function that the host calls: `std::bad_alloc` leaves as the host's own exception. The
/// only place where one is turned into the other.
template <class Body>
decltype(auto) withHostMemoryErrors(Body&& body)
{
    try {
        return body();
    } catch (const std::bad_alloc&) {
        zmsvThrowOutOfMemory();
    }
}

/// Passes an owned object to `take`, a call of the host that owns the object once it has returned. When it
/// throws, the object is destroyed here.
template <class Owner, class Take>
void handOver(Owner object, Take take)
{
    take(object.get());
    static_cast<void>(object.release());
}

/// Base of the objects that the library makes and the host's class object system then owns. Their memory is
/// the host's, zero-filled; `delete` through any base pointer with a virtual destructor frees it with
/// `nvFree`.
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

    // These objects are made one at a time, and only in the host's memory.
    static void* operator new[](std::size_t) = delete;
    static void operator delete[](void*) = delete;

protected:
    HostAllocated() = default;
    ~HostAllocated() = default;
    HostAllocated(const HostAllocated&) = default;
    HostAllocated& operator=(const HostAllocated&) = default;
};

#endif
