#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/model/Model.hpp"

#include <unordered_map>
#include <vector>

namespace reference_host {

/// Binds every signal of a collection to the diagram as it is now. The rules, in this order:
///
///   1. UUID and ZID. The block is found by the signal's ZID. On it, the port is the one that
///      has the signal's UUID in the process's map of block ports, else the one of the signal's number.
///   2. Path. Where the ZID leads to no block, the block is the one at the signal's path; the port as in 1.
///   3. Port name. If the block has no such port, the port with the signal's name is taken.
///
/// A signal on an object of a chart takes its block by ZID, then by path, and keeps the object's number. A
/// signal that is bound has path, ZID, port number and cached handle and port of what it is bound to; its
/// other properties, its place in the list and its UUID stay. One that the rules lead nowhere is reported
/// as a warning ("SignalUnbound": path, port; "ActivityUnbound": path, object), and stays as it is, or is
/// removed where `removeUnbound` says so.
ZM_REFHOST_API void rebindSignals(const nvArray* signals, bool removeUnbound);

/// For each output port that a block had, by its old number from 1, the new one; 0 where it is gone.
using NewPortNumbers = std::unordered_map<const Block*, std::vector<int>>;

/// Gives the signals on the ports of these blocks their new numbers. One whose port is gone is reported as a
/// warning ("SignalUnbound") and removed.
ZM_REFHOST_API void renumberSignals(const nvArray* signals, const NewPortNumbers& newNumbers);

/// The host function "applyRebindingRules": takes one "Zelmar.HMI.InstrumentedSignals", any other value is
/// the host error "InvalidSignals", and the flag `removeUnbound`.
void applyRebindingRules(HostFunctionCall& call);

}  // namespace reference_host
