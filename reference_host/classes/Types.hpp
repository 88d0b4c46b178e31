#pragma once

#include "host/ClassObjects.hpp"

#include <string>

/// A type by name: one of the built-in ones, or a class.
struct nvcos::COSType {
    enum class Kind { UnicodeString, AsciiString, UInt32, Int32, Double, Logical, Any, Class };

    Kind kind;
    std::string name;
};

namespace reference_host {

/// The built-in type of that name, or null. Types are never destroyed.
const nvcos::COSType* findBuiltInType(const std::string& name);

/// The type of a class by its full name, created on first use, whether or not the class is registered.
const nvcos::COSType* classType(const std::string& fullName);

/// `nvcos::internal::makeInterned` for the host's own use, outside the journal.
nvcos::internal::Interned intern(const char* name);

}  // namespace reference_host

// For the journal, found by argument-dependent lookup; so are the overloads beside the other classes.
namespace nvcos {
std::string describeArgument(const COSType* type);
namespace internal {
std::string describeArgument(Interned name);
}
}  // namespace nvcos
