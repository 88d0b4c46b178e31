#include "contract/TestClasses.hpp"

#include <utility>

namespace test_classes {

namespace {

/// Hands a descriptor to the host, which owns it when `add` returns normally.
template <class Descriptor, class Add>
void handOver(std::unique_ptr<Descriptor> descriptor, Add add)
{
    add(descriptor.get());
    static_cast<void>(descriptor.release());
}

}  // namespace

const nvcos::COSType* typeNamed(const std::string& name)
{
    return nvcos::COSTypeRepository::getType(nvcos::internal::makeInterned(name.c_str()));
}

MethodInfo::MethodInfo(const Method& method)
    : COSMethodInfo(method.name.c_str()),
      m_signature(nvcos::COSMethodSignature::createMethodSignature()),
      m_body(method.body)
{
    for (const std::string& type : method.inputs) {
        m_signature->addInput(typeNamed(type));
    }
    for (const std::string& type : method.outputs) {
        m_signature->addOutput(typeNamed(type));
    }
    m_signature->setNumberOfOptionalInputs(method.optionalInputs);
}

MethodInfo::~MethodInfo() = default;

void MethodInfo::invoke(const nvcos::COSClient* /*client*/, int& outputCount, nvcos::COSValue* outputs,
                        int inputCount, const nvcos::COSValue* inputs) const
{
    Call call{outputCount, outputs, inputCount, inputs};
    if (m_body) {
        m_body(call);
    }
}

void ClassInfo::initializeClass(nvcos::COSClass* cosClass, const nvcos::COSClient* /*client*/)
{
    ++m_script.initialized;
    if (m_script.initialize) {
        m_script.initialize(*cosClass);
    }
}

void* ClassInfo::allocateInstance(nvcos::COSInterface* /*instance*/)
{
    ++m_script.allocated;
    return m_script.allocate ? m_script.allocate() : &m_script;
}

void ClassInfo::deallocateInstance(nvcos::COSInterface* instance, void* data)
{
    ++m_script.deallocated;
    m_script.lastData = data;
    if (m_script.atDeallocation) {
        m_script.atDeallocation(instance);
    }
}

void NamespaceInfo::defineContents(nvcos::COSNamespace* cosNamespace)
{
    ++m_script.defined;
    if (m_script.define) {
        m_script.define(*cosNamespace);
    }
}

bool NamespaceInfo::load(nvcos::COSNamespace* home, const std::string& what, nvcos::internal::Interned name)
{
    return m_script.load && m_script.load(*home, what, name.c_str());
}

void NamespaceInfo::throwErrorForDefinitionOfExistingName(nvcos::COSNamespace* home,
                                                          nvcos::internal::Interned name)
{
    if (m_script.refuse) {
        m_script.refuse(name.c_str());
        return;
    }
    COSNamespaceInfo::throwErrorForDefinitionOfExistingName(home, name);
}

void addNamespace(const char* name, NamespaceScript& script)
{
    handOver(std::make_unique<NamespaceInfo>(name, script), nvcos::COSNamespace::addNamespace);
}

void addInner(nvcos::COSNamespace& home, const char* name, NamespaceScript& script)
{
    handOver(std::make_unique<NamespaceInfo>(name, script),
             [&](NamespaceInfo* info) { home.addInnerNamespace(info); });
}

void addClass(nvcos::COSNamespace& home, const char* name, ClassScript& script)
{
    handOver(std::make_unique<ClassInfo>(name, script), [&](ClassInfo* info) { home.addClass(info, 0, 2); });
}

void addMethod(nvcos::COSClass& cosClass, const Method& method)
{
    handOver(std::make_unique<MethodInfo>(method), [&](MethodInfo* info) { cosClass.addMethod(info); });
}

void addProperty(nvcos::COSClass& cosClass, const char* name, const char* type, PropertyScript* script,
                 nvcos::COSPropAccess access)
{
    handOver(std::make_unique<PropertyInfo>(name, typeNamed(type), script, static_cast<int>(access)),
             [&](PropertyInfo* info) { cosClass.addProperty(info); });
}

nvcos::COSNamespace* findNamespace(const char* fullName)
{
    return nvcos::COSNamespace::getNamespace(nvcos::internal::makeInterned(fullName));
}

}  // namespace test_classes
