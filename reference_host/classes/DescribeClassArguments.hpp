#ifndef ZM_REFERENCE_HOST_CLASSES_DESCRIBE_CLASS_ARGUMENTS_HPP
#define ZM_REFERENCE_HOST_CLASSES_DESCRIBE_CLASS_ARGUMENTS_HPP

#include "host/ClassDescriptors.hpp"

#include <span>
#include <string>

// How the journal writes the class system's arguments and results; found by argument-dependent lookup.

namespace nvcos::internal {

std::string describeArgument(Interned name);

}  // namespace nvcos::internal

namespace nvcos {

std::string describeArgument(const COSType* type);
std::string describeArgument(const COSNamespace* cosNamespace);
std::string describeArgument(const COSInterface* instance);
std::string describeArgument(const COSInterfacePtr& instance);
std::string describeArgument(const COSMethodSignature* signature);

}  // namespace nvcos

namespace reference_host {

/// Values as they enter and leave what a library described.
struct NativeValues {
    std::span<const nvcos::COSValue> values;
};

std::string describeArgument(const NativeValues& values);

}  // namespace reference_host

#endif
