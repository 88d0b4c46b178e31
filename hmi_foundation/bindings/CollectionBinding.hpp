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

/// What the bindings of a collection class have in common: how a method body reaches the collection, the
/// record and the index among its inputs, how it hands over a result, and the properties every
/// collection has. `Collection` is the native class behind the host class.
namespace zm_hmi_foundation {

/// The collection behind an input of the class's own type; "NoCollection" where there is none.
template <class Collection>
Collection& collectionOf(const nvcos::COSValue& object)
{
    Collection* collection = Collection::getFromNVArray(std::get<nvArray*>(object));
    if (collection == nullptr) {
        throwNoCollection();
    }
    return *collection;
}

/// A "uint32 scalar" input, 1-based, as an index into the collection. 0 throws "InvalidElementIndex".
template <class Collection>
std::size_t indexInto(const Collection& collection, const nvcos::COSValue& index)
{
    return toZeroBasedIndex(std::get<std::uint32_t>(index), collection.getCount());
}

/// Hands a host value over as the one result of a method; null reads as an empty value.
inline void setResult(nvcos::COSValue& output, OwnedArray value)
{
    output = value.release();
}

/// A property descriptor as the host calls it.
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

/// A method descriptor as the host calls it.
template <class Method>
class HostMethod final : public Method {
public:
    void invoke(const nvcos::COSClient* client, int& outputCount, nvcos::COSValue* outputs, int inputCount,
                const nvcos::COSValue* inputs) const override
    {
        withHostMemoryErrors([&] { Method::invoke(client, outputCount, outputs, inputCount, inputs); });
    }
};

/// Hands a descriptor to the class, which owns it once it has taken it.
template <class Property>
void addProperty(nvcos::COSClass* cosClass)
{
    auto property = std::make_unique<HostProperty<Property>>(cosClass);
    cosClass->addProperty(property.get());
    static_cast<void>(property.release());
}

template <class Method>
void addMethod(nvcos::COSClass* cosClass)
{
    auto method = std::make_unique<HostMethod<Method>>();
    cosClass->addMethod(method.get());
    static_cast<void>(method.release());
}

/// The native data of a new instance.
template <class Collection>
void* newCollection()
{
    return withHostMemoryErrors([] { return new Collection; });
}

/// "Count": the number of elements. Scripts read it; an assignment changes nothing.
template <class Collection>
class CollectionCountPI : public HMIBasePI {
public:
    explicit CollectionCountPI(const nvcos::COSClass* owner)
        : HMIBasePI(owner, "Count", type_name::uint32Scalar, nvcos::COSPropAccess::ScriptReadOnly,
                    ValueKind::Count)
    {
    }
    nvcos::COSValue getValue(nvcos::COSInterface* instance) override
    {
        return static_cast<std::uint32_t>(static_cast<Collection*>(getInstanceData(instance))->getCount());
    }
    void setValue(nvcos::COSInterface* /*instance*/, nvcos::COSValue /*value*/) override {}
};

/// "Persistence": the struct array that is saved with the model; assigning one appends its elements.
template <class Collection>
class CollectionPersistencePI : public HMIBasePI {
public:
    explicit CollectionPersistencePI(const nvcos::COSClass* owner)
        : HMIBasePI(owner, "Persistence", type_name::any, nvcos::COSPropAccess::ReadWrite,
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
