#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace reference_host {

/// A method as scripts see it.
struct MethodDescription {
    enum class Kind { Instance, Static, Constructor };

    std::string name;
    Kind kind = Kind::Instance;
    std::vector<std::string> inputs;  ///< type names, without the object of an instance method
    std::size_t optionalInputs = 0;   ///< the last so many of them may be left out
    std::vector<std::string> outputs;

    /// "get(obj, uint32 scalar, [logical scalar]) -> any"
    std::string signature;
};

/// A property as scripts see it.
struct PropertyDescription {
    std::string name;
    std::string type;
    nvcos::COSPropAccess access = nvcos::COSPropAccess::ReadWrite;
};

struct ClassDescription {
    std::string fullName;
    std::string simpleName;
    std::optional<MethodDescription> constructor;  ///< none: constructed without arguments
    std::vector<MethodDescription> methods;        ///< in the order of registration
    std::vector<PropertyDescription> properties;
};

/// Describes a class by its full name; initializes it when that has not happened. A host error when
/// there is no such class. Main thread only.
ZM_REFHOST_API ClassDescription describeClass(const std::string& className);

/// One property or method; none when the class lacks it.
ZM_REFHOST_API std::optional<PropertyDescription> describeProperty(const std::string& className,
                                                                   const std::string& property);
ZM_REFHOST_API std::optional<MethodDescription> describeMethod(const std::string& className,
                                                               const std::string& method);

}  // namespace reference_host
