#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <filesystem>
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

/// The name of the node that has a block's outputs, which is also the title of its group in an .svg.
ZM_REFHOST_API std::string drawingNode(const Block& block);

/// Draws a model into a file, in the format that the file's extension names (".svg", ".png", ".pdf" …), by
/// Graphviz's program "dot". If the program is missing or fails, nothing is drawn and a host error gives the
/// reason in the program's own words ("DrawingFailed": file, reason).
ZM_REFHOST_API void drawDiagram(const Model& model, const std::filesystem::path& file);

}  // namespace reference_host
