#include "NotImplemented.hpp"
#include "host/ClassDescriptors.hpp"

#include <utility>

// The operations of host/ClassDescriptors.hpp. Written by contract/generate.py; yours to change.

namespace nvcos {

COSMethodSignature::~COSMethodSignature() = default;
COSMethodSignature* COSMethodSignature::createMethodSignature()
{
    throwNotImplemented("COSMethodSignature::createMethodSignature");
}

COSMethodSignature::COSMethodSignature() = default;
COSMethodInfo::COSMethodInfo(const char* /*name*/)
{
    throwNotImplemented("COSMethodInfo::COSMethodInfo");
}

COSMethodInfo::~COSMethodInfo() = default;
const char* COSMethodInfo::getName() const noexcept
{
    abortNotImplemented("COSMethodInfo::getName");
}

COSPropInfo::~COSPropInfo() = default;
COSPropInfo::COSPropInfo() = default;
COSClassInfo::~COSClassInfo() = default;
bool COSClassInfo::customLoad(COSInterface* /*instance*/, const nvArray* /*stored*/)
{
    throwNotImplemented("COSClassInfo::customLoad");
}

nvArray* COSClassInfo::customSave(const COSInterface* /*instance*/) const
{
    throwNotImplemented("COSClassInfo::customSave");
}

void COSClassInfo::instanceLoaded(COSInterface* /*instance*/)
{
    throwNotImplemented("COSClassInfo::instanceLoaded");
}

void* COSClassInfo::copyData(const COSInterface* /*instance*/, const void* /*data*/) const
{
    throwNotImplemented("COSClassInfo::copyData");
}

std::size_t COSClassInfo::getChildrenOfInstance(const COSInterface* /*instance*/) const
{
    throwNotImplemented("COSClassInfo::getChildrenOfInstance");
}

bool COSClassInfo::canOtherClassContainThisClass(const COSClass* /*other*/) const
{
    throwNotImplemented("COSClassInfo::canOtherClassContainThisClass");
}

bool COSClassInfo::canThisClassContainOtherClass(const COSClass* /*other*/) const
{
    throwNotImplemented("COSClassInfo::canThisClassContainOtherClass");
}

bool COSClassInfo::isPropertyNameReservedByThisClass(const char* /*name*/) const
{
    throwNotImplemented("COSClassInfo::isPropertyNameReservedByThisClass");
}

COSClassInfo::COSClassInfo() = default;
COSClass::COSClass() = default;
COSClass::~COSClass() = default;
COSNamespaceInfo::~COSNamespaceInfo() = default;
bool COSNamespaceInfo::attemptToLoadType(COSNamespace* /*cosNamespace*/, internal::Interned /*name*/)
{
    throwNotImplemented("COSNamespaceInfo::attemptToLoadType");
}

bool COSNamespaceInfo::attemptToLoadClass(COSNamespace* /*cosNamespace*/, internal::Interned /*name*/)
{
    throwNotImplemented("COSNamespaceInfo::attemptToLoadClass");
}

bool COSNamespaceInfo::attemptToLoadFunction(COSNamespace* /*cosNamespace*/, internal::Interned /*name*/)
{
    throwNotImplemented("COSNamespaceInfo::attemptToLoadFunction");
}

bool COSNamespaceInfo::attemptToLoadInnerNamespace(COSNamespace* /*cosNamespace*/,
                                                   internal::Interned /*name*/)
{
    throwNotImplemented("COSNamespaceInfo::attemptToLoadInnerNamespace");
}

void COSNamespaceInfo::throwErrorForDefinitionOfExistingName(COSNamespace* /*cosNamespace*/,
                                                             internal::Interned /*name*/)
{
    throwNotImplemented("COSNamespaceInfo::throwErrorForDefinitionOfExistingName");
}

COSNamespaceInfo::COSNamespaceInfo() = default;
COSNamespace* COSNamespace::getNamespace(internal::Interned /*fullName*/)
{
    throwNotImplemented("COSNamespace::getNamespace");
}

void COSNamespace::addNamespace(COSNamespaceInfo* /*info*/)
{
    throwNotImplemented("COSNamespace::addNamespace");
}

COSNamespace::COSNamespace() = default;
COSNamespace::~COSNamespace() = default;
}  // namespace nvcos
