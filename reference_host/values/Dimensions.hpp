#ifndef ZM_REFERENCE_HOST_VALUES_DIMENSIONS_HPP
#define ZM_REFERENCE_HOST_VALUES_DIMENSIONS_HPP

#include "reference_host/Export.hpp"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace reference_host {

/// The sizes of a value, at least two of them. Sizes of 1 past the second are dropped; a single size N
/// stands for N-by-1, and none for 1-by-1. A product that no memory can hold is `std::bad_alloc`.
class ZM_REFHOST_API Dimensions {
public:
    Dimensions(std::size_t rows, std::size_t columns);

    explicit Dimensions(std::span<const std::size_t> sizes);

    Dimensions(const Dimensions& other);
    Dimensions(Dimensions&&) noexcept = default;
    Dimensions& operator=(const Dimensions&) = delete;
    Dimensions& operator=(Dimensions&&) = delete;
    ~Dimensions() = default;

    std::size_t count() const noexcept { return m_more ? 2 + m_more->size() : 2; }

    /// All of them, `count()` sizes.
    std::vector<std::size_t> list() const;

    /// The product of all sizes.
    std::size_t elementCount() const noexcept { return m_elementCount; }

    /// "2x3".
    std::string text() const;

private:
    std::size_t m_rows;
    std::size_t m_columns;
    std::unique_ptr<std::vector<std::size_t>> m_more;  // those past the second, null when there are none
    std::size_t m_elementCount;
};

}  // namespace reference_host

#endif
