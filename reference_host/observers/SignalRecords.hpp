#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"
#include "reference_host/values/Value.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace reference_host {

inline constexpr const char* signalsClass = "Zelmar.HMI.InstrumentedSignals";

/// The fields of a signal that say which port or chart object it observes.
struct SignalRecord {
    std::string uuid;
    std::u16string path;  ///< in full
    std::string zid;      ///< in full
    std::u16string name;
    std::u16string domainType;
    int outputPort = 0;
    int logicalPort = 0;
    double cachedHandle = 0.0;
    int cachedPort = 0;
    /// For a signal on an object of a chart, its number; none for one on a port.
    std::optional<std::uint32_t> chartObject{};
};

/// Where a signal is in the diagram.
struct SignalPlace {
    Block* block = nullptr;  ///< by ZID, else by path (`alignedBlock`); null where there is none
    bool isThere = false;    ///< whether the block has the port or the chart object
};

/// The signals of a collection, in order. Read through the collection's methods, as scripts do.
ZM_REFHOST_API std::vector<SignalRecord> readSignals(const nvArray* signals);

ZM_REFHOST_API SignalPlace placeOf(const SignalRecord& signal);

/// The instrumented signals, and the streaming clients, in the observers parameter of a model; null when
/// there are none.
ZM_REFHOST_API OwnedValue modelSignals(const Model& model);
ZM_REFHOST_API OwnedValue modelClients(const Model& model);

}  // namespace reference_host
