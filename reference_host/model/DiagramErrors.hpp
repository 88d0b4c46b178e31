#pragma once

#include "reference_host/support/ErrorCatalog.hpp"

#include <string>

namespace reference_host {

/// The message catalog of everything that concerns diagrams.
inline constexpr const char* diagramCatalog = "reference_host:diagram";

/// A message of the diagram's catalog and its text; throw it, or report it as a warning.
zmsvException diagramError(const char* key, MessageArguments arguments);

/// A path for a message, UTF-8. Of a path from a file that is too long for a line, only the end, which is the
/// most specific part.
std::string endOfPath(const std::u16string& path);

}  // namespace reference_host
