#ifndef ZM_REFERENCE_HOST_VALUES_PAYLOAD_HPP
#define ZM_REFERENCE_HOST_VALUES_PAYLOAD_HPP

#include "host/ClassObjects.hpp"
#include "reference_host/support/LiveRegistry.hpp"
#include "reference_host/values/Dimensions.hpp"
#include "reference_host/values/Value.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <variant>
#include <vector>

// What the sources of values/ share and nobody else includes.

namespace reference_host {

/// The elements of a numeric or logical value, zero-filled; up to 16 bytes without memory of their own.
class Numbers {
public:
    Numbers(std::size_t byteCount, bool isComplex);
    std::byte* data() noexcept { return m_large ? m_large.get() : m_small.data(); }
    const std::byte* data() const noexcept { return m_large ? m_large.get() : m_small.data(); }
    bool isComplex() const noexcept { return m_isComplex; }

private:
    alignas(8) std::array<std::byte, 16> m_small{};
    std::unique_ptr<std::byte[]> m_large;
    bool m_isComplex;
};

/// Ends what a container holds.
struct HeldDeleter {
    void operator()(nvArray* value) const noexcept;
};
using HeldValue = std::unique_ptr<nvArray, HeldDeleter>;

struct FieldTable {
    std::vector<std::string> names;
    std::string className;  ///< of the older object class; empty for a struct
};

/// Field f of element i stands at i * names.size() + f.
struct Fields {
    std::shared_ptr<const FieldTable> table;
    std::vector<HeldValue> values;
};

struct Cells {
    std::vector<HeldValue> values;
};

struct Objects {
    std::shared_ptr<const std::string> className;
    std::vector<nvcos::COSInterfacePtr> instances;
};

struct Payload {
    Dimensions dimensions;
    std::variant<Numbers, std::u16string, Fields, Cells, Objects> content;
    /// How many containers deep the deepest value in here stands: 0 for what never held anything. It
    /// does not shrink when what a container holds is replaced.
    std::size_t nesting = 0;
};

/// Values end, are copied and are compared by going down into them, which takes stack.
inline constexpr std::size_t deepestNesting = 1000;

/// All values that are alive. Never destroyed: libraries end values while the process goes down.
LiveRegistry<nvArray>& liveValueRegistry();

/// A new owned value.
OwnedValue openValue(ValueClass valueClass, std::shared_ptr<Payload> payload);

/// A copy of a value's payload; what it holds becomes shared copies, or deep ones.
std::shared_ptr<Payload> copyPayload(const nvArray& value, bool deep);

/// The payload for writing, no longer shared; the value must be owned and not lent.
Payload& writablePayload(nvArray* value);

/// Hands an owned value to a container, which has to put it in place without failing.
HeldValue hold(OwnedValue value) noexcept;

inline bool isNumericClass(ValueClass valueClass)
{
    return valueClass <= ValueClass::UInt64;
}

inline bool isStructClass(ValueClass valueClass)
{
    return valueClass == ValueClass::Struct || valueClass == ValueClass::StructObject;
}

/// Hands a value over by bare pointer, as the boundary does: it is the container's only when the
/// operation returns.
void storeField(nvArray* value, std::size_t index, const char* name, nvArray* field, bool mayBeSet);
void storeCell(nvArray* value, std::size_t index, nvArray* element);

/// "double", "char" ...
const char* builtInClassName(ValueClass valueClass);

/// Host error unless index < count.
void requireIndex(std::size_t index, std::size_t count);

}  // namespace reference_host

#endif
