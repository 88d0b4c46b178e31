#ifndef ZM_REFERENCE_HOST_SSP_SSD_WRITER_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_WRITER_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <string>

namespace reference_host {

/// The system structure description of a model: the document that it was read from (empty for a model that
/// was made otherwise, which gives a new one of SSP 1.0), with the diagram's edits written into it: names,
/// blocks added, moved and deleted, connectors, connections. Everything else stands as it stood, byte for
/// byte: units, sources, parameter bindings, geometry, annotations, comments, white space; a model without
/// edits gives the document itself. An edited document comes out as UTF-8, whatever it was before.
///
/// It is always the document of the reading that is handed in, also after the model was saved: blocks, ports
/// and connections know their elements there. Another document is a host error ("ForeignDescription").
///
/// The order of connectors says nothing in a description, so those that are there keep their places and new
/// ones follow; the numbers of ports are kept elsewhere. A new component has no source but, in SSP 1, an
/// empty one, which must be there.
///
/// A name that XML cannot hold is a host error ("UnwritableName": name, place from 1, code unit). So is a
/// description past what `readSsd` takes by default ("InvalidDiagram"), for it could not be opened again.
ZM_REFHOST_API std::string writeSsd(const Model& model, const std::string& document);

}  // namespace reference_host

#endif
