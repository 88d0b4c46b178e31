#ifndef ZM_HMI_FOUNDATION_BINDINGS_COLLECTION_BINDING_HPP
#define ZM_HMI_FOUNDATION_BINDINGS_COLLECTION_BINDING_HPP

#include "hmi_foundation/HostErrors.hpp"
#include "hmi_foundation/bindings/HMIBasePI.hpp"
#include "hmi_foundation/bindings/HMICOSMethodInfo.hpp"
#include "host/ClassDescriptors.hpp"
#include "host/Memory.hpp"
#include "host/OwnedArray.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

/// What the bindings of the two collection classes share: how a method finds the collection and the index
/// among its inputs, the registration of descriptors, and the properties that both classes have.
/// `Collection` is the native class behind the host class.
namespace zm_hmi_foundation {

/// The collection behind an input of the class's own type. Throws "NoCollection" where there is none.
template <class Collection>
Collection& collectionOf(const nvcos::COSValue& object)
{
    Collection* collection = Collection::getFromNVArray(std::get<nvArray*>(object));
    if (collection == nullptr) {
        throwNoCollection();
    }
    return *collection;
}

/// Converts a 1-based "uint32 scalar" input into an index of the collection. 0 throws "InvalidElementIndex".
template <class Collection>
std::size_t indexInto(const Collection& collection, std::uint32_t index)
{
    return toZeroBasedIndex(index, collection.getCount());
}

/// A property descriptor as the host calls it: short memory leaves as the host's exception.
template <class Property>
class HostProperty final : public Property {
public:
    using Property::Property;
    nvcos::COSValue getValue(nvcos::COSInterface* instance) override
    {
        return withHostMemoryErrors([&] { return Property::getValue(instance); });
    }
    void setValue(nvcos::COSInterface* instance, nvcos::COSValue value) override
    {
        withHostMemoryErrors([&] { Property::setValue(instance, std::move(value)); });
    }
};

template <class Property>
void addProperty(nvcos::COSClass* cosClass)
{
    handOver(std::make_unique<HostProperty<Property>>(cosClass),
             [&](nvcos::COSPropInfo* property) { cosClass->addProperty(property); });
}

template <class Method>
void addMethod(nvcos::COSClass* cosClass)
{
    handOver(std::make_unique<Method>(), [&](nvcos::COSMethodInfo* method) { cosClass->addMethod(method); });
}

/// The native data of a new instance.
template <class Collection>
void* newCollection()
{
    return withHostMemoryErrors([] { return new Collection; });
}

/// "Count": the number of elements.
template <class Collection>
class CollectionCountPI : public ReadOnlyPI {
public:
    explicit CollectionCountPI(const nvcos::COSClass* owner)
        : ReadOnlyPI(owner, countProperty.name, type_name::uint32Scalar, ValueKind::Count)
    {
    }
    nvcos::COSValue getValue(nvcos::COSInterface* instance) override
    {
        return static_cast<std::uint32_t>(static_cast<Collection*>(getInstanceData(instance))->getCount());
    }
};

/// "Persistence": the struct array that is saved with the model. Assigning one appends its elements; after a
/// failure those before the failing one stay.
template <class Collection>
class CollectionPersistencePI : public HMIBasePI {
public:
    explicit CollectionPersistencePI(const nvcos::COSClass* owner)
        : HMIBasePI(owner, persistenceProperty.name, type_name::any, nvcos::COSPropAccess::ReadWrite,
                    ValueKind::NewArray)
    {
    }
    nvcos::COSValue getValue(nvcos::COSInterface* instance) override
    {
        return static_cast<Collection*>(getInstanceData(instance))->getPersistenceData().release();
    }
    void setValue(nvcos::COSInterface* instance, nvcos::COSValue value) override
    {
        static_cast<Collection*>(getInstanceData(instance))
            ->setFromPersistenceData(std::get<nvArray*>(value));
    }
};

}  // namespace zm_hmi_foundation

#endif
