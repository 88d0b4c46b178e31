#pragma once

#include "host/ClassObjects.hpp"
#include "reference_host/support/LiveRegistry.hpp"
#include "reference_host/values/Dimensions.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <variant>
#include <vector>

// Included by the sources of values/ only.

namespace reference_host {

/// The elements of a numeric or logical value, zero-filled; up to 16 bytes without memory of their own.
class Numbers {
public:
    Numbers(std::size_t byteCount, bool isComplex)
        : m_large(byteCount > m_small.size() ? std::make_unique<std::byte[]>(byteCount) : nullptr),
          m_isComplex(isComplex)
    {
    }
    std::byte* data() noexcept { return m_large ? m_large.get() : m_small.data(); }
    const std::byte* data() const noexcept { return m_large ? m_large.get() : m_small.data(); }
    bool isComplex() const noexcept { return m_isComplex; }

private:
    alignas(8) std::array<std::byte, 16> m_small{};
    std::unique_ptr<std::byte[]> m_large;
    bool m_isComplex;
};

/// Destroys a value held by a container. Defined in Value.cpp.
struct HeldDeleter {
    void operator()(nvArray* value) const noexcept;
};
using HeldValue = std::unique_ptr<nvArray, HeldDeleter>;

struct FieldTable {
    std::vector<std::string> names;
    std::string className;  ///< of the older object class; empty for a struct
};

/// Field f of element i is at i * names.size() + f.
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
    /// The depth of containers in here: 0 for a value that never held another. It does not shrink when a
    /// held value is replaced.
    std::size_t nesting = 0;
};

/// Limits recursion: values are destroyed, copied and compared depth first.
inline constexpr std::size_t deepestNesting = 1000;

/// All live values. Never destroyed: libraries destroy values while the process ends. Defined in Value.cpp.
LiveRegistry<nvArray>& liveValueRegistry();

}  // namespace reference_host
