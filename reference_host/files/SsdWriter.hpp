#ifndef ZM_REFERENCE_HOST_FILES_SSD_WRITER_HPP
#define ZM_REFERENCE_HOST_FILES_SSD_WRITER_HPP

#include "reference_host/Export.hpp"
#include "reference_host/diagram/Model.hpp"

#include <string>

namespace reference_host {

/// The system structure description of a model, UTF-8: the document that it was read from (empty for a
/// model that was made otherwise), with the diagram's edits written into it: names, blocks added, moved and
/// deleted, connectors, connections. Everything that the diagram does not know (units, sources, parameter
/// bindings, geometry, annotations, comments, white space) stands as it stood; a model without edits gives
/// the document byte for byte.
///
/// The order of connectors says nothing in a description, so those that are there keep their places and
/// new ones follow; the numbers of ports are kept elsewhere. A name that XML cannot hold is a host error
/// ("UnwritableName").
ZM_REFHOST_API std::string writeSsd(const Model& model, const std::string& document);

}  // namespace reference_host

#endif
