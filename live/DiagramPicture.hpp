#ifndef ZM_LIVE_DIAGRAM_PICTURE_HPP
#define ZM_LIVE_DIAGRAM_PICTURE_HPP

#include "reference_host/model/Model.hpp"

#include <string>

namespace live {

/// The diagram as SVG; empty when it cannot be drawn, or is so large that drawing would take long. Main
/// thread only.
std::string diagramPicture(const reference_host::Model& model);

/// The title of the group in the picture that has the outputs of a block; empty where there is no such block.
/// The path is UTF-8 and begins with the model name.
std::string pictureNode(const reference_host::Model& model, const std::string& blockPath);

}  // namespace live

#endif
