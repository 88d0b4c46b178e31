#ifndef ZM_REFERENCE_HOST_OBSERVERS_OBSERVER_ALIGNMENT_HPP
#define ZM_REFERENCE_HOST_OBSERVERS_OBSERVER_ALIGNMENT_HPP

#include "reference_host/calls/HostFunctions.hpp"

namespace reference_host {

/// The host function "getAlignedObservers": takes one "Zelmar.HMI.StreamingClients" and gives its clients
/// as new objects, in order, with paths and ZIDs as the diagram has them now. Each part of a client's path
/// is followed like the path of a signal (`alignedBlockPath`): the ZID decides. A part that leads to no
/// block stays as it is: to remove what is gone is another matter (`validateAndRemoveUnused`). The
/// collection is left alone. A collection whose model is not open is a host error ("ModelNotOpen").
void getAlignedObservers(HostFunctionCall& call);

}  // namespace reference_host

#endif
