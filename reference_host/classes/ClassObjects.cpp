#include "reference_host/classes/ClassObjects.hpp"

#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/ClassRegistry.hpp"
#include "reference_host/classes/Instance.hpp"
#include "reference_host/classes/MethodCall.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

namespace reference_host {

namespace {

RegisteredClass& classOf(const nvArray* object, const std::string& method)
{
    requireAlive(object);
    if (object->valueClass != ValueClass::ClassObject || elementCount(object) != 1) {
        throwClassError("NoObject", "\"" + method + "\" was called on " + describe(object) +
                                        ", which is not one object of a class");
    }
    return Instance::of(*objects(object).front().get()).cosClass();
}

const RegisteredClass::Method& callableMethod(RegisteredClass& cosClass, const std::string& name)
{
    const RegisteredClass::Method* method = cosClass.findMethod(name);
    if (method == nullptr) {
        throwClassError("UnknownMethod", "class " + cosClass.fullName() + " has no method \"" + name + "\"",
                        {cosClass.fullName(), name});
    }
    if (cosClass.isConstructor(*method)) {
        throwClassError("ConstructorCalled",
                        "\"" + name + "\" is the constructor of class " + cosClass.fullName() +
                            " and not a method of its objects",
                        {cosClass.fullName(), name});
    }
    return *method;
}

}  // namespace

OwnedValue ClassObjects::construct(const std::string& className, const Arguments& arguments)
{
    RegisteredClass& cosClass = ClassRegistry::instance().classNamed(className);
    const RegisteredClass::Method* constructor = cosClass.constructor();
    if (constructor == nullptr && !arguments.empty()) {
        throwClassError("TooManyArguments",
                        className + ": argument 1 is one too many: the class has no constructor",
                        {className, cosClass.simpleName(), std::uint64_t{1}});
    }
    OwnedValue object = makeObjects(className, {1, 1}, {Instance::create(cosClass)});
    if (constructor != nullptr) {
        MethodCall(cosClass, *constructor).runConstructor(object.get(), arguments);
    }
    return object;
}

ClassObjects::Results ClassObjects::callMethod(const nvArray* object, const std::string& method,
                                               const Arguments& arguments, int outputCount)
{
    RegisteredClass& cosClass = classOf(object, method);
    const RegisteredClass::Method& found = callableMethod(cosClass, method);
    const nvArray* passed = cosClass.isInstanceMethod(found) ? object : nullptr;
    const Loan loan(object);
    return MethodCall(cosClass, found).run(passed, arguments, outputCount);
}

ClassObjects::Results ClassObjects::callStatic(const std::string& className, const std::string& method,
                                               const Arguments& arguments, int outputCount)
{
    RegisteredClass& cosClass = ClassRegistry::instance().classNamed(className);
    const RegisteredClass::Method& found = callableMethod(cosClass, method);
    if (cosClass.isInstanceMethod(found)) {
        throwClassError("NoObject",
                        className + "." + method + " is called on an object of the class, not on the class",
                        {className, method});
    }
    return MethodCall(cosClass, found).run(nullptr, arguments, outputCount);
}

OwnedValue ClassObjects::makeObjectArray(const std::string& className,
                                         const std::vector<nvcos::COSInterfacePtr>& instances)
{
    RegisteredClass& cosClass = ClassRegistry::instance().classNamed(className);
    for (const nvcos::COSInterfacePtr& instance : instances) {
        if (!instance || &Instance::of(*instance.get()).cosClass() != &cosClass) {
            throwClassError("MixedClasses",
                            "an array of " + className + " cannot hold an instance of " +
                                (instance ? Instance::of(*instance.get()).cosClass().fullName()
                                          : std::string("no class")));
        }
    }
    const std::size_t columns = instances.empty() ? 0 : 1;
    return makeObjects(className, {instances.size(), columns}, instances);
}

}  // namespace reference_host
