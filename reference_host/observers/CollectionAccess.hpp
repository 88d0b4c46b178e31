#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <memory>
#include <string>

// Access to the two collections of a model and their elements through properties and methods, as in a script.
// Indices are 0-based here.

namespace reference_host {

inline constexpr const char* clientsClass = "Zelmar.HMI.StreamingClients";

/// The value as one object of the class "Zelmar.HMI.StreamingClients"; a host error ("InvalidClients")
/// when it is anything else.
const nvArray* requireClients(const std::string& function, const nvArray* value);

/// The open model that the collection names; a host error ("ModelNotOpen") when there is none.
std::shared_ptr<Model> modelOf(const nvArray* collection);

std::u16string textOf(const nvArray* object, const char* name);

/// Text `place` of a property that is a cell array of texts; empty past its end.
std::u16string textInCells(const nvArray* object, const char* name, std::size_t place);

ZM_REFHOST_API std::size_t elementsIn(const nvArray* collection);

/// A new object for the element; null where the collection could not make one.
ZM_REFHOST_API OwnedValue elementAt(const nvArray* collection, std::size_t index);

/// The UUID of a signal.
std::string signalUUID(const nvArray* signals, std::size_t index);

/// The argument for a 0-based index: a 1-based uint32 scalar.
ZM_REFHOST_API OwnedValue methodIndex(std::size_t index);

}  // namespace reference_host
