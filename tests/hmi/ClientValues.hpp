#ifndef ZM_TESTS_HMI_CLIENT_VALUES_HPP
#define ZM_TESTS_HMI_CLIENT_VALUES_HPP

#include "hmi/StreamingClients.hpp"
#include "reference_host/values/Value.hpp"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace zm_hmi {

/// What one signal client holds, to make host values and records from and to compare records by. The
/// defaults are those of a new record.
struct ClientValues {
    std::string uuid{};
    std::vector<std::u16string> modelPath{};
    std::vector<std::string> modelPathZID{};
    std::u16string sourceModel{};
    std::string signalUUID{};
    std::string observerType{};
    /// The parameters are a struct with the fields "ModelName", this text, and "Scale"; none for none.
    std::optional<std::u16string> paramsModelName{};
    std::uint64_t updateRate = 1;
    std::uint64_t dimensionChannel = 1;
    bool observeImaginaryPart = false;
    std::string busLeafPath{};

    friend bool operator==(const ClientValues&, const ClientValues&) = default;
};

std::ostream& operator<<(std::ostream& out, const ClientValues& values);

/// Every member different from its default and from every other; the paths have two parts.
ClientValues distinctClient();

/// A client with nothing but a UUID.
ClientValues clientNamed(std::string uuid);

/// All members of a record.
ClientValues valuesOf(const SignalClient& record);

/// Observer parameters, see above.
reference_host::OwnedValue makeParams(const std::u16string& modelName);

/// A persisted 1-by-n struct array. Where there are no parameters the field stays unset.
reference_host::OwnedValue makePersistedClients(const std::vector<ClientValues>& clients);

/// The persisted form of `distinctClient` without some of its fields.
reference_host::OwnedValue makePersistedWithout(const std::vector<std::string>& fields);

/// An object of the host class.
reference_host::OwnedValue makeClientObject(const ClientValues& values);

/// A record with exactly these members.
SignalClientPtr makeClient(const ClientValues& values);

}  // namespace zm_hmi

#endif
