#ifndef ZM_HMI_SIGNAL_SPECIFICATION_FIELDS_HPP
#define ZM_HMI_SIGNAL_SPECIFICATION_FIELDS_HPP

#include "hmi/FieldTable.hpp"
#include "hmi/SignalSpecification.hpp"

#include <array>

namespace zm_hmi {

/// The fields of a signal specification: one row a field, in the order of the host struct. Struct form
/// and object form use the same names and the same conversions; they differ only in the order in which
/// they visit the rows, and those orders stand where they are used.
struct SignalSpecification::Fields {
    enum Field : std::size_t {
        Uuid,
        BlockPath,
        ZID,
        SubPath,
        OutputPortIndex,
        LogicalPortIndex,
        SignalName,
        SubSysPath,
        Decimation,
        MaxPoints,
        TargetBufferedStreaming,
        IsFrameBased,
        HideInDVX,
        DomainType,
        DomainParams,  // stands before the visual type, unlike the members: the struct's order is fixed
        VisualType,
        BindingRule,  // from here on: run-time fields
        CachedBlockHandle,
        CachedPortIdx,
        ExcludeForSave,
        Count
    };
    static constexpr std::size_t persistedCount = BindingRule;

    using Row = FieldRow<SignalSpecification>;
    static const std::array<Row, Count> table;
};

}  // namespace zm_hmi

#endif
