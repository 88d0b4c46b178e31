#include "reference_host/classes/ClassSystem.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/Namespace.hpp"
#include "reference_host/classes/Types.hpp"

#include <boost/algorithm/string/join.hpp>

#include <algorithm>
#include <utility>

namespace reference_host {

namespace {

struct Tree {
    Contributions builtIn;
    Contributions contributions;
    std::vector<std::unique_ptr<Namespace>> topLevel;
};

/// Never destroyed: descriptors of libraries must not be touched while the process ends.
Tree& tree()
{
    static Tree& instance = *new Tree;
    return instance;
}

Namespace* findTopLevel(const std::string& simpleName)
{
    const auto& all = tree().topLevel;
    const auto found =
        std::ranges::find(all, simpleName, [](const auto& entry) { return entry->fullName(); });
    return found != all.end() ? found->get() : nullptr;
}

/// Finds a namespace among those that were added so far; defines nothing.
Namespace* knownNamespace(const std::string& fullName)
{
    const SplitName name(fullName);
    if (name.parent.empty()) {
        return findTopLevel(name.simple);
    }
    const Namespace* outer = knownNamespace(name.parent);
    return outer != nullptr ? outer->knownInner(name.simple) : nullptr;
}

Namespace& namespaceNamed(const std::string& name)
{
    Namespace* found = ClassSystem::findNamespace(name);
    if (found == nullptr) {
        throwClassError("UnknownNamespace", {name});
    }
    return *found;
}

Namespace& insertTopLevel(const char* name, nvcos::COSNamespaceInfo* info)
{
    checkSimpleName("namespace", name);
    if (findTopLevel(name) != nullptr) {
        throwClassError("DuplicateName:top", {name});
    }
    tree().topLevel.push_back(std::make_unique<Namespace>(name, tree().contributions));
    tree().topLevel.back()->adopt(info);
    return *tree().topLevel.back();
}

Namespace& findOrCreate(const std::string& fullName)
{
    if (Namespace* existing = ClassSystem::findNamespace(fullName)) {
        return *existing;
    }
    const SplitName name(fullName);
    return name.parent.empty() ? insertTopLevel(name.simple.c_str(), nullptr)
                               : findOrCreate(name.parent).insertNamespace(name.simple.c_str(), nullptr);
}

const nvcos::COSType* findLoadedType(const std::string& name)
{
    const nvcos::COSType* builtIn = findBuiltInType(name);
    return builtIn == nullptr && ClassSystem::findClass(name) != nullptr ? classType(name) : builtIn;
}

/// Asks the info of the type's namespace to load it.
bool attemptToLoadType(const std::string& fullName)
{
    const SplitName name(fullName);
    Namespace* home = ClassSystem::findNamespace(name.parent);
    return home != nullptr && home->info() != nullptr &&
           home->info()->attemptToLoadType(home, intern(name.simple.c_str()));
}

template <class Members>
std::vector<std::string> simpleNames(const Members& members)
{
    std::vector<std::string> names;
    names.reserve(members.size());
    for (const auto& member : members) {
        names.push_back(member->simpleName());
    }
    return names;
}

}  // namespace

std::vector<std::string> ClassSystem::namespaces()
{
    return simpleNames(tree().topLevel);
}

std::vector<std::string> ClassSystem::innerNamespaces(const std::string& namespaceName)
{
    return simpleNames(namespaceNamed(namespaceName).innerNamespaces());
}

std::vector<std::string> ClassSystem::classes(const std::string& namespaceName)
{
    return simpleNames(namespaceNamed(namespaceName).classes());
}

bool ClassSystem::hasNamespace(const std::string& namespaceName)
{
    return findNamespace(namespaceName) != nullptr;
}

bool ClassSystem::hasClass(const std::string& className)
{
    return findClass(className) != nullptr;
}

void ClassSystem::createNamespace(const std::string& namespaceName)
{
    findOrCreate(namespaceName);
}

bool ClassSystem::addBuiltIn(const std::string& namespaceName, ClassInfoFactory makeInfo)
{
    tree().builtIn.push_back({namespaceName, makeInfo});
    tree().contributions.push_back({namespaceName, std::move(makeInfo)});
    return true;
}

void ClassSystem::contributeClass(const std::string& namespaceName, ClassInfoFactory makeInfo)
{
    Contribution contribution{namespaceName, std::move(makeInfo)};
    Namespace* home = knownNamespace(namespaceName);
    if (home != nullptr && home->isDefined()) {
        home->insertContributed(contribution);
    }
    tree().contributions.push_back(std::move(contribution));
}

void ClassSystem::createContributedNamespaces()
{
    for (std::size_t i = 0; i < tree().contributions.size(); ++i) {
        // A copy of the name: defining a namespace may contribute more classes.
        findOrCreate(std::string(tree().contributions[i].namespaceName));
    }
}

void ClassSystem::reset()
{
    std::vector<std::string> alive;
    for (const auto& top : tree().topLevel) {
        top->listInstances(alive);
    }
    if (!alive.empty()) {
        throwClassError("InstancesLive", {boost::algorithm::join(alive, "; ")});
    }
    tree().topLevel.clear();
    tree().contributions = tree().builtIn;
}

Namespace* ClassSystem::findNamespace(const std::string& fullName)
{
    const SplitName name(fullName);
    if (name.parent.empty()) {
        return findTopLevel(name.simple);
    }
    Namespace* outer = findNamespace(name.parent);
    return outer != nullptr ? outer->findInner(name.simple) : nullptr;
}

RegisteredClass* ClassSystem::findClass(const std::string& fullName)
{
    const SplitName name(fullName);
    Namespace* home = findNamespace(name.parent);
    return home != nullptr ? home->findClass(name.simple) : nullptr;
}

RegisteredClass& ClassSystem::classNamed(const std::string& fullName)
{
    RegisteredClass* cosClass = findClass(fullName);
    if (cosClass == nullptr) {
        throwClassError("UnknownClass", {fullName});
    }
    return *cosClass;
}

const nvcos::COSType* ClassSystem::typeNamed(const std::string& name)
{
    const nvcos::COSType* type = findLoadedType(name);
    if (type == nullptr && attemptToLoadType(name)) {
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
        return fullName.isNull() ? nullptr : ClassSystem::findNamespace(fullName.c_str());
    });
}

void nvcos::COSNamespace::addNamespace(COSNamespaceInfo* info)
{
    const char* name = info != nullptr ? info->getName() : nullptr;
    BoundaryCall({"COSNamespace::addNamespace"}, name).run([&] { insertTopLevel(name, info); });
}

const nvcos::COSType* nvcos::COSTypeRepository::getType(internal::Interned name)
{
    const Operation operation("COSTypeRepository::getType", CanFail::ThrowingOrNull);
    return BoundaryCall(operation, name).run([&] {
        if (name.isNull()) {
            throwClassError("UnknownType:null");
        }
        return ClassSystem::typeNamed(name.c_str());
    });
}
