#ifndef ZM_REFERENCE_HOST_SUPPORT_HOST_ERRORS_HPP
#define ZM_REFERENCE_HOST_SUPPORT_HOST_ERRORS_HPP

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"

#include <cstddef>
#include <vector>

namespace reference_host {

/// The catalog of the reference host's own messages.
inline constexpr const char* hostCatalog = "reference_host:errors";

/// Throws the message `key` of the host's own catalog. Argument {0} of the text is the operation
/// under way, put in front of `arguments` here, so that every host error names it.
[[noreturn]] ZM_REFHOST_API void throwHostError(const char* key,
                                                const std::vector<zmsvMessageArgument>& arguments = {});

/// As `throwHostError`, for what a caller must never do; the ledger counts it.
[[noreturn]] ZM_REFHOST_API void throwMisuse(const char* key,
                                             const std::vector<zmsvMessageArgument>& arguments = {});

/// Host error when a pointer is null that has to lead to `count` things; with none to lead to, it may
/// be null.
ZM_REFHOST_API void requirePointer(const void* pointer, std::size_t count = 1);

}  // namespace reference_host

#endif
