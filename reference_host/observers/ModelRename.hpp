#pragma once

#include "reference_host/Export.hpp"

#include <string>

namespace reference_host {

/// Gives an open model another name, as `OpenModels::rename`, and has its observers follow. The streaming
/// clients are renamed. Instrumented signals cannot be: the observers parameter gets new ones with the
/// same elements, handles and all, and those that a script still holds keep the old name. A name that is
/// refused leaves everything as it was. The names are copies: a caller may well pass the model's own.
ZM_REFHOST_API void renameModelWithObservers(std::u16string oldName, std::u16string newName);

}  // namespace reference_host
