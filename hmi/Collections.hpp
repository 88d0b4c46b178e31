#ifndef ZM_HMI_COLLECTIONS_HPP
#define ZM_HMI_COLLECTIONS_HPP

#include "hmi_foundation/HostErrors.hpp"
#include "host/ClassObjects.hpp"
#include "host/HostCall.hpp"

#include <cstddef>
#include <utility>

/// Operations on host values that both collections use.
namespace zm_hmi::collections {

/// True for null, for an empty value, and for one object of the host class.
inline bool isValidType(const nvArray* value, const char* hostClass)
{
    return nvIsEmpty(value) || (nvGetNumberOfElements(value) == 1 && nvIsA(value, hostClass));
}

/// [borrowed] The native collection behind object 0; null for null and for an empty value.
template <class Collection>
Collection* nativeCollection(const nvArray* value)
{
    if (nvIsEmpty(value)) {
        return nullptr;
    }
    return static_cast<Collection*>(omGetInstanceData(omGetArrayElement(value, 0).get()));
}

/// [borrowed] The native collection behind the first object of an array of the host class; null for null, for
/// an empty value, and for a value of another class.
template <class Collection>
Collection* firstOfClass(const nvArray* value, const char* hostClass)
{
    return !nvIsEmpty(value) && nvIsA(value, hostClass) ? nativeCollection<Collection>(value) : nullptr;
}

/// A new, empty host object and the collection behind it.
template <class Collection>
std::pair<OwnedArray, Collection*> newHostObject(const char* hostClass)
{
    OwnedArray object = std::move(callHost<1>(hostClass)[0]);
    // Host code may have replaced the class's constructor.
    Collection* collection =
        isValidType(object.get(), hostClass) ? nativeCollection<Collection>(object.get()) : nullptr;
    if (collection == nullptr) {
        zm_hmi_foundation::throwNoCollection();
    }
    return {std::move(object), collection};
}

}  // namespace zm_hmi::collections

#endif
