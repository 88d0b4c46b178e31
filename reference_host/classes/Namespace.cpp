#include "reference_host/classes/Namespace.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/ClassRegistry.hpp"
#include "reference_host/classes/DescribeClassArguments.hpp"
#include "reference_host/classes/Interning.hpp"
#include "reference_host/classes/LibraryCall.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace reference_host {

namespace {

template <class Members>
auto* findBySimpleName(const Members& members, const std::string& name)
{
    const auto found =
        std::ranges::find(members, name, [](const auto& member) { return member->simpleName(); });
    return found != members.end() ? found->get() : nullptr;
}

}  // namespace

void checkSimpleName(const char* kind, const char* name)
{
    if (name == nullptr || *name == '\0') {
        throwClassError("NoName", "a " + std::string(kind) + " without a name was added");
    }
    if (std::strchr(name, '.') != nullptr) {
        throwClassError("BadName", "\"" + std::string(name) + "\" cannot be the name of a " + kind);
    }
}

Namespace::Namespace(std::string fullName) : m_fullName(std::move(fullName)) {}

Namespace::~Namespace() = default;

std::string Namespace::simpleName() const
{
    return SplitName(m_fullName).simple;
}

void Namespace::addInnerNamespace(nvcos::COSNamespaceInfo* info)
{
    const char* name = info != nullptr ? info->getName() : nullptr;
    BoundaryCall({"COSNamespace::addInnerNamespace"}, m_fullName, name).run([&] {
        insertNamespace(name, info);
    });
}

void Namespace::addClass(nvcos::COSClassInfo* info, int first, int second)
{
    const char* name = info != nullptr ? info->getClassName() : nullptr;
    BoundaryCall({"COSNamespace::addClass"}, m_fullName, name, first, second).run([&] {
        insertClass(info, ClassOrigin::Library);
    });
}

Namespace& Namespace::insertNamespace(const char* name, nvcos::COSNamespaceInfo* info)
{
    define();
    checkNewName("namespace", name);
    m_inner.push_back(std::make_unique<Namespace>(m_fullName + "." + name));
    m_inner.back()->adopt(info);
    return *m_inner.back();
}

void Namespace::insertClass(nvcos::COSClassInfo* info, ClassOrigin origin)
{
    const char* name = info != nullptr ? info->getClassName() : nullptr;
    define();
    checkNewName("class", name);
    m_classes.push_back(std::make_unique<RegisteredClass>(m_fullName + "." + name, name, origin));
    m_classes.back()->adopt(info);
}

/// A name that something new in this namespace may have.
void Namespace::checkNewName(const char* kind, const char* name)
{
    checkSimpleName(kind, name);
    if (knownClass(name) == nullptr && knownInner(name) == nullptr) {
        return;
    }
    if (m_info) {
        m_info->throwErrorForDefinitionOfExistingName(this, intern(name));
    }
    throwClassError("DuplicateName",
                    "\"" + std::string(name) + "\" is defined already in namespace " + m_fullName);
}

void Namespace::define()
{
    if (m_state != State::Undefined) {
        return;
    }
    m_state = State::Defining;
    try {
        ClassRegistry::instance().addContributionsTo(*this);
        if (m_info) {
            callLibrary(
                "defineContents", [this] { m_info->defineContents(this); }, m_fullName);
        }
    } catch (...) {
        removeContents();
        m_state = State::Undefined;
        throw;
    }
    m_state = State::Defined;
}

void Namespace::removeContents()
{
    std::erase_if(m_classes, [](const auto& cosClass) { return cosClass->instances() == 0; });
    std::erase_if(m_inner, [](const auto& inner) { return !inner->hasInstances(); });
}

bool Namespace::hasInstances() const
{
    return std::ranges::any_of(m_classes, [](const auto& cosClass) { return cosClass->instances() != 0; }) ||
           std::ranges::any_of(m_inner, [](const auto& inner) { return inner->hasInstances(); });
}

Namespace* Namespace::knownInner(const std::string& simpleName) const
{
    return findBySimpleName(m_inner, simpleName);
}

RegisteredClass* Namespace::knownClass(const std::string& simpleName) const
{
    return findBySimpleName(m_classes, simpleName);
}

Namespace* Namespace::findInner(const std::string& simpleName)
{
    define();
    Namespace* inner = knownInner(simpleName);
    if (inner == nullptr && m_info && m_info->attemptToLoadInnerNamespace(this, intern(simpleName.c_str()))) {
        inner = knownInner(simpleName);
    }
    return inner;
}

RegisteredClass* Namespace::findClass(const std::string& simpleName)
{
    define();
    RegisteredClass* cosClass = knownClass(simpleName);
    if (cosClass == nullptr && m_info && m_info->attemptToLoadClass(this, intern(simpleName.c_str()))) {
        cosClass = knownClass(simpleName);
    }
    return cosClass;
}

const std::vector<std::unique_ptr<Namespace>>& Namespace::innerNamespaces()
{
    define();
    return m_inner;
}

const std::vector<std::unique_ptr<RegisteredClass>>& Namespace::classes()
{
    define();
    return m_classes;
}

void Namespace::listInstances(std::vector<std::string>& lines) const
{
    for (const auto& cosClass : m_classes) {
        if (cosClass->instances() != 0) {
            lines.push_back(cosClass->fullName() + ": " + std::to_string(cosClass->instances()));
        }
    }
    for (const auto& inner : m_inner) {
        inner->listInstances(lines);
    }
}

}  // namespace reference_host

nvcos::COSNamespace::COSNamespace() = default;
nvcos::COSNamespace::~COSNamespace() = default;

nvcos::COSNamespace* nvcos::COSNamespace::getNamespace(internal::Interned fullName)
{
    using namespace reference_host;
    const Operation operation("COSNamespace::getNamespace", CanFail::ThrowingOrNull);
    return BoundaryCall(operation, fullName).run([&]() -> COSNamespace* {
        return fullName.isNull() ? nullptr : ClassRegistry::instance().findNamespace(fullName.c_str());
    });
}

void nvcos::COSNamespace::addNamespace(COSNamespaceInfo* info)
{
    const char* name = info != nullptr ? info->getName() : nullptr;
    using namespace reference_host;
    BoundaryCall({"COSNamespace::addNamespace"}, name).run([&] {
        ClassRegistry::instance().insertNamespace(name, info);
    });
}
