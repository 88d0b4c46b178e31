#ifndef ZM_SIMULATION_SOURCE_ORDER_HPP
#define ZM_SIMULATION_SOURCE_ORDER_HPP

#include <cstddef>
#include <vector>

namespace simulation {

/// An order in which each source comes after those that it reads from, given by their numbers. Where sources
/// read from each other in a circle, the first of them in the given order comes last.
std::vector<std::size_t> orderOfSources(const std::vector<std::vector<std::size_t>>& readFrom);

}  // namespace simulation

#endif
