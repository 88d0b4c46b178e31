#ifndef ZM_CONTRACT_VALUES_HPP
#define ZM_CONTRACT_VALUES_HPP

#include "host/OwnedArray.hpp"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <vector>

/// Values that several checks need.
namespace contract {

inline OwnedArray makeMatrix(std::size_t rows, std::size_t columns, nvClassID classID = nvClassID::Double)
{
    return OwnedArray(nvCreateNumericMatrix(rows, columns, classID, nvComplexity::Real));
}

/// A 1-by-N struct array.
inline OwnedArray makeStruct(std::size_t count, std::initializer_list<const char*> fields)
{
    const std::array<std::size_t, 2> sizes{1, count};
    const std::vector<const char*> names(fields);
    return OwnedArray(nvCreateStructArray(sizes.size(), sizes.data(), names.size(), names.data()));
}

/// A 1-by-N cell array.
inline OwnedArray makeCells(std::size_t count)
{
    const std::array<std::size_t, 2> sizes{1, count};
    return OwnedArray(nvCreateCellArray(sizes.size(), sizes.data()));
}

inline OwnedArray makeText(const char* text)
{
    return makeString(std::string(text));
}

}  // namespace contract

#endif
