#pragma once

#include <cstddef>
#include <new>

namespace reference_host {

/// More than any machine has. Larger requests are refused without asking the allocator: the allocators of
/// sanitizers abort instead of reporting that memory is short.
inline constexpr std::size_t largestBlock = std::size_t{1} << 39;

/// The product, or `std::bad_alloc` when no block could hold so many bytes.
inline std::size_t requireBytes(std::size_t count, std::size_t bytesEach)
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, bytesEach, &bytes) || bytes > largestBlock) {
        throw std::bad_array_new_length();
    }
    return bytes;
}

}  // namespace reference_host
