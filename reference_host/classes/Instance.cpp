#include "reference_host/classes/Instance.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/DescribeClassArguments.hpp"
#include "reference_host/classes/LibraryCall.hpp"
#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/support/Ledger.hpp"

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
}

Instance::~Instance()
{
    m_class.discountInstance();
    instances().close();
}

void Instance::addReference() noexcept
{
    ++m_references;
}

void Instance::releaseReference() noexcept
{
    // The last reference stays counted while the class ends the data: it may refer to the instance.
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

/// A class that throws here breaks its contract with no one left to tell: the process ends.
void Instance::deallocate() noexcept
{
    if (!m_hasData) {
        return;
    }
    const auto body = [this] { m_class.info().deallocateInstance(this, m_data); };
    if (m_class.isLibraryClass()) {
        callLibrary("deallocateInstance", body, m_class.fullName());
    } else {
        body();
    }
}

}  // namespace reference_host

nvcos::COSInterface::COSInterface() = default;
nvcos::COSInterface::~COSInterface() = default;

void* omGetInstanceData(const nvcos::COSInterface* instance) noexcept
{
    using namespace reference_host;
    return BoundaryCall({"omGetInstanceData", CanFail::Never}, instance).runNoThrow([&] {
        return instance != nullptr ? Instance::of(*instance).data() : nullptr;
    });
}
