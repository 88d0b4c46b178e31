#ifndef ZM_EDITOR_SIGNALS_OBJECT_HPP
#define ZM_EDITOR_SIGNALS_OBJECT_HPP

#include "hmi/InstrumentedSignals.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>

namespace editor {

/// The native collection behind a host object, which keeps it. Only what the library exports may be
/// called on it. A value that is not one object of "Zelmar.HMI.InstrumentedSignals" is a host error
/// ("InvalidSignals").
zm_hmi::InstrumentedSignals& nativeSignals(const nvArray* object);

/// A new, empty collection with the model name of another.
reference_host::OwnedValue newSignalsLike(const nvArray* signals);

/// Appends a copy of one collection's element to another, under the model name of that. Copied twice, an
/// element is what it was, to the order of its domain parameters; copied once, that order may be another.
void appendElement(const nvArray* target, const nvArray* source, std::size_t index);

/// Removes the element at a 0-based index.
void removeElement(const nvArray* signals, std::size_t index);

}  // namespace editor

#endif
