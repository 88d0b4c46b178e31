#ifndef ZM_TESTS_STREAMOUT_VIRTUAL_SLOT_HPP
#define ZM_TESTS_STREAMOUT_VIRTUAL_SLOT_HPP

#include <cstddef>
#include <cstring>

/// The slot of a virtual operation in its class's table, the destructor's pair being 0 and 1. In the
/// ABI that both our compilers follow, a pointer to a virtual member begins with the slot's offset in
/// the table, plus one on some machines.
template <class Operation>
std::size_t slotOf(Operation operation)
{
    std::size_t offset = 0;
    static_assert(sizeof(operation) == 2 * sizeof(offset));
    std::memcpy(&offset, &operation, sizeof(offset));
    return offset / sizeof(void*);
}

#endif
