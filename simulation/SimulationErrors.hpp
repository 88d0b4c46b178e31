#ifndef ZM_SIMULATION_SIMULATION_ERRORS_HPP
#define ZM_SIMULATION_SIMULATION_ERRORS_HPP

#include "host/Exceptions.hpp"

#include <vector>

namespace simulation {

/// The message catalog of running simulations.
inline constexpr const char* simulationCatalog = "simulation:errors";

/// A message of the catalog and its text, to be thrown.
zmsvException simulationError(const char* key, std::vector<zmsvMessageArgument> arguments);

}  // namespace simulation

#endif
