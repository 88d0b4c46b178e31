#include "reference_host/classes/RegisteredClass.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/LibraryCall.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MemoryBlocks.hpp"

#include <algorithm>
#include <utility>

struct nvcos::COSClient {};

namespace reference_host {

namespace {

/// Looked up at load, because the lookup may allocate and its user must not fail.
LedgerCounter& descriptors = Ledger::counter("class descriptors");

template <class Descriptor>
void setDescriptorMeantToLive(const Descriptor& descriptor, bool isMeant) noexcept
{
    descriptors.declareMeantToLive(isMeant ? 1 : -1);
    // A library's descriptor is at the start of its block; a descriptor of host code is not in a block.
    setBlockMeantToLive(dynamic_cast<const void*>(&descriptor), isMeant);
}

template <class Members>
auto* findByName(const Members& members, const std::string& name)
{
    const auto found = std::ranges::find(members, name, [](const auto& member) { return member.name; });
    return found != members.end() ? &*found : nullptr;
}

bool isKnownAccess(int code)
{
    return code == static_cast<int>(nvcos::COSPropAccess::ReadWrite) ||
           code == static_cast<int>(nvcos::COSPropAccess::ScriptReadOnly);
}

}  // namespace

void setMeantToLive(const nvcos::COSNamespaceInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
}

void setMeantToLive(const nvcos::COSClassInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
}

void setMeantToLive(const nvcos::COSPropInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
}

void setMeantToLive(const nvcos::COSMethodInfo& descriptor, bool isMeant) noexcept
{
    setDescriptorMeantToLive(descriptor, isMeant);
    if (const auto* signature = dynamic_cast<const MethodSignature*>(descriptor.getSignature())) {
        signature->setMeantToLive(isMeant);
    }
}

const nvcos::COSClient* hostClient()
{
    static const nvcos::COSClient client;
    return &client;
}

RegisteredClass::RegisteredClass(std::string fullName, std::string simpleName, ClassOrigin origin)
    : m_fullName(std::move(fullName)), m_simpleName(std::move(simpleName)), m_origin(origin)
{
}

RegisteredClass::~RegisteredClass() = default;

/// A name that a new member may have: given, and not taken by another member.
void RegisteredClass::checkMemberName(const char* kind, const char* name) const
{
    if (name == nullptr || *name == '\0') {
        throwClassError("NoName:member", {kind, m_fullName});
    }
    const bool taken = findByName(m_methods, name) != nullptr || findByName(m_properties, name) != nullptr;
    if (taken) {
        throwClassError("DuplicateMember", {m_fullName, name, kind});
    }
}

void RegisteredClass::addProperty(nvcos::COSPropInfo* property)
{
    const char* name = property != nullptr ? property->getName() : nullptr;
    BoundaryCall({"COSClass::addProperty"}, m_fullName, name).run([&] { insertProperty(property); });
}

void RegisteredClass::insertProperty(nvcos::COSPropInfo* property)
{
    const char* name = property != nullptr ? property->getName() : nullptr;
    checkMemberName("property", name);
    if (property->getType() == nullptr) {
        throwClassError("NullType", {m_fullName, name});
    }
    if (!isKnownAccess(property->getAccess())) {
        throwClassError("BadAccess", {m_fullName, name, property->getAccess()});
    }
    m_properties.push_back({name, nullptr});
    m_properties.back().info = registered(property);
}

void RegisteredClass::addMethod(nvcos::COSMethodInfo* method)
{
    const char* name = method != nullptr ? method->getName() : nullptr;
    BoundaryCall({"COSClass::addMethod"}, m_fullName, name).run([&] { insertMethod(method); });
}

void RegisteredClass::insertMethod(nvcos::COSMethodInfo* method)
{
    const char* name = method != nullptr ? method->getName() : nullptr;
    checkMemberName("method", name);
    if (method->getSignature() == nullptr) {
        throwClassError("NoSignature", {m_fullName, name});
    }
    m_methods.push_back({name, nullptr});
    m_methods.back().info = registered(method);
}

void RegisteredClass::initialize()
{
    if (m_state != State::Untouched) {
        return;
    }
    m_state = State::Initializing;
    try {
        askForMembers();
    } catch (...) {
        m_methods.clear();
        m_properties.clear();
        m_state = State::Untouched;
        throw;
    }
    m_state = State::Ready;
}

void RegisteredClass::askForMembers()
{
    const auto body = [this] { m_info->initializeClass(this, hostClient()); };
    if (isLibraryClass()) {
        callLibrary("initializeClass", body, m_fullName);
    } else {
        body();
    }
}

const std::deque<RegisteredClass::Method>& RegisteredClass::methods()
{
    initialize();
    return m_methods;
}

const std::deque<RegisteredClass::Property>& RegisteredClass::properties()
{
    initialize();
    return m_properties;
}

const RegisteredClass::Method* RegisteredClass::findMethod(const std::string& name)
{
    return findByName(methods(), name);
}

const RegisteredClass::Property* RegisteredClass::findProperty(const std::string& name)
{
    return findByName(properties(), name);
}

bool RegisteredClass::isInstanceMethod(const Method& method) const
{
    const auto& inputs = signatureOf(*this, method).inputs();
    return !isConstructor(method) && !inputs.empty() && inputs.front() == classType(m_fullName);
}

const MethodSignature& signatureOf(const RegisteredClass& cosClass, const RegisteredClass::Method& method)
{
    const auto* signature = dynamic_cast<const MethodSignature*>(method.info->getSignature());
    if (signature == nullptr) {
        throwClassError("NoSignature", {cosClass.fullName(), method.name});
    }
    return *signature;
}

const nvcos::COSType& typeOf(const RegisteredClass& cosClass, const RegisteredClass::Property& property)
{
    const nvcos::COSType* type = property.info->getType();
    if (type == nullptr) {
        throwClassError("NullType", {cosClass.fullName(), property.name});
    }
    return *type;
}

}  // namespace reference_host

nvcos::COSClass::COSClass() = default;
nvcos::COSClass::~COSClass() = default;
