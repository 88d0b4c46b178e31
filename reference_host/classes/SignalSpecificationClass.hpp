#ifndef ZM_REFERENCE_HOST_CLASSES_SIGNAL_SPECIFICATION_CLASS_HPP
#define ZM_REFERENCE_HOST_CLASSES_SIGNAL_SPECIFICATION_CLASS_HPP

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"

#include <memory>

namespace reference_host {

/// The host's class "SignalSpecification", which the host contributes to the namespace "Zelmar.HMI":
/// one output port of one block, or one activity of a chart, as scripts describe it. Every property
/// has a default, so that a script sets only what it needs; the cached block handle and port are empty
/// until they are known.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeSignalSpecificationClass();

}  // namespace reference_host

#endif
