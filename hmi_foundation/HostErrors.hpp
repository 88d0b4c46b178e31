#ifndef ZM_HMI_FOUNDATION_HOST_ERRORS_HPP
#define ZM_HMI_FOUNDATION_HOST_ERRORS_HPP

#include "host/Exceptions.hpp"

#include <cstddef>

namespace zm_hmi_foundation {

/// The message catalog of the library's errors.
inline constexpr const char* errorCatalog = "dvx_hmi_foundation:errors";

/// Throws the host exception for a message id.
[[noreturn]] void throwHostError(const zmsvMessageId& id);

/// Throws "InvalidElementIndex". Its one argument is the number of elements in the collection; the invalid
/// index is not passed.
[[noreturn]] void throwInvalidElementIndex(std::size_t elementCount);

/// Throws "NoCollection": an object of one of the host classes has no native collection behind it.
[[noreturn]] void throwNoCollection();

/// Converts an index of a script (1-based) into one of a collection (0-based). 0 throws
/// "InvalidElementIndex"; an index past the end is left to the collection, which throws the same.
std::size_t toZeroBasedIndex(std::size_t scriptIndex, std::size_t elementCount);

}  // namespace zm_hmi_foundation

#endif
