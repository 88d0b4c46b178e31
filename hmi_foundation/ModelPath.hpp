#ifndef ZM_HMI_FOUNDATION_MODEL_PATH_HPP
#define ZM_HMI_FOUNDATION_MODEL_PATH_HPP

#include "hmi_foundation/Export.hpp"

#include <string>

/// Block paths ("model/sub/Block") and block identifiers, ZIDs ("model:12"), with and without the name
/// of the model. Records keep both without it, so that a model can be renamed or copied without changing
/// them; hosts address blocks with it. All four functions return a new text and compare code unit by code
/// unit. They keep no state and may be called from any thread. Short memory is `std::bad_alloc`.
namespace zm_hmi_foundation {

/// Removes one leading "model/". A path that is not longer than that prefix, or does not begin with it, is
/// returned unchanged. With an empty model name the prefix is "/" alone.
ZM_HMI_API std::u16string RemoveModelFromPath(const std::u16string& path, const std::u16string& modelName);

/// Adds "model/" in front, also when the path begins with it already. An empty path stays empty; with an
/// empty model name the path is returned unchanged.
ZM_HMI_API std::u16string AddModelToPath(const std::u16string& path, const std::u16string& modelName);

/// As `RemoveModelFromPath`, for "model:" with the model name in UTF-8.
ZM_HMI_API std::string RemoveModelFromZID(const std::string& zid, const std::u16string& modelName);

/// As `AddModelToPath`, for "model:" with the model name in UTF-8.
ZM_HMI_API std::string AddModelToZID(const std::string& zid, const std::u16string& modelName);

}  // namespace zm_hmi_foundation

#endif
