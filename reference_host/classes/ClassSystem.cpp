#include "reference_host/classes/ClassSystem.hpp"

#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/ClassRegistry.hpp"

#include <utility>

namespace reference_host {

namespace {

Namespace& namespaceNamed(const std::string& name)
{
    Namespace* found = ClassRegistry::instance().findNamespace(name);
    if (found == nullptr) {
        throwClassError("UnknownNamespace", {name});
    }
    return *found;
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
    return simpleNames(ClassRegistry::instance().topLevel());
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
    return ClassRegistry::instance().findNamespace(namespaceName) != nullptr;
}

bool ClassSystem::hasClass(const std::string& className)
{
    return ClassRegistry::instance().findClass(className) != nullptr;
}

void ClassSystem::createNamespace(const std::string& namespaceName)
{
    ClassRegistry::instance().createNamespace(namespaceName);
}

void ClassSystem::contributeClass(const std::string& namespaceName, ClassInfoFactory makeInfo)
{
    ClassRegistry::instance().contribute(namespaceName, std::move(makeInfo));
}

void ClassSystem::createContributedNamespaces()
{
    ClassRegistry::instance().createContributedNamespaces();
}

void ClassSystem::reset()
{
    ClassRegistry::instance().reset();
}

}  // namespace reference_host
