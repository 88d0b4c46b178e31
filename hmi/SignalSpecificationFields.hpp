#ifndef ZM_HMI_SIGNAL_SPECIFICATION_FIELDS_HPP
#define ZM_HMI_SIGNAL_SPECIFICATION_FIELDS_HPP

#include "hmi/FieldTable.hpp"
#include "hmi/SignalSpecification.hpp"

#include <span>
#include <vector>

namespace zm_hmi {

/// The fields of a signal specification: one row a field, in the order of the host struct, the persisted
/// fields first. Struct form, persisted form and object form use the same names and the same conversions.
struct SignalSpecification::Fields {
    enum class Role {
        Persisted,
        RunTime,
        CachedHandle,  // run-time, and means that nothing is cached when it is empty or 0.0
        CachedPort     // run-time, and means nothing without the handle
    };

    struct Row : FieldRow<SignalSpecification> {
        Role role = Role::Persisted;
        bool (*isEqual)(const SignalSpecification& one, const SignalSpecification& other) = nullptr;
        bool isRequired = false;  // for loading: a missing field is not skipped

        /// The places of the field in the orders in which the host is called: when a struct is filled, when a
        /// persisted struct is loaded, when an object is read. Rows with equal places come in table order, so
        /// that a new field need not choose one.
        int writeTurn = last;
        int loadTurn = last;
        int readTurn = last;
    };
    static constexpr int last = 100;

    static std::span<const Row> table();

    /// The rows before the first that is not persisted.
    static std::span<const Row> persisted();

    /// Some rows in the order of one of their turns.
    static std::vector<const Row*> sorted(std::span<const Row> rows, int Row::*turn);
};

}  // namespace zm_hmi

#endif
