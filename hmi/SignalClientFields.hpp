#ifndef ZM_HMI_SIGNAL_CLIENT_FIELDS_HPP
#define ZM_HMI_SIGNAL_CLIENT_FIELDS_HPP

#include "hmi/FieldTable.hpp"
#include "hmi/SignalClient.hpp"

#include <array>

namespace zm_hmi {

/// The fields of a streaming client: one row a field, in the order of the host struct, which is also the
/// order in which they are read. `read` takes a struct's field, which may be missing; `readProperty` an
/// object's property.
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

    /// Takes a member from a property of an object; not the parameters, see `SignalClient::setFromNVCOS`.
    /// An object has every property, in its own class: where a struct's missing field stands for 0, and any
    /// number for a flag, an object that gives nothing or no logical is a host error.
    static void readProperty(SignalClient& record, Field field, const nvArray* value);

    /// Makes an owned value the record's own: it outlives every call.
    static OwnedArray persistent(OwnedArray value);
};

}  // namespace zm_hmi

#endif
