#include "reference_host/classes/PropertyAccess.hpp"

#include "host/Containers.hpp"
#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/ClassObjects.hpp"
#include "reference_host/classes/DescribeClassArguments.hpp"
#include "reference_host/classes/Instance.hpp"
#include "reference_host/classes/LibraryCall.hpp"
#include "reference_host/classes/ObjectElements.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/classes/ValueConversion.hpp"
#include "reference_host/support/ChangeCount.hpp"
#include "reference_host/values/ValueMaking.hpp"

namespace reference_host {

namespace {

/// What a caller of the host gets for a value that stays the property's own.
OwnedValue copyOf(const nvcos::COSValue& value)
{
    if (nvArray* const* array = std::get_if<nvArray*>(&value)) {
        return *array != nullptr ? copyShared(*array) : makeEmptyValue();
    }
    return makeValue(value);
}

}  // namespace

PropertyAccess::PropertyAccess(const nvArray* object, std::size_t index, const std::string& property)
    : m_instance(objectElement(object, index)),
      m_class(&Instance::of(*m_instance.get()).cosClass()),
      m_property(m_class->findProperty(property)),
      m_name(m_class->fullName() + "." + property)
{
    if (m_property == nullptr) {
        throwClassError("UnknownProperty",
                        "class " + m_class->fullName() + " has no property \"" + property + "\"",
                        {m_class->fullName(), property});
    }
}

nvcos::COSValue PropertyAccess::askForValue() const
{
    if (!m_class->isLibraryClass()) {
        return m_property->info->getValue(m_instance.get());
    }
    nvcos::COSValue value;
    callLibrary(
        "getValue",
        [&] {
            value = m_property->info->getValue(m_instance.get());
            return NativeValues{{&value, 1}};
        },
        m_name);
    return value;
}

void PropertyAccess::release(const nvcos::COSValue& value) const
{
    const auto body = [&] { m_property->info->releaseValue(m_instance.get(), value); };
    if (m_class->isLibraryClass()) {
        callLibrary("releaseValue", body, m_name, NativeValues{{&value, 1}});
    } else {
        body();
    }
}

OwnedValue PropertyAccess::get() const
{
    const nvcos::COSValue value = askForValue();
    OwnedValue result;
    try {
        result = copyOf(value);
    } catch (...) {
        release(value);
        throw;
    }
    release(value);
    return result;
}

void PropertyAccess::set(const nvArray* value) const
{
    ChangeCount::objectUsed();
    nvcos::COSValue converted;
    const std::string complaint = convertToType(value, typeOf(*m_class, *m_property), converted);
    if (!complaint.empty()) {
        throwClassError("WrongValue", m_name + " " + complaint, {m_class->fullName(), m_property->name});
    }
    const Loan loan(value);
    const auto body = [&] { m_property->info->setValue(m_instance.get(), converted); };
    if (m_class->isLibraryClass()) {
        callLibrary("setValue", body, m_name, NativeValues{{&converted, 1}});
    } else {
        body();
    }
}

OwnedValue ClassObjects::getProperty(const nvArray* object, const std::string& property, std::size_t index)
{
    return PropertyAccess(object, index, property).get();
}

void ClassObjects::setProperty(nvArray* object, const std::string& property, const nvArray* value,
                               std::size_t index)
{
    PropertyAccess(object, index, property).set(value);
}

}  // namespace reference_host

using reference_host::BoundaryCall;
using reference_host::CanFail;
using reference_host::PropertyAccess;

nvArray* nvGetProperty(const nvArray* value, std::size_t index, const char* name)
{
    return BoundaryCall({"nvGetProperty"}, value, index, name).run([&] {
        reference_host::OwnedValue property = PropertyAccess(value, index, name).get();
        return property ? property.release() : reference_host::makeEmptyValue().release();
    });
}

nvArray* nvGetPropertyShared(const nvArray* value, std::size_t index, const char* name)
{
    return BoundaryCall({"nvGetPropertyShared", CanFail::ThrowingOrNull}, value, index, name).run([&] {
        return PropertyAccess(value, index, name).get().release();
    });
}

void nvSetProperty(nvArray* value, std::size_t index, const char* name, const nvArray* property)
{
    BoundaryCall({"nvSetProperty"}, value, index, name, property).run([&] {
        PropertyAccess(value, index, name).set(property);
    });
}
