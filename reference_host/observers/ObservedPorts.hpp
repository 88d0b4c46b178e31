#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/observers/SignalRecords.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace reference_host {

/// One instrumented signal of a model and its place in the diagram as it is now.
struct ObservedPort {
    SignalRecord signal;
    SignalPlace place;
    std::size_t index = 0;   ///< in the collection, 0-based
    bool hasClient = false;  ///< a streaming client of the model observes the signal
    std::u16string label{};  ///< the signal's name, else that of the port or chart object
};

/// The observed ports and chart objects of a model, in the order of its signals; none without signals.
ZM_REFHOST_API std::vector<ObservedPort> observedPorts(const Model& model);

/// The host function "getObservedPorts": the observed ports of an open model, one element for each signal.
///
///   input 1    name of the model; one that is not open is a host error ("ModelNotOpen")
///   input 2    path of a system, with or without the model name: only what is inside; empty: everything
///   input 3    domain type: only signals that have it; empty: any
///   input 4    at every depth; otherwise only the direct children of the system
///   input 5    also signals whose block, port or chart object no longer exists
///
/// The ten results are columns of equal length. The fields of an observed port in the library are named
/// by position and are filled so:
///
///   result 1   name      UUID of the signal                                    cells of text
///   result 2   handle    run-time handle of the block; 0 when it is gone       numbers
///   result 3   number1   output port, from 1; 0 for a chart object             numbers
///   result 4   number2   logical port, 0 for none                              numbers
///   result 5   number3   place of the signal in the collection, from 1         numbers
///   result 6   flag1     the port or chart object exists                       logicals
///   result 7   flag2     a streaming client observes the signal                logicals
///   result 8   text1     path of the block with the model name, as it is now   cells of text
///   result 9   flag3     it is an object of a chart, not a port                logicals
///   result 10  text2     label: name of the signal, else of port or object     cells of text
void getObservedPorts(HostFunctionCall& call);

/// The host function "getPortsWithBadges": takes the name of an open model and gives, once each and in
/// ascending order, the handles of the blocks with an observed port or chart object, as a column.
void getPortsWithBadges(HostFunctionCall& call);

}  // namespace reference_host
