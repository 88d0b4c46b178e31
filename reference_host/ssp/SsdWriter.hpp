#ifndef ZM_REFERENCE_HOST_SSP_SSD_WRITER_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_WRITER_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <string>
#include <vector>

namespace reference_host {

/// The description that a model was read from; empty for a model that was made otherwise.
struct SsdSource {
    std::string text;
    std::vector<Block*> blocks;  ///< `Model::blocks()` after the reading: the elements in document order
};

/// The system structure description of a model. If the diagram is as it was read, the result is the source's
/// text, byte for byte. Otherwise the source's XML tree is edited (names, blocks, connectors, connections)
/// and written as UTF-8. All other elements, attributes, comments, processing instructions, namespaces and
/// texts are kept; white space inside tags, quotes, CR LF and character references are written in one form.
/// The same diagram and source give the same bytes. An empty source gives a new description of SSP 1.0.
///
/// A block keeps its element when it is renamed or moved. A connector is identified by its block, kind and
/// name; a connection by what it connects. The order of connectors has no meaning in a description: existing
/// ones keep their places and new ones follow. A new component has no source in SSP 2, and an empty one in
/// SSP 1, which requires it.
///
/// A name that XML cannot represent is a host error ("UnwritableName": name, place from 1, code unit), so is
/// a source of another model ("ForeignDescription") and a result that `readSsd` would refuse
/// ("InvalidDiagram").
ZM_REFHOST_API std::string writeSsd(const Model& model, const SsdSource& source);

}  // namespace reference_host

#endif
