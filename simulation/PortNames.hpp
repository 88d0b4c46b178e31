#ifndef ZM_SIMULATION_PORT_NAMES_HPP
#define ZM_SIMULATION_PORT_NAMES_HPP

#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace simulation {

/// An output port of a diagram. It is of use as long as the diagram is.
struct OutputPort {
    const reference_host::Block* block = nullptr;
    std::size_t index = 0;  ///< 0-based

    bool operator==(const OutputPort&) const = default;
};

/// What a search for a port by its name found: the port, or why there is none.
struct PortSearch {
    std::optional<OutputPort> port;
    const char* reason = "";
};

/// The port that "Klima/Luftvolumen:Temperatur" or "Klima/Luftvolumen:1" names, UTF-8: the path of the
/// block, with or without the model name in front, ":" and the port's name or its number from 1. A
/// port's name comes before a number, a path without the model name before one with it.
PortSearch findPort(const reference_host::Model& model, std::string_view name);

/// The name by which `findPort` finds the port again: block path without the model name, ":" and the
/// port's name; its number where other ports of the block have the same name. UTF-8.
std::string portName(const OutputPort& port);

}  // namespace simulation

#endif
