#ifndef ZM_REFERENCE_HOST_CLASSES_PROPERTY_ACCESS_HPP
#define ZM_REFERENCE_HOST_CLASSES_PROPERTY_ACCESS_HPP

#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <string>

namespace reference_host {

/// A property of one object.
class PropertyAccess {
public:
    /// A host error when the value is no array of class objects, the index is past its end or the class
    /// has no such property.
    PropertyAccess(const nvArray* object, std::size_t index, const std::string& property);

    /// The value; null when the property has none. Whatever happens after `getValue` has returned,
    /// `releaseValue` follows once.
    OwnedValue get() const;

    /// Converts the value to the property's type and assigns it.
    void set(const nvArray* value) const;

private:
    nvcos::COSValue askForValue() const;
    void release(const nvcos::COSValue& value) const;

    nvcos::COSInterfacePtr m_instance;
    RegisteredClass* m_class;
    const RegisteredClass::Property* m_property;
    std::string m_name;  // "Zelmar.HMI.X.Count", for errors and the journal
};

}  // namespace reference_host

#endif
