#ifndef ZM_HMI_HMI_ENGINE_UTILS_HPP
#define ZM_HMI_HMI_ENGINE_UTILS_HPP

#include "hmi_foundation/Export.hpp"

#include <string>

namespace zm_hmi {

class HMIEngineUtils {
public:
    HMIEngineUtils() = delete;

    /// Tells the host that the parameters of a block, given by its full path, have changed. Errors are
    /// discarded: a failed refresh must not disturb the edit that caused it. Main thread only.
    ZM_HMI_API static void updateParamsForBlock(const std::u16string& blockPath) noexcept;
};

}  // namespace zm_hmi

#endif
