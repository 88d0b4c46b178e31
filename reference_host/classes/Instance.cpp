#include "reference_host/classes/Instance.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/LibraryCall.hpp"
#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <utility>

namespace reference_host {

namespace {

LedgerCounter& instances()
{
    static LedgerCounter& counter = Ledger::counter("class instances");
    return counter;
}

}  // namespace

nvcos::COSInterfacePtr Instance::create(RegisteredClass& cosClass)
{
    cosClass.initialize();
    auto* instance = new Instance(cosClass);
    nvcos::COSInterfacePtr reference(instance);
    instance->allocate();
    return reference;
}

Instance& Instance::of(const nvcos::COSInterface& instance)
{
    // The boundary hands instances out as const where it only looks; the count is ours to change.
    return static_cast<Instance&>(const_cast<nvcos::COSInterface&>(instance));
}

Instance::Instance(RegisteredClass& cosClass) : m_class(cosClass)
{
    m_class.countInstance();
    instances().open();
    if (m_next != nullptr) {
        m_next->m_previous = this;
    }
    m_first = this;
}

Instance::~Instance()
{
    (m_previous != nullptr ? m_previous->m_next : m_first) = m_next;
    if (m_next != nullptr) {
        m_next->m_previous = m_previous;
    }
    m_class.discountInstance();
    instances().close();
}

void Instance::endLibraryData() noexcept
{
    const auto withData = [] {
        Instance* instance = m_first;
        while (instance != nullptr && !(instance->m_hasData && instance->m_class.isLibraryClass())) {
            instance = instance->m_next;
        }
        return instance;
    };
    // Ending the data of one instance may end others.
    while (Instance* instance = withData()) {
        const nvcos::COSInterfacePtr held(instance);
        instance->deallocate();
    }
}

void Instance::addReference() noexcept
{
    ++m_references;
}

void Instance::releaseReference() noexcept
{
    // The last reference stays counted while the class deallocates the data, which may refer to the instance.
    if (m_references == 1) {
        deallocate();
        delete this;
        return;
    }
    --m_references;
}

void Instance::allocate()
{
    const auto body = [this] { m_data = m_class.info().allocateInstance(this); };
    if (m_class.isLibraryClass()) {
        callLibrary("allocateInstance", body, m_class.fullName());
    } else {
        body();
    }
    m_hasData = true;
}

/// A class that throws here breaks its contract and ends the process: nothing could handle the error.
void Instance::deallocate() noexcept
{
    if (!std::exchange(m_hasData, false)) {
        return;
    }
    const auto body = [this] { m_class.info().deallocateInstance(this, std::exchange(m_data, nullptr)); };
    if (m_class.isLibraryClass()) {
        callLibrary("deallocateInstance", body, m_class.fullName());
    } else {
        body();
    }
}

// Defined here, because RegisteredClass must not depend on Instance.
void* RegisteredClass::getInstanceData(const nvcos::COSInterface* instance) const noexcept
{
    const Operation operation("COSClass::getInstanceData", CanFail::Never);
    return BoundaryCall(operation, instance).runNoThrow([&] {
        return instance != nullptr ? Instance::of(*instance).data() : nullptr;
    });
}

const nvcos::COSInterfacePtr& objectElement(const nvArray* value, std::size_t index)
{
    requireAlive(value);
    const char* operation = CallSite::current().operationName();
    if (value->valueClass != ValueClass::ClassObject) {
        throwClassError("NoObject", {operation, describe(value)});
    }
    if (index >= elementCount(value)) {
        throwClassError("BadIndex", {operation, index, elementCount(value)});
    }
    return objects(value)[index];
}

}  // namespace reference_host

using namespace reference_host;

nvcos::COSInterface::COSInterface() = default;
nvcos::COSInterface::~COSInterface() = default;

void* omGetInstanceData(const nvcos::COSInterface* instance) noexcept
{
    return BoundaryCall({"omGetInstanceData", CanFail::Never}, instance).runNoThrow([&] {
        return instance != nullptr ? Instance::of(*instance).data() : nullptr;
    });
}

nvcos::COSInterfacePtr omGetArrayElement(const nvArray* value, std::size_t index)
{
    return BoundaryCall({"omGetArrayElement"}, value, index).run([&] {
        return nvcos::COSInterfacePtr(objectElement(value, index));
    });
}

nvArray* omCreateNVCOSScalar(const nvcos::COSInterfacePtr& instance)
{
    return BoundaryCall({"omCreateNVCOSScalar"}, instance).run([&]() -> nvArray* {
        if (!instance) {
            throwClassError("NoObject:null", {"omCreateNVCOSScalar"});
        }
        const std::string& className = Instance::of(*instance.get()).cosClass().fullName();
        return makeObjects(className, {1, 1}, {instance}).release();
    });
}

std::string nvcos::describeArgument(const COSInterface* instance)
{
    return instance != nullptr ? "instance of " + Instance::of(*instance).cosClass().fullName() : "null";
}

std::string nvcos::describeArgument(const COSInterfacePtr& instance)
{
    return describeArgument(instance.get());
}
