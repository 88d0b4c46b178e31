#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/classes/MethodSignature.hpp"

#include <cstddef>
#include <deque>
#include <memory>
#include <string>

namespace reference_host {

/// Declares to the ledger whether a descriptor, with its memory and its signature, is meant to live.
void setMeantToLive(const nvcos::COSNamespaceInfo& descriptor, bool isMeant) noexcept;
void setMeantToLive(const nvcos::COSClassInfo& descriptor, bool isMeant) noexcept;
void setMeantToLive(const nvcos::COSPropInfo& descriptor, bool isMeant) noexcept;
void setMeantToLive(const nvcos::COSMethodInfo& descriptor, bool isMeant) noexcept;

struct RegisteredDeleter {
    template <class Descriptor>
    void operator()(Descriptor* descriptor) const noexcept
    {
        setMeantToLive(*descriptor, false);
        delete descriptor;
    }
};

/// Owns a registered descriptor. While it is registered the ledger does not list it.
template <class Descriptor>
using Registered = std::unique_ptr<Descriptor, RegisteredDeleter>;

/// Takes ownership; null is allowed.
template <class Descriptor>
Registered<Descriptor> registered(Descriptor* descriptor) noexcept
{
    if (descriptor != nullptr) {
        setMeantToLive(*descriptor, true);
    }
    return Registered<Descriptor>(descriptor);
}

/// The client that the host passes when it calls a class.
const nvcos::COSClient* hostClient();

/// The origin of a class. Calls into a library's class are journaled, calls into the host's own are not.
enum class ClassOrigin { Library, HostCode };

/// A class in the tree: its descriptors, and how many instances live.
///
/// The members are asked for in `initialize`, on first use. When the class's `initializeClass` throws,
/// the members it had added are deleted, the exception reaches the first user, and the next use asks
/// again; once it returned it is never asked again. The class can be found while it is being
/// initialized.
class RegisteredClass final : public nvcos::COSClass {
public:
    struct Method {
        std::string name;
        Registered<nvcos::COSMethodInfo> info;
    };
    struct Property {
        std::string name;
        Registered<nvcos::COSPropInfo> info;
    };

    RegisteredClass(std::string fullName, std::string simpleName, ClassOrigin origin);
    ~RegisteredClass() override;

    /// Becomes the owner of the class's description.
    void adopt(nvcos::COSClassInfo* info) noexcept { m_info = registered(info); }

    void addProperty(nvcos::COSPropInfo* property) override;
    void addMethod(nvcos::COSMethodInfo* method) override;
    void* getInstanceData(const nvcos::COSInterface* instance) const noexcept override;

    // The same for host code.
    void insertProperty(nvcos::COSPropInfo* property);
    void insertMethod(nvcos::COSMethodInfo* method);

    void initialize();

    const std::string& fullName() const noexcept { return m_fullName; }
    const std::string& simpleName() const noexcept { return m_simpleName; }
    bool isLibraryClass() const noexcept { return m_origin == ClassOrigin::Library; }
    nvcos::COSClassInfo& info() const noexcept { return *m_info; }

    /// The members, in the order of registration; initialize the class. A member stays where it is when
    /// others are added.
    const std::deque<Method>& methods();
    const std::deque<Property>& properties();
    const Method* findMethod(const std::string& name);
    const Property* findProperty(const std::string& name);

    const Method* constructor() { return findMethod(m_simpleName); }
    bool isConstructor(const Method& method) const { return method.name == m_simpleName; }
    bool isInstanceMethod(const Method& method) const;

    void countInstance() noexcept { ++m_instances; }
    void discountInstance() noexcept { --m_instances; }
    std::size_t instances() const noexcept { return m_instances; }

private:
    void askForMembers();
    void checkMemberName(const char* kind, const char* name) const;

    enum class State { Untouched, Initializing, Ready };

    std::string m_fullName;
    std::string m_simpleName;
    ClassOrigin m_origin;
    Registered<nvcos::COSClassInfo> m_info;
    State m_state = State::Untouched;
    std::deque<Method> m_methods;
    std::deque<Property> m_properties;
    std::size_t m_instances = 0;
};

/// The signature of a method; a host error that names both while there is none of the host's making.
const MethodSignature& signatureOf(const RegisteredClass& cosClass, const RegisteredClass::Method& method);

/// The type of a property, which its descriptor is asked for each time; a host error that names both while
/// there is none.
const nvcos::COSType& typeOf(const RegisteredClass& cosClass, const RegisteredClass::Property& property);

}  // namespace reference_host
