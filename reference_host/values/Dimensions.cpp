#include "reference_host/values/Dimensions.hpp"

#include <algorithm>
#include <array>
#include <new>

namespace reference_host {

Dimensions::Dimensions(std::size_t rows, std::size_t columns) : Dimensions(std::array{rows, columns}) {}

Dimensions::Dimensions(std::span<const std::size_t> sizes) : m_sizes(sizes.begin(), sizes.end())
{
    m_sizes.resize(std::max(m_sizes.size(), std::size_t{2}), 1);
    while (m_sizes.size() > 2 && m_sizes.back() == 1) {
        m_sizes.pop_back();
    }
    if (std::ranges::find(m_sizes, std::size_t{0}) != m_sizes.end()) {
        return;
    }
    m_elementCount = 1;
    for (const std::size_t size : m_sizes) {
        if (__builtin_mul_overflow(m_elementCount, size, &m_elementCount)) {
            throw std::bad_array_new_length();
        }
    }
}

std::string Dimensions::text() const
{
    std::string result;
    for (const std::size_t size : m_sizes) {
        result += (result.empty() ? "" : "x") + std::to_string(size);
    }
    return result;
}

}  // namespace reference_host
