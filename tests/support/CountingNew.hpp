#ifndef ZM_TESTS_SUPPORT_COUNTING_NEW_HPP
#define ZM_TESTS_SUPPORT_COUNTING_NEW_HPP

#include <cstddef>

/// Linked into an executable, replaces its operator new, and that of the shared objects it loads, with one
/// that counts and can be made to fail.
namespace counting_new {

/// How many allocations there were so far.
std::size_t allocations();

/// The nth allocation from now (1 is the next) fails with `std::bad_alloc`; 0 takes that back.
void failAllocation(std::size_t nth);

/// Whether the allocation that was to fail has been asked for.
bool hasFailed();

}  // namespace counting_new

#endif
