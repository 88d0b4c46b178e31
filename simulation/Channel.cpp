#include "simulation/Channel.hpp"

#include <algorithm>
#include <utility>

namespace simulation {

ValueLayout ValueLayout::numbers(std::size_t elementCount, bool isComplex)
{
    ValueLayout layout{{}, 0};
    layout.addLeaf({}, elementCount, isComplex);
    return layout;
}

void ValueLayout::addLeaf(std::string path, std::size_t elementCount, bool isComplex)
{
    leaves.push_back({std::move(path), width, elementCount, isComplex});
    width += elementCount * (isComplex ? 2 : 1);
}

std::optional<std::size_t> ValueLayout::find(std::string_view leafPath, std::uint64_t dimensionChannel,
                                             bool imaginaryPart) const
{
    const auto leaf =
        leafPath.empty() ? leaves.begin() : std::find_if(leaves.begin(), leaves.end(), [&](const auto& each) {
            return each.path == leafPath;
        });
    const std::uint64_t element = dimensionChannel == 0 ? 0 : dimensionChannel - 1;
    if (leaf == leaves.end() || element >= leaf->elementCount || (imaginaryPart && !leaf->isComplex)) {
        return std::nullopt;
    }
    return leaf->offset + element * (leaf->isComplex ? 2 : 1) + (imaginaryPart ? 1 : 0);
}

}  // namespace simulation
