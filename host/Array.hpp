#ifndef ZM_HOST_ARRAY_HPP
#define ZM_HOST_ARRAY_HPP

#include "host/Conventions.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

/// The host's dynamically typed array value: numbers, logicals, text, structs, cells and instances
/// of host classes, with any number of dimensions, each of which may be 0.
struct nvArray;

/// Class codes of numeric values. The library creates only `Double` and `UInt32`.
enum class nvClassID : int {
    Double = 6,
    Single = 7,
    Int8 = 8,
    UInt8 = 9,
    Int16 = 10,
    UInt16 = 11,
    Int32 = 12,
    UInt32 = 13,
    Int64 = 14,
    UInt64 = 15
};

enum class nvComplexity : int { Real = 0, Complex = 1 };

/// Lifetimes that the library sets with `nvSetArrayScope`. The local and the persistent scope have
/// operations of their own below.
enum class nvScope : int {
    Temporary = 0,   ///< an argument made for one host call
    CallerOwned = 4  ///< survives the call that made it and belongs to its caller
};

// ---- making values ------------------------------------------------------------------------------

/// [owned] [throws] A character row from null-terminated UTF-8 text; 0-by-0 when the text is empty.
ZM_HOST_API nvArray* nvCreateString(const char* text);

/// [owned] [throws] A character row from `length` bytes of UTF-8; `text` may be null when it is 0.
ZM_HOST_API nvArray* nvCreateString(const char* text, std::size_t length);

/// [owned] [throws] A character row from `length` UTF-16 code units, kept as they are, unpaired
/// surrogates included; `text` may be null when `length` is 0.
ZM_HOST_API nvArray* nvCreateUString(const char16_t* text, std::size_t length);

/// [owned] [throws] A 1-by-1 double.
ZM_HOST_API nvArray* nvCreateDoubleScalar(double value);

/// [owned] [throws] A 1-by-1 logical.
ZM_HOST_API nvArray* nvCreateLogicalScalar(bool value);

/// [owned] [throws] A 1-by-1 number of the class, value 0.
ZM_HOST_API nvArray* nvCreateNumericScalar(nvClassID classID, nvComplexity complexity);

/// [owned] [throws] A rows-by-columns matrix of the class, all 0. The 0-by-0 double is the empty
/// placeholder value.
ZM_HOST_API nvArray* nvCreateNumericMatrix(std::size_t rows, std::size_t columns, nvClassID classID,
                                           nvComplexity complexity);

/// [owned] [throws] As above with any list of dimensions.
ZM_HOST_API nvArray* nvCreateNumericMatrix(std::size_t dimensionCount, const std::size_t* dimensions,
                                           nvClassID classID, nvComplexity complexity);

/// [owned] [throws] [null ok] An independent copy, containers and all; null of null. Instances of
/// host classes are handles: a copy of an object array refers to the same instances.
ZM_HOST_API nvArray* nvCreateDeepCopy(const nvArray* value);

/// [owned] [throws] [null ok] A copy that shares the data until either side is written; null of null.
ZM_HOST_API nvArray* nvCreateSharedDataCopy(const nvArray* value);

/// [consumed: value] [throws] [null ok] Ends an owned value; null is ignored. Does not fail for a value
/// that is owned. A value that a container holds, or that was destroyed before, is a misuse, which a strict
/// host answers with a `zmsvException`.
ZM_HOST_API void nvDestroyArray(nvArray* value);

// ---- reading values -----------------------------------------------------------------------------

/// [throws] [null ok] The text of a character value; empty for an empty value and for null. Any
/// other class is a host error.
ZM_HOST_API std::u16string nvGetUString(const nvArray* value);

/// [throws] [null ok] As `nvGetUString`, as UTF-8.
ZM_HOST_API std::string nvArrayToStdString(const nvArray* value);

/// [throws] The first element of a numeric, logical or character value as a double. An empty value
/// is a host error.
ZM_HOST_API double nvGetScalar(const nvArray* value);

/// [throws] The first element as an integer: truncated toward zero, 0 for NaN, saturated at the
/// ends of the 64-bit range.
ZM_HOST_API std::int64_t nvGetScalarInt(const nvArray* value);

/// [throws] Element `index` of a numeric or logical value as a double. An index past the end is a
/// host error.
ZM_HOST_API double nvGetElement(const nvArray* value, std::size_t index);

/// [borrowed] [throws] The elements of a logical value, `nvGetNumberOfElements` of them.
ZM_HOST_API const bool* nvGetLogicals(const nvArray* value);

/// [borrowed] [throws] The elements of a numeric value, for writing; the value stops sharing data
/// with its copies first. Valid until the value is destroyed or copied.
ZM_HOST_API void* nvGetDataPointer(nvArray* value);

/// [no-throw] [null ok] True only for a 1-by-1 logical that holds true.
ZM_HOST_API bool nvIsLogicalScalarTrue(const nvArray* value);

/// [no-throw] [null ok] True for a logical value of any size; false for null.
ZM_HOST_API bool nvIsLogical(const nvArray* value);

/// [no-throw] [null ok] True for a struct array and for an array of the older struct-based object
/// class; false for null.
ZM_HOST_API bool nvIsStruct(const nvArray* value);

/// [no-throw] [null ok] True when any dimension is 0, and for null.
ZM_HOST_API bool nvIsEmpty(const nvArray* value);

/// [no-throw] [null ok] True when the value is of the named host class, given in full
/// ("Zelmar.HMI.InstrumentedSignals"), or of the named built-in class ("double"); false for null.
ZM_HOST_API bool nvIsA(const nvArray* value, const char* className);

/// [no-throw] [null ok] The product of the dimensions; for a class-object array the number of
/// objects; 0 for null.
ZM_HOST_API std::size_t nvGetNumberOfElements(const nvArray* value);

// ---- lifetimes ----------------------------------------------------------------------------------

/// [throws] Sets the scope of an owned value.
ZM_HOST_API void nvSetArrayScope(nvArray* value, nvScope scope);

/// [throws] Marks an owned value that came from the host as local to the library. To be called
/// before the value is read, stored or destroyed.
ZM_HOST_API void zmsvSetLocalScope(nvArray* value);

/// [throws] Marks an owned value as outliving every call; only `nvDestroyArray` ends it. The last
/// scope a value is given.
ZM_HOST_API void zmsvSetPersistentScope(nvArray* value);

#endif
