#pragma once

#include "reference_host/Export.hpp"

#include <string>

namespace reference_host {

/// Renames an open model, as `OpenModels::rename`, with its observers. The streaming clients are renamed.
/// Instrumented signals cannot be renamed: the observers parameter gets a new collection with the same
/// elements and handles, and a collection that a script still refers to keeps the old name. A refused name
/// changes nothing. The names are taken by value, because a caller may pass the model's own name.
ZM_REFHOST_API void renameModelWithObservers(std::u16string oldName, std::u16string newName);

}  // namespace reference_host
