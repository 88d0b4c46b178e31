#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <string>

namespace reference_host {

/// A model as a graph for Graphviz's program "dot", UTF-8. Components have their inputs on the left and their
/// outputs on the right; systems are boxes around their blocks, with a strip for their own inputs and one for
/// their outputs. An observed output is green with a dot; with a streaming client it is blue with an eye. An
/// observed chart is marked under its block's name.
///
/// Nodes are named by the path of their block and ports by their connector, because viewers show these names
/// when the pointer rests on a block or a connection.
ZM_REFHOST_API std::string diagramAsDot(const Model& model);

}  // namespace reference_host
