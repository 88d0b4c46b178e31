#ifndef ZM_REFERENCE_HOST_SSP_MODEL_SOURCE_HPP
#define ZM_REFERENCE_HOST_SSP_MODEL_SOURCE_HPP

#include "reference_host/ssp/Archive.hpp"

#include <memory>
#include <string>

namespace reference_host {

/// What a model was read from, kept because writing it again starts from there.
struct ModelSource {
    std::string description;                 ///< the system structure description, as it was read
    std::unique_ptr<const Archive> archive;  ///< null when the description was a file of its own
};

}  // namespace reference_host

#endif
