#include "NotImplemented.hpp"
#include "host/ClassDescriptors.hpp"

#include <utility>

// The operations of host/ClassObjects.hpp. Written by contract/generate.py; yours to change.

namespace nvcos::internal {

Interned makeInterned(const char* /*name*/)
{
    throwNotImplemented("makeInterned");
}

}  // namespace nvcos::internal

namespace nvcos {

COSInterface::COSInterface() = default;
COSInterface::~COSInterface() = default;
const COSType* COSTypeRepository::getType(internal::Interned /*name*/)
{
    throwNotImplemented("COSTypeRepository::getType");
}

}  // namespace nvcos

nvcos::COSInterfacePtr omGetArrayElement(const nvArray* /*value*/, std::size_t /*index*/)
{
    throwNotImplemented("omGetArrayElement");
}

nvArray* omCreateNVCOSScalar(const nvcos::COSInterfacePtr& /*instance*/)
{
    throwNotImplemented("omCreateNVCOSScalar");
}

void* omGetInstanceData(const nvcos::COSInterface* /*instance*/) noexcept
{
    abortNotImplemented("omGetInstanceData");
}
