#include "NotImplemented.hpp"
#include "host/ClassDescriptors.hpp"

#include <type_traits>

// The objects that a host makes. Written by contract/generate.py; yours to change.

namespace skeleton_host {

using namespace nvcos;

class MethodSignature final : public COSMethodSignature {
public:
    void addInput(const COSType* /*type*/) override { throwNotImplemented("COSMethodSignature::addInput"); }
    void addOutput(const COSType* /*type*/) override { throwNotImplemented("COSMethodSignature::addOutput"); }
    void setNumberOfOptionalInputs(int /*count*/) override
    {
        throwNotImplemented("COSMethodSignature::setNumberOfOptionalInputs");
    }
};
static_assert(!std::is_abstract_v<MethodSignature>);

class Interface final : public COSInterface {
public:
    void addReference() noexcept override { abortNotImplemented("COSInterface::addReference"); }
    void releaseReference() noexcept override { abortNotImplemented("COSInterface::releaseReference"); }
};
static_assert(!std::is_abstract_v<Interface>);

class Class final : public COSClass {
public:
    void addProperty(COSPropInfo* /*property*/) override { throwNotImplemented("COSClass::addProperty"); }
    void addMethod(COSMethodInfo* /*method*/) override { throwNotImplemented("COSClass::addMethod"); }
    void* getInstanceData(const COSInterface* /*instance*/) const noexcept override
    {
        abortNotImplemented("COSClass::getInstanceData");
    }
};
static_assert(!std::is_abstract_v<Class>);

class Namespace final : public COSNamespace {
public:
    void addInnerNamespace(COSNamespaceInfo* /*info*/) override
    {
        throwNotImplemented("COSNamespace::addInnerNamespace");
    }
    void addClass(COSClassInfo* /*info*/, int /*first*/, int /*second*/) override
    {
        throwNotImplemented("COSNamespace::addClass");
    }
};
static_assert(!std::is_abstract_v<Namespace>);

}  // namespace skeleton_host
