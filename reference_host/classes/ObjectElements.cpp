#include "reference_host/classes/ObjectElements.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/DescribeClassArguments.hpp"
#include "reference_host/classes/Instance.hpp"
#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <string>

namespace reference_host {

const nvcos::COSInterfacePtr& objectElement(const nvArray* value, std::size_t index)
{
    requireAlive(value);
    const std::string operation = CallSite::current().operationName();
    if (value->valueClass != ValueClass::ClassObject) {
        throwClassError("NoObject", operation + ": expected objects of a class, got " + describe(value));
    }
    if (index >= elementCount(value)) {
        throwClassError("BadIndex", operation + ": object " + std::to_string(index) + " of " +
                                        std::to_string(elementCount(value)));
    }
    return objects(value)[index];
}

}  // namespace reference_host

using reference_host::BoundaryCall;

nvcos::COSInterfacePtr omGetArrayElement(const nvArray* value, std::size_t index)
{
    return BoundaryCall({"omGetArrayElement"}, value, index).run([&] {
        return nvcos::COSInterfacePtr(reference_host::objectElement(value, index));
    });
}

nvArray* omCreateNVCOSScalar(const nvcos::COSInterfacePtr& instance)
{
    return BoundaryCall({"omCreateNVCOSScalar"}, instance).run([&]() -> nvArray* {
        if (!instance) {
            reference_host::throwClassError("NoObject",
                                            "omCreateNVCOSScalar: there is no instance to refer to");
        }
        const auto& cosClass = reference_host::Instance::of(*instance.get()).cosClass();
        return reference_host::makeObjects(cosClass.fullName(), {1, 1}, {instance}).release();
    });
}
