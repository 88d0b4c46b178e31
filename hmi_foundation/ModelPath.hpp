#ifndef ZM_HMI_FOUNDATION_MODEL_PATH_HPP
#define ZM_HMI_FOUNDATION_MODEL_PATH_HPP

#include "hmi_foundation/Export.hpp"

#include <string>

/// Block paths ("model/sub/Block") and block identifiers, ZIDs ("model:12"), with and without the name
/// of the model. Records hold both without it, so that a model can be renamed or copied without
/// touching them; hosts address blocks with it. All four return a new text and compare code unit by
/// code unit. They keep no state and may be called from any thread.
namespace zm_hmi_foundation {

/// Takes one leading "model/" off. A path that is not longer than that prefix, or does not begin with
/// it, comes back as it is. With an empty model name the prefix is "/" alone.
ZM_HMI_API std::u16string RemoveModelFromPath(const std::u16string& path, const std::u16string& modelName);

/// Puts "model/" in front, also when it stands there already. An empty path stays empty; with an empty
/// model name the path comes back as it is.
ZM_HMI_API std::u16string AddModelToPath(const std::u16string& path, const std::u16string& modelName);

/// As `RemoveModelFromPath`, for "model:" with the model name in UTF-8.
ZM_HMI_API std::string RemoveModelFromZID(const std::string& zid, const std::u16string& modelName);

/// As `AddModelToPath`, for "model:" with the model name in UTF-8.
ZM_HMI_API std::string AddModelToZID(const std::string& zid, const std::u16string& modelName);

}  // namespace zm_hmi_foundation

#endif
