#ifndef ZM_TESTS_HMI_SIGNAL_VALUES_HPP
#define ZM_TESTS_HMI_SIGNAL_VALUES_HPP

#include "hmi/InstrumentedSignals.hpp"
#include "reference_host/values/Value.hpp"

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace zm_hmi {

/// What one signal specification holds, to make host values and records from and to compare records by.
/// The defaults are those of a new record.
struct SignalValues {
    std::string uuid{};
    std::u16string blockPath{};
    std::string zid{};
    std::u16string subPath{};
    std::u16string signalName{};
    std::u16string subSysPath{};
    std::u16string domainType{};
    std::u16string visualType{};
    std::vector<std::pair<std::u16string, std::u16string>> domainParams{};
    int outputPort = 0;
    int logicalPort = 0;
    int decimation = 1;
    int maxPoints = 0;
    bool targetBufferedStreaming = false;
    bool isFrameBased = false;
    bool hideInDVX = false;
    double cachedHandle = 0.0;
    int cachedPort = 0;
    std::string bindingRule{};
    bool excludeForSave = false;

    friend bool operator==(const SignalValues&, const SignalValues&) = default;
};

std::ostream& operator<<(std::ostream& out, const SignalValues& values);

/// Every member different from its default and from every other.
SignalValues distinctValues();

/// A port with nothing but a path and an output port.
SignalValues portValues(std::u16string blockPath, int outputPort);

/// A state of a chart, and one of its activities.
SignalValues stateValues(std::string zid, std::u16string kzid, std::u16string activity);

/// All members of a record; domain parameters by name.
SignalValues valuesOf(const SignalSpecification& record);

/// A persisted struct array, one element each.
reference_host::OwnedValue makePersisted(const std::vector<SignalValues>& signals);

/// An object of the host class; its cached handle is empty where the handle is 0.
reference_host::OwnedValue makeSignalObject(const SignalValues& values);

/// A record with exactly these members.
SignalSpecificationPtr makeSignal(const SignalValues& values);

}  // namespace zm_hmi

#endif
