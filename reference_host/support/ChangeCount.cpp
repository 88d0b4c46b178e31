#include "reference_host/support/ChangeCount.hpp"

namespace reference_host {

namespace {

std::uint64_t diagrams = 0;
std::uint64_t objects = 0;

}  // namespace

std::uint64_t ChangeCount::ofDiagrams() noexcept
{
    return diagrams;
}

std::uint64_t ChangeCount::ofObjects() noexcept
{
    return objects;
}

void ChangeCount::diagramChanged() noexcept
{
    ++diagrams;
}

void ChangeCount::objectUsed() noexcept
{
    ++objects;
}

}  // namespace reference_host
