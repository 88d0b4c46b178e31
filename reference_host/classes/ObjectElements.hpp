#ifndef ZM_REFERENCE_HOST_CLASSES_OBJECT_ELEMENTS_HPP
#define ZM_REFERENCE_HOST_CLASSES_OBJECT_ELEMENTS_HPP

#include "host/ClassObjects.hpp"

#include <cstddef>

namespace reference_host {

/// The instance at `index` of a class-object array; a host error when the value is of another class,
/// null, or too short.
const nvcos::COSInterfacePtr& objectElement(const nvArray* value, std::size_t index);

}  // namespace reference_host

#endif
