#ifndef ZM_TESTS_HMI_REBINDING_ACCESS_HPP
#define ZM_TESTS_HMI_REBINDING_ACCESS_HPP

#include "hmi/InstrumentedSignals.hpp"

namespace zm_hmi {

/// The flag of a pending rebinding, which no operation of the library sets.
struct RebindingAccess {
    static bool& pending(InstrumentedSignals& signals) noexcept { return signals.m_rebindingPending; }
};

}  // namespace zm_hmi

#endif
