#ifndef ZM_REFERENCE_HOST_CLASSES_INTERNING_HPP
#define ZM_REFERENCE_HOST_CLASSES_INTERNING_HPP

#include "host/ClassObjects.hpp"

namespace reference_host {

/// `nvcos::internal::makeInterned` for the host's own use, which is no boundary operation.
nvcos::internal::Interned intern(const char* name);

}  // namespace reference_host

#endif
