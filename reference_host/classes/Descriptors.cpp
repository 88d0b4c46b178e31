/// The base classes of descriptors: their default behaviour, and the ledger's count of live descriptors.

#include "host/ClassDescriptors.hpp"
#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/support/Ledger.hpp"

#include <string>

namespace {

reference_host::LedgerCounter& descriptors()
{
    static reference_host::LedgerCounter& counter = reference_host::Ledger::counter("class descriptors");
    return counter;
}

/// A null name is not interned and not journaled.
nvcos::internal::Interned internMethodName(const char* name)
{
    using namespace reference_host;
    return name != nullptr ? BoundaryCall({"COSMethodInfo"}, name).run([&] { return intern(name); })
                           : nvcos::internal::Interned();
}

}  // namespace

namespace nvcos {

COSMethodInfo::COSMethodInfo(const char* name) : m_name(internMethodName(name))
{
    descriptors().open();
}

COSMethodInfo::~COSMethodInfo()
{
    descriptors().close();
}

const char* COSMethodInfo::getName() const noexcept
{
    return m_name.c_str();
}

COSPropInfo::COSPropInfo()
{
    descriptors().open();
}

COSPropInfo::~COSPropInfo()
{
    descriptors().close();
}

COSClassInfo::COSClassInfo()
{
    descriptors().open();
}

COSClassInfo::~COSClassInfo()
{
    descriptors().close();
}

bool COSClassInfo::customLoad(COSInterface* /*instance*/, const nvArray* /*stored*/)
{
    return false;
}

nvArray* COSClassInfo::customSave(const COSInterface* /*instance*/) const
{
    return nullptr;
}

void COSClassInfo::instanceLoaded(COSInterface* /*instance*/) {}

void* COSClassInfo::copyData(const COSInterface* /*instance*/, const void* /*data*/) const
{
    return nullptr;
}

std::size_t COSClassInfo::getChildrenOfInstance(const COSInterface* /*instance*/) const
{
    return 0;
}

bool COSClassInfo::canOtherClassContainThisClass(const COSClass* /*other*/) const
{
    return true;
}

bool COSClassInfo::canThisClassContainOtherClass(const COSClass* /*other*/) const
{
    return true;
}

bool COSClassInfo::isPropertyNameReservedByThisClass(const char* /*name*/) const
{
    return false;
}

COSNamespaceInfo::COSNamespaceInfo()
{
    descriptors().open();
}

COSNamespaceInfo::~COSNamespaceInfo()
{
    descriptors().close();
}

bool COSNamespaceInfo::attemptToLoadType(COSNamespace* /*cosNamespace*/, internal::Interned /*name*/)
{
    return false;
}

bool COSNamespaceInfo::attemptToLoadClass(COSNamespace* /*cosNamespace*/, internal::Interned /*name*/)
{
    return false;
}

bool COSNamespaceInfo::attemptToLoadFunction(COSNamespace* /*cosNamespace*/, internal::Interned /*name*/)
{
    return false;
}

bool COSNamespaceInfo::attemptToLoadInnerNamespace(COSNamespace* /*cosNamespace*/,
                                                   internal::Interned /*name*/)
{
    return false;
}

void COSNamespaceInfo::throwErrorForDefinitionOfExistingName(COSNamespace* /*cosNamespace*/,
                                                             internal::Interned name)
{
    reference_host::throwClassError("DuplicateName", {name.c_str(), getName()});
}

}  // namespace nvcos
