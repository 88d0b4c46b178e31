#ifndef ZM_REFERENCE_HOST_DRAWING_DIAGRAM_DRAWING_HPP
#define ZM_REFERENCE_HOST_DRAWING_DIAGRAM_DRAWING_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <filesystem>
#include <string>

namespace reference_host {

/// A model as a drawing in Graphviz's language: components with their inputs on the left and their outputs
/// on the right, systems as boxes around what they hold, with a strip for their own inputs and outputs, and
/// connections. An observed output is green and has a dot; where a streaming client is bound to it, it is
/// blue and has an eye. An observed chart is marked under its block's name.
ZM_REFHOST_API std::string diagramAsDot(const Model& model);

/// Draws a model into a file, in the format that the file's extension names (".svg", ".png", ".pdf" …), by
/// Graphviz's program "dot". Where the program is missing or fails, nothing is drawn and a host error says
/// so ("DrawingFailed": file, reason), in the program's own words where it has any.
ZM_REFHOST_API void drawDiagram(const Model& model, const std::filesystem::path& file);

}  // namespace reference_host

#endif
