#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/values/Value.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace reference_host {

/// One property of a class of host code.
struct RecordProperty {
    /// Returns the reason for refusing a value, as the end of a sentence ("must be a struct or empty"), or an
    /// empty text.
    using Check = std::function<std::string(const nvArray* value)>;
    using Compute = std::function<OwnedValue(const nvArray* object)>;

    std::string name;
    std::string type;                         ///< a type name, as signatures use them
    std::function<OwnedValue()> makeDefault;  ///< the value of a new object
    Check check = nullptr;                    ///< restrictions beyond the type; may be empty
    Compute compute = nullptr;                ///< set for a property that is read only and worked out on
                                              ///< each read; `makeDefault` is not used then
};

/// A method of a class of host code that needs no object. It takes values of any type and gives one.
struct StaticMethod {
    /// The inputs are borrowed; their number is as declared. A null result means an empty value.
    using Body = std::function<OwnedValue(const std::vector<const nvArray*>& inputs)>;

    std::string name;
    std::size_t inputCount = 0;
    std::string outputType;  ///< a type name; the class itself may be named
    Body body;
};

/// Describes a class of host code with one value for each property. Its constructor takes nothing, or one
/// struct whose fields are assigned to the properties of their names; a field that is no stored property is a
/// host error that names it. `ClassSystem::contributeClass` puts the class in a namespace.
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeRecordClass(
    std::string simpleName, std::vector<RecordProperty> properties,
    std::vector<StaticMethod> staticMethods = {});

/// Destroys the property values of all objects of such classes, for the end of a program: objects that refer
/// to each other in a circle are never released. Remaining objects have no values afterwards.
/// REQUIRES: no call is under way.
ZM_REFHOST_API void endRecordValues();

/// A property with the usual default: empty text, the number, the flag, the empty value.
ZM_REFHOST_API RecordProperty textProperty(std::string name);
ZM_REFHOST_API RecordProperty numberProperty(std::string name, double value = 0.0);
ZM_REFHOST_API RecordProperty flagProperty(std::string name, bool value = false);
ZM_REFHOST_API RecordProperty anyProperty(std::string name, RecordProperty::Check check = nullptr);
ZM_REFHOST_API RecordProperty computedProperty(std::string name, std::string type,
                                               RecordProperty::Compute compute);

}  // namespace reference_host
