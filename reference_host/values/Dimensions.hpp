#pragma once

#include "reference_host/Export.hpp"

#include <boost/container/small_vector.hpp>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace reference_host {

/// The sizes of a value, at least two. Sizes of 1 after the second are dropped; a single size N means N-by-1,
/// and none means 1-by-1. `std::bad_alloc` if no memory can hold so many elements.
class ZM_REFHOST_API Dimensions {
public:
    Dimensions(std::size_t rows, std::size_t columns);
    explicit Dimensions(std::span<const std::size_t> sizes);

    std::size_t count() const noexcept { return m_sizes.size(); }

    /// All sizes, `count()` of them.
    std::vector<std::size_t> list() const { return {m_sizes.begin(), m_sizes.end()}; }

    /// The product of all sizes.
    std::size_t elementCount() const noexcept { return m_elementCount; }

    /// "2x3".
    std::string text() const;

private:
    boost::container::small_vector<std::size_t, 2> m_sizes;
    std::size_t m_elementCount = 0;
};

}  // namespace reference_host
