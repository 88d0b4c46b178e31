#ifndef ZM_SIMULATION_OBSERVED_SIGNALS_HPP
#define ZM_SIMULATION_OBSERVED_SIGNALS_HPP

#include "hmi/StreamingClients.hpp"
#include "reference_host/model/Model.hpp"
#include "reference_host/values/Value.hpp"
#include "simulation/Source.hpp"
#include "simulation/ValueHub.hpp"

#include <optional>
#include <string>
#include <vector>

namespace simulation {

/// An instrumented signal of a model, and its place in the diagram as it is now.
struct ObservedSignal {
    Channel channel;             ///< all but id, source and layout
    std::optional<Place> place;  ///< no value where the diagram has no such port or chart object

    bool operator==(const ObservedSignal&) const = default;
};

/// The signals in the observers parameter of a model, in their order; none where there are none. The block is
/// the one of the signal's ZID, else of its path; the port is the one of the signal's number.
std::vector<ObservedSignal> readObservedSignals(const reference_host::Model& model);

/// The streaming clients in the observers parameter as the library keeps them, cheap to compare: equal lists
/// have equal clients. No host function is called.
std::vector<std::string> clientRecords(const nvArray* clientsObject);

/// Fresh copies of the clients, aligned with the diagram as it is now, and resolved through their own
/// methods: a client keeps the signal that it once resolved. `channels` are those of the hub.
std::vector<ResolvedClient> resolveClients(const reference_host::Model& model, const nvArray* clientsObject,
                                           const std::vector<Channel>& channels);

}  // namespace simulation

#endif
