#ifndef ZM_REFERENCE_HOST_CLASSES_TYPES_HPP
#define ZM_REFERENCE_HOST_CLASSES_TYPES_HPP

#include "host/ClassObjects.hpp"

#include <string>

/// A type by name: one of the built-in ones, or a class.
struct nvcos::COSType {
    enum class Kind { UnicodeString, AsciiString, UInt32, Int32, Double, Logical, Any, Class };

    Kind kind;
    std::string name;
};

namespace reference_host {

/// The built-in type of that name, or null.
const nvcos::COSType* findBuiltInType(const std::string& name);

/// The type of that name, built-in or of a registered class; a host error when there is none.
const nvcos::COSType* typeNamed(const std::string& name);

/// The type of a class by its full name, made on first use. Lives as long as the process, whether or
/// not such a class is registered.
const nvcos::COSType* classType(const std::string& fullName);

}  // namespace reference_host

#endif
