#include "reference_host/classes/ClassRegistry.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/Types.hpp"

#include <boost/algorithm/string/join.hpp>

#include <algorithm>
#include <utility>

namespace reference_host {

ClassRegistry& ClassRegistry::instance()
{
    static auto* const registry = new ClassRegistry;
    return *registry;
}

void ClassRegistry::addBuiltIn(const std::string& namespaceName, ClassInfoFactory makeInfo)
{
    m_builtIn.push_back({namespaceName, makeInfo});
    m_contributions.push_back({namespaceName, std::move(makeInfo)});
}

Namespace* ClassRegistry::findTopLevel(const std::string& simpleName) const
{
    const auto found =
        std::ranges::find(m_topLevel, simpleName, [](const auto& entry) { return entry->fullName(); });
    return found != m_topLevel.end() ? found->get() : nullptr;
}

Namespace* ClassRegistry::findNamespace(const std::string& fullName)
{
    const SplitName name(fullName);
    if (name.parent.empty()) {
        return findTopLevel(name.simple);
    }
    Namespace* outer = findNamespace(name.parent);
    return outer != nullptr ? outer->findInner(name.simple) : nullptr;
}

/// The namespace if it is there by now; defines nothing.
Namespace* ClassRegistry::knownNamespace(const std::string& fullName) const
{
    const SplitName name(fullName);
    if (name.parent.empty()) {
        return findTopLevel(name.simple);
    }
    const Namespace* outer = knownNamespace(name.parent);
    return outer != nullptr ? outer->knownInner(name.simple) : nullptr;
}

RegisteredClass* ClassRegistry::findClass(const std::string& fullName)
{
    const SplitName name(fullName);
    Namespace* home = findNamespace(name.parent);
    return home != nullptr ? home->findClass(name.simple) : nullptr;
}

RegisteredClass& ClassRegistry::classNamed(const std::string& fullName)
{
    RegisteredClass* cosClass = findClass(fullName);
    if (cosClass == nullptr) {
        throwClassError("UnknownClass", {fullName});
    }
    return *cosClass;
}

bool ClassRegistry::attemptToLoadType(const std::string& fullName)
{
    const SplitName name(fullName);
    Namespace* home = findNamespace(name.parent);
    return home != nullptr && home->info() != nullptr &&
           home->info()->attemptToLoadType(home, intern(name.simple.c_str()));
}

Namespace& ClassRegistry::insertNamespace(const char* name, nvcos::COSNamespaceInfo* info)
{
    checkSimpleName("namespace", name);
    if (findTopLevel(name) != nullptr) {
        throwClassError("DuplicateName:top", {name});
    }
    m_topLevel.push_back(std::make_unique<Namespace>(name, m_contributions));
    m_topLevel.back()->adopt(info);
    return *m_topLevel.back();
}

Namespace& ClassRegistry::createNamespace(const std::string& fullName)
{
    if (Namespace* existing = findNamespace(fullName)) {
        return *existing;
    }
    const SplitName name(fullName);
    return name.parent.empty() ? insertNamespace(name.simple.c_str(), nullptr)
                               : createNamespace(name.parent).insertNamespace(name.simple.c_str(), nullptr);
}

void ClassRegistry::contribute(const std::string& namespaceName, ClassInfoFactory makeInfo)
{
    Contribution contribution{namespaceName, std::move(makeInfo)};
    Namespace* home = knownNamespace(namespaceName);
    if (home != nullptr && home->isDefined()) {
        home->insertContributed(contribution);
    }
    m_contributions.push_back(std::move(contribution));
}

void ClassRegistry::createContributedNamespaces()
{
    for (std::size_t i = 0; i < m_contributions.size(); ++i) {
        createNamespace(
            std::string(m_contributions[i].namespaceName));  // a copy: what is defined may contribute
    }
}

void ClassRegistry::reset()
{
    std::vector<std::string> alive;
    for (const auto& top : m_topLevel) {
        top->listInstances(alive);
    }
    if (!alive.empty()) {
        throwClassError("InstancesLive", {boost::algorithm::join(alive, "; ")});
    }
    m_topLevel.clear();
    m_contributions = m_builtIn;
}

namespace {

const nvcos::COSType* findLoadedType(const std::string& name)
{
    if (const nvcos::COSType* builtIn = findBuiltInType(name)) {
        return builtIn;
    }
    return ClassRegistry::instance().findClass(name) != nullptr ? classType(name) : nullptr;
}

}  // namespace

const nvcos::COSType* typeNamed(const std::string& name)
{
    const nvcos::COSType* type = findLoadedType(name);
    if (type == nullptr && ClassRegistry::instance().attemptToLoadType(name)) {
        type = findLoadedType(name);
    }
    if (type == nullptr) {
        throwClassError("UnknownType", {name});
    }
    return type;
}

}  // namespace reference_host

using namespace reference_host;

nvcos::COSNamespace* nvcos::COSNamespace::getNamespace(internal::Interned fullName)
{
    const Operation operation("COSNamespace::getNamespace", CanFail::ThrowingOrNull);
    return BoundaryCall(operation, fullName).run([&]() -> COSNamespace* {
        return fullName.isNull() ? nullptr : ClassRegistry::instance().findNamespace(fullName.c_str());
    });
}

void nvcos::COSNamespace::addNamespace(COSNamespaceInfo* info)
{
    const char* name = info != nullptr ? info->getName() : nullptr;
    BoundaryCall({"COSNamespace::addNamespace"}, name).run([&] {
        ClassRegistry::instance().insertNamespace(name, info);
    });
}

const nvcos::COSType* nvcos::COSTypeRepository::getType(internal::Interned name)
{
    const Operation operation("COSTypeRepository::getType", CanFail::ThrowingOrNull);
    return BoundaryCall(operation, name).run([&] {
        if (name.isNull()) {
            throwClassError("UnknownType:null");
        }
        return typeNamed(name.c_str());
    });
}
