#ifndef ZM_REFERENCE_HOST_FILES_JSON_READER_HPP
#define ZM_REFERENCE_HOST_FILES_JSON_READER_HPP

#include <cstddef>

namespace reference_host {

/// What a JSON document may demand of us.
struct JsonLimits {
    std::size_t bytes = std::size_t{512} << 20U;
    std::size_t depth = 1000;
};

}  // namespace reference_host

#endif
