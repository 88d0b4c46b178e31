#ifndef ZM_HOST_OWNED_ARRAY_HPP
#define ZM_HOST_OWNED_ARRAY_HPP

#include "host/Containers.hpp"
#include "host/Memory.hpp"

#include <memory>
#include <string>
#include <utility>

struct nvArrayDeleter {
    /// Runs in destructors: a misuse that a strict host answers with an exception is on the host's record,
    /// and must not end the process as well.
    void operator()(nvArray* value) const noexcept
    {
        try {
            nvDestroyArray(value);
        } catch (...) {  // NOLINT(bugprone-empty-catch): see above
        }
    }
};

/// Holds a value that is ours to end. Raw owned pointers appear only where one is handed over.
using OwnedArray = std::unique_ptr<nvArray, nvArrayDeleter>;

/// Hands a value to an unset field; it is freed when the struct refuses it.
inline void setField(nvArray* value, std::size_t index, const char* name, OwnedArray field)
{
    handOver(std::move(field), [&](nvArray* taken) { nvSetField(value, index, name, taken); });
}

/// Hands a value to a field that may be set already.
inline void replaceField(nvArray* value, std::size_t index, const char* name, OwnedArray field)
{
    handOver(std::move(field), [&](nvArray* taken) { nvReplaceField(value, index, name, taken); });
}

/// Hands a value to a cell.
inline void setCell(nvArray* value, std::size_t index, OwnedArray element)
{
    handOver(std::move(element), [&](nvArray* taken) { nvSetCell(value, index, taken); });
}

inline OwnedArray makeString(const std::string& text)
{
    return OwnedArray(nvCreateString(text.data(), text.size()));
}

inline OwnedArray makeString(const std::u16string& text)
{
    return OwnedArray(nvCreateUString(text.data(), text.size()));
}

inline OwnedArray makeDouble(double value)
{
    return OwnedArray(nvCreateDoubleScalar(value));
}

inline OwnedArray makeLogical(bool value)
{
    return OwnedArray(nvCreateLogicalScalar(value));
}

/// The 0-by-0 double that stands for "no value" where a call needs one.
inline OwnedArray makeEmpty()
{
    return OwnedArray(
        nvCreateNumericMatrix(std::size_t{0}, std::size_t{0}, nvClassID::Double, nvComplexity::Real));
}

/// As `makeEmpty`, in the local scope: what stands for a missing argument of a call.
inline OwnedArray makePlaceholder()
{
    OwnedArray value = makeEmpty();
    zmsvSetLocalScope(value.get());
    return value;
}

/// The value of a property, sharing its data, in the local scope; null when the property has none.
inline OwnedArray readProperty(const nvArray* object, const char* name)
{
    OwnedArray value(nvGetPropertyShared(object, 0, name));
    if (value) {
        zmsvSetLocalScope(value.get());
    }
    return value;
}

#endif
