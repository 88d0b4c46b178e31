#include "reference_host/values/Dimensions.hpp"

#include <algorithm>
#include <new>

namespace reference_host {

namespace {

std::size_t product(const std::vector<std::size_t>& sizes)
{
    if (std::find(sizes.begin(), sizes.end(), std::size_t{0}) != sizes.end()) {
        return 0;
    }
    std::size_t result = 1;
    for (const std::size_t size : sizes) {
        if (__builtin_mul_overflow(result, size, &result)) {
            throw std::bad_array_new_length();
        }
    }
    return result;
}

std::size_t product(std::size_t rows, std::size_t columns)
{
    std::size_t result = 0;
    if (__builtin_mul_overflow(rows, columns, &result)) {
        throw std::bad_array_new_length();
    }
    return result;
}

std::unique_ptr<std::vector<std::size_t>> pastTheSecond(std::span<const std::size_t> sizes)
{
    while (sizes.size() > 2 && sizes.back() == 1) {
        sizes = sizes.first(sizes.size() - 1);
    }
    if (sizes.size() <= 2) {
        return nullptr;
    }
    return std::make_unique<std::vector<std::size_t>>(sizes.begin() + 2, sizes.end());
}

}  // namespace

Dimensions::Dimensions(std::size_t rows, std::size_t columns)
    : m_rows(rows), m_columns(columns), m_elementCount(product(rows, columns))
{
}

Dimensions::Dimensions(std::span<const std::size_t> sizes)
    : m_rows(!sizes.empty() ? sizes[0] : 1),
      m_columns(sizes.size() > 1 ? sizes[1] : 1),
      m_more(pastTheSecond(sizes)),
      m_elementCount(product(list()))
{
}

Dimensions::Dimensions(const Dimensions& other)
    : m_rows(other.m_rows),
      m_columns(other.m_columns),
      m_more(other.m_more ? std::make_unique<std::vector<std::size_t>>(*other.m_more) : nullptr),
      m_elementCount(other.m_elementCount)
{
}

std::vector<std::size_t> Dimensions::list() const
{
    std::vector<std::size_t> sizes{m_rows, m_columns};
    if (m_more) {
        sizes.insert(sizes.end(), m_more->begin(), m_more->end());
    }
    return sizes;
}

std::string Dimensions::text() const
{
    std::string result;
    for (const std::size_t size : list()) {
        result += (result.empty() ? "" : "x") + std::to_string(size);
    }
    return result;
}

}  // namespace reference_host
