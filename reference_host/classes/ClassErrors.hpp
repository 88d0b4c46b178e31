#pragma once

#include "reference_host/support/ErrorCatalog.hpp"

namespace reference_host {

/// The catalog of the class system's errors.
inline constexpr const char* classCatalog = "reference_host:classes";

/// Throws the message `key` of the class catalog; see `ErrorCatalog::error`.
[[noreturn]] void throwClassError(const char* key, MessageArguments arguments = {},
                                  MessageArguments details = {});

}  // namespace reference_host
