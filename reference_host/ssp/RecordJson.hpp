#ifndef ZM_REFERENCE_HOST_SSP_RECORD_JSON_HPP
#define ZM_REFERENCE_HOST_SSP_RECORD_JSON_HPP

#include "reference_host/Export.hpp"
#include "reference_host/values/Value.hpp"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace reference_host {

enum class RecordFieldKind : std::uint8_t { Text, Texts, Number };

/// What the library expects of a field when it reads a record, which it does not check itself. Fields that
/// are not listed may have any value.
struct RecordField {
    const char* name;
    RecordFieldKind kind;
    bool isRequired;
};

ZM_REFHOST_API std::span<const RecordField> signalFields();
ZM_REFHOST_API std::span<const RecordField> clientFields();

/// The records of a collection, a struct array as its "Persistence" gives it, as a JSON array with an object
/// for each record: [{"UUID":"…","OutputPortIndex_":1.0,…},…]. The values are as in ValueJson.hpp. A value
/// that cannot be kept in a file is a host error with the JSON Pointer ("/412/ObserverParams_/values/0/0").
ZM_REFHOST_API std::string recordsToJson(const nvArray* persistence);

/// Reads such text, or the form of earlier versions: the whole struct array as one value. `take` gets the
/// records in their order, in struct arrays of up to a thousand, so that only so many are in memory as host
/// values.
///
/// A record that lacks a required field, or has a field of another kind, is a host error with record and
/// field
/// ("/412/OutputPortIndex_: expected a number, found nothing"), also in the earlier form.
ZM_REFHOST_API void recordsFromJson(std::string_view text, std::span<const RecordField> form,
                                    const std::function<void(const nvArray*)>& take);

}  // namespace reference_host

#endif
