#ifndef ZM_HMI_SIGNAL_CLIENT_FIELDS_HPP
#define ZM_HMI_SIGNAL_CLIENT_FIELDS_HPP

#include "hmi/FieldTable.hpp"
#include "hmi/SignalClient.hpp"

#include <array>

namespace zm_hmi {

/// The fields of a streaming client: one row a field, in the order of the host struct, which is also the
/// order in which they are read. `read` takes a struct field or an object's property alike, but for the
/// parameters: see `SignalClient::setFromNVCOS`.
struct SignalClient::Fields {
    enum Field : std::size_t {
        Uuid,
        ModelPath,
        ModelPathZID,
        SourceModel,
        SignalUUID,
        ObserverType,
        ObserverParams,
        UpdateRate,
        DimensionChannel,
        ObserveImaginaryPart,
        BusLeafPath,
        Count
    };

    using Row = FieldRow<SignalClient>;
    static const std::array<Row, Count> table;

    /// Makes an owned value the record's own: it outlives every call.
    static OwnedArray persistent(OwnedArray value);
};

}  // namespace zm_hmi

#endif
