#ifndef ZM_REFERENCE_HOST_SSP_JSON_LIMITS_HPP
#define ZM_REFERENCE_HOST_SSP_JSON_LIMITS_HPP

#include <cstddef>

namespace reference_host {

/// The largest JSON documents that are read and written.
struct JsonLimits {
    std::size_t bytes = std::size_t{512} << 20U;
    std::size_t depth = 4000;  ///< of arrays and objects; a struct in a value takes three
    /// Arrays, objects and everything in them. An item takes up to 90 bytes of memory and as little as three
    /// of text, so that longer texts may have more (`itemsFor`).
    std::size_t items = std::size_t{1} << 20U;
    std::size_t members = 1000;  ///< of one object; they are found by comparing with each
};

/// The limits for a document of this length, which bound the memory that it takes: 7 times its length, and
/// 90 MiB.
constexpr JsonLimits jsonLimitsFor(std::size_t bytes)
{
    JsonLimits limits;
    limits.items += bytes / 12;
    return limits;
}

}  // namespace reference_host

#endif
