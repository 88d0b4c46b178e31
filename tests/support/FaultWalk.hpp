#ifndef ZM_TESTS_SUPPORT_FAULT_WALK_HPP
#define ZM_TESTS_SUPPORT_FAULT_WALK_HPP

#include "reference_host/calls/Faults.hpp"

#include <cstdint>
#include <functional>
#include <string>

namespace reference_host {

/// Runs the body with a fault in its first call of the operation (or of `Faults::anyOperation`), then in
/// its second, and so on until it gets through without meeting the fault. Each time the ledger has to
/// be closed afterwards. The body may throw host exceptions while a fault strikes, and nothing else.
/// Returns how many calls were made to fail, so that a test can state that there were any.
std::uint64_t walkFaults(const std::string& operation, FaultKind kind, const std::function<void()>& body);

}  // namespace reference_host

#endif
