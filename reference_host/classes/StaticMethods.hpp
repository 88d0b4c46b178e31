#ifndef ZM_REFERENCE_HOST_CLASSES_STATIC_METHODS_HPP
#define ZM_REFERENCE_HOST_CLASSES_STATIC_METHODS_HPP

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace reference_host {

/// A method of a class of host code that needs no object. It takes values of any type and gives one.
struct StaticMethod {
    /// The inputs are borrowed, as many as were declared. Null counts as an empty value.
    using Body = std::function<OwnedValue(const std::vector<const nvArray*>& inputs)>;

    std::string name;
    std::size_t inputCount = 0;
    std::string outputType;  ///< a type name; the class itself may be named
    Body body;
};

/// Adds static methods to the description of a class, behind what it has already.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> withStaticMethods(
    std::unique_ptr<nvcos::COSClassInfo> described, std::vector<StaticMethod> methods);

}  // namespace reference_host

#endif
