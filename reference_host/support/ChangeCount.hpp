#ifndef ZM_REFERENCE_HOST_SUPPORT_CHANGE_COUNT_HPP
#define ZM_REFERENCE_HOST_SUPPORT_CHANGE_COUNT_HPP

#include "reference_host/Export.hpp"

#include <cstdint>

namespace reference_host {

/// Counts what may have changed a diagram or an object of a class, so that code that keeps something derived
/// from them sees cheaply that nothing has changed. Counts too much rather than too little: a method that
/// only reads counts. Main thread only.
class ZM_REFHOST_API ChangeCount {
public:
    ChangeCount() = delete;

    static std::uint64_t ofDiagrams() noexcept;  ///< blocks, ports, connections, charts, observers parameters
    static std::uint64_t ofObjects() noexcept;   ///< methods called and properties assigned

    static void diagramChanged() noexcept;
    static void objectUsed() noexcept;
};

}  // namespace reference_host

#endif
