#include "reference_host/classes/ClassRegistry.hpp"

#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/InterfaceManager.hpp"
#include "reference_host/classes/Interning.hpp"
#include "reference_host/classes/ModelObserversClass.hpp"
#include "reference_host/classes/SignalClientClass.hpp"
#include "reference_host/classes/SignalSpecificationClass.hpp"

#include <algorithm>
#include <utility>

namespace reference_host {

SplitName::SplitName(const std::string& fullName)
{
    const std::size_t dot = fullName.rfind('.');
    if (dot == std::string::npos) {
        simple = fullName;
        return;
    }
    parent = fullName.substr(0, dot);
    simple = fullName.substr(dot + 1);
}

ClassRegistry& ClassRegistry::instance()
{
    static auto* const registry = new ClassRegistry;
    return *registry;
}

ClassRegistry::ClassRegistry()
{
    contributeBuiltInClasses();
}

void ClassRegistry::contributeBuiltInClasses()
{
    for (const auto& makeInfo : {makeSignalSpecificationClass, makeSignalClientClass, makeModelObserversClass,
                                 makeInterfaceManagerClass}) {
        m_contributions.push_back({"Zelmar.HMI", makeInfo});
    }
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
        throwClassError("UnknownClass", "there is no class \"" + fullName + "\"");
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
        throwClassError("DuplicateName", "there is a namespace \"" + std::string(name) + "\" already");
    }
    m_topLevel.push_back(std::make_unique<Namespace>(name));
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

void ClassRegistry::contribute(const std::string& namespaceName, ClassSystem::ClassInfoFactory makeInfo)
{
    Contribution contribution{namespaceName, std::move(makeInfo)};
    Namespace* home = knownNamespace(namespaceName);
    if (home != nullptr && home->isDefined()) {
        addContribution(*home, contribution);
    }
    m_contributions.push_back(std::move(contribution));
}

void ClassRegistry::addContribution(Namespace& home, const Contribution& contribution)
{
    std::unique_ptr<nvcos::COSClassInfo> info = contribution.makeInfo();
    home.insertClass(info.get(), ClassOrigin::HostCode);
    static_cast<void>(info.release());
}

void ClassRegistry::addContributionsTo(Namespace& home)
{
    // What makes a class may contribute others: those are added as they come.
    const std::size_t count = m_contributions.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Contribution contribution = m_contributions[i];
        if (contribution.namespaceName == home.fullName()) {
            addContribution(home, contribution);
        }
    }
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
        std::string text = "the class system cannot be reset while instances live:";
        for (const std::string& line : alive) {
            text += " " + line + ";";
        }
        text.back() = '.';
        throwClassError("InstancesLive", text);
    }
    m_topLevel.clear();
    m_contributions.clear();
    contributeBuiltInClasses();
}

}  // namespace reference_host
