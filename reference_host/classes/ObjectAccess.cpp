#include "reference_host/classes/ObjectAccess.hpp"

#include "host/Containers.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/Instance.hpp"
#include "reference_host/classes/LibraryCall.hpp"
#include "reference_host/classes/MethodCall.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/classes/ValueConversion.hpp"
#include "reference_host/support/ChangeCount.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <utility>

namespace reference_host {

namespace {

RegisteredClass& classOf(const nvArray* object, const std::string& method)
{
    requireAlive(object);
    if (object->valueClass != ValueClass::ClassObject || elementCount(object) != 1) {
        throwClassError("NoObject:method", {method, describe(object)});
    }
    return Instance::of(*objects(object).front().get()).cosClass();
}

const RegisteredClass::Method& callableMethod(RegisteredClass& cosClass, const std::string& name)
{
    const RegisteredClass::Method* method = cosClass.findMethod(name);
    if (method == nullptr) {
        throwClassError("UnknownMethod", {cosClass.fullName(), name});
    }
    if (cosClass.isConstructor(*method)) {
        throwClassError("ConstructorCalled", {cosClass.fullName(), name});
    }
    return *method;
}

}  // namespace

OwnedValue ObjectAccess::construct(const std::string& className, const Arguments& arguments)
{
    RegisteredClass& cosClass = ClassSystem::classNamed(className);
    const RegisteredClass::Method* constructor = cosClass.constructor();
    if (constructor == nullptr && !arguments.empty()) {
        throwClassError("TooManyArguments:none", {className, cosClass.simpleName(), 1U});
    }
    OwnedValue object = makeObjects(className, {1, 1}, {Instance::create(cosClass)});
    if (constructor != nullptr) {
        MethodCall(cosClass, *constructor).runConstructor(object.get(), arguments);
    }
    return object;
}

ObjectAccess::Results ObjectAccess::callMethod(const nvArray* object, const std::string& method,
                                               const Arguments& arguments, int outputCount)
{
    RegisteredClass& cosClass = classOf(object, method);
    const RegisteredClass::Method& found = callableMethod(cosClass, method);
    const nvArray* passed = cosClass.isInstanceMethod(found) ? object : nullptr;
    const Loan loan(object);
    return MethodCall(cosClass, found).run(passed, arguments, outputCount);
}

ObjectAccess::Results ObjectAccess::callStatic(const std::string& className, const std::string& method,
                                               const Arguments& arguments, int outputCount)
{
    RegisteredClass& cosClass = ClassSystem::classNamed(className);
    const RegisteredClass::Method& found = callableMethod(cosClass, method);
    if (cosClass.isInstanceMethod(found)) {
        throwClassError("NoObject:static", {className, method});
    }
    return MethodCall(cosClass, found).run(nullptr, arguments, outputCount);
}

OwnedValue ObjectAccess::makeObjectArray(const std::string& className,
                                         const std::vector<nvcos::COSInterfacePtr>& instances)
{
    RegisteredClass& cosClass = ClassSystem::classNamed(className);
    for (const nvcos::COSInterfacePtr& instance : instances) {
        const RegisteredClass* other = instance ? &Instance::of(*instance.get()).cosClass() : nullptr;
        if (other != &cosClass) {
            throwClassError("MixedClasses", {className, other != nullptr ? other->fullName() : "no class"});
        }
    }
    const std::size_t columns = instances.empty() ? 0 : 1;
    return makeObjects(className, {instances.size(), columns}, instances);
}

namespace {

/// A copy for the caller of a value that the property keeps.
OwnedValue copyOf(const nvcos::COSValue& value)
{
    if (nvArray* const* array = std::get_if<nvArray*>(&value)) {
        return *array != nullptr ? copyShared(*array) : makeEmptyValue();
    }
    return makeValue(value);
}

/// A property of one object.
class Property {
public:
    /// A host error when the value is no array of class objects, the index is past its end or the class
    /// has no such property.
    Property(const nvArray* object, std::size_t index, const std::string& property);

    /// The value; null when the property has none. `releaseValue` is called exactly once after `getValue` has
    /// returned, also when the value cannot be copied.
    OwnedValue get() const;

    /// Converts the value to the property's type and assigns it.
    void set(const nvArray* value) const;

private:
    nvcos::COSValue askForValue() const;
    void release(nvcos::COSValue value) const;

    nvcos::COSInterfacePtr m_instance;
    RegisteredClass* m_class;
    const RegisteredClass::Property* m_property;
    std::string m_name;  // "Zelmar.HMI.X.Count", for errors and the journal
};

Property::Property(const nvArray* object, std::size_t index, const std::string& property)
    : m_instance(objectElement(object, index)),
      m_class(&Instance::of(*m_instance.get()).cosClass()),
      m_property(m_class->findProperty(property)),
      m_name(m_class->fullName() + "." + property)
{
    if (m_property == nullptr) {
        throwClassError("UnknownProperty", {m_class->fullName(), property});
    }
}

nvcos::COSValue Property::askForValue() const
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

// The value is moved: a COSValue whose copy fails for lack of memory cannot be destroyed (g++ 12).
void Property::release(nvcos::COSValue value) const
{
    const auto body = [&] { m_property->info->releaseValue(m_instance.get(), std::move(value)); };
    if (m_class->isLibraryClass()) {
        callLibrary("releaseValue", body, m_name, NativeValues{{&value, 1}});
    } else {
        body();
    }
}

OwnedValue Property::get() const
{
    nvcos::COSValue value = askForValue();
    OwnedValue result;
    try {
        result = copyOf(value);
    } catch (...) {
        release(std::move(value));
        throw;
    }
    release(std::move(value));
    return result;
}

void Property::set(const nvArray* value) const
{
    ChangeCount::objectUsed();
    nvcos::COSValue converted;
    const std::string complaint = convertToType(value, typeOf(*m_class, *m_property), converted);
    if (!complaint.empty()) {
        throwClassError("WrongValue", {m_class->fullName(), m_property->name}, {complaint});
    }
    const Loan loan(value);
    const auto body = [&] { m_property->info->setValue(m_instance.get(), std::move(converted)); };
    if (m_class->isLibraryClass()) {
        withContext(
            [&] {
                callLibrary("setValue", body, m_name, NativeValues{{&converted, 1}});
            },
            [this] { return m_name; });
    } else {
        body();
    }
}

}  // namespace

OwnedValue ObjectAccess::getProperty(const nvArray* object, const std::string& property, std::size_t index)
{
    return Property(object, index, property).get();
}

void ObjectAccess::setProperty(nvArray* object, const std::string& property, const nvArray* value,
                               std::size_t index)
{
    Property(object, index, property).set(value);
}

}  // namespace reference_host

using namespace reference_host;

nvArray* nvGetProperty(const nvArray* value, std::size_t index, const char* name)
{
    return BoundaryCall({"nvGetProperty"}, value, index, name).run([&] {
        OwnedValue property = Property(value, index, name).get();
        return property ? property.release() : makeEmptyValue().release();
    });
}

nvArray* nvGetPropertyShared(const nvArray* value, std::size_t index, const char* name)
{
    return BoundaryCall({"nvGetPropertyShared", CanFail::ThrowingOrNull}, value, index, name).run([&] {
        return Property(value, index, name).get().release();
    });
}

void nvSetProperty(nvArray* value, std::size_t index, const char* name, const nvArray* property)
{
    BoundaryCall({"nvSetProperty"}, value, index, name, property).run([&] {
        Property(value, index, name).set(property);
    });
}
