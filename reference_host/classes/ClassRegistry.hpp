#ifndef ZM_REFERENCE_HOST_CLASSES_CLASS_REGISTRY_HPP
#define ZM_REFERENCE_HOST_CLASSES_CLASS_REGISTRY_HPP

#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/Namespace.hpp"

#include <memory>
#include <string>
#include <vector>

namespace reference_host {

/// A full name in two: "Zelmar.HMI.X" is ("Zelmar.HMI", "X"); a name without a dot has an empty parent.
struct SplitName {
    explicit SplitName(const std::string& fullName);

    std::string parent;
    std::string simple;
};

/// The one tree of the process, and what host code contributes to it.
class ClassRegistry {
public:
    /// Never destroyed: what libraries registered must not be touched while the process ends.
    static ClassRegistry& instance();

    /// The namespace, or null. Defines those around it.
    Namespace* findNamespace(const std::string& fullName);
    /// The class, or null. Defines the namespaces around it.
    RegisteredClass* findClass(const std::string& fullName);
    /// As above; a host error when there is none.
    RegisteredClass& classNamed(const std::string& fullName);

    /// Asks the info of the type's namespace to load it.
    bool attemptToLoadType(const std::string& fullName);

    Namespace& insertNamespace(const char* name, nvcos::COSNamespaceInfo* info);
    Namespace& createNamespace(const std::string& fullName);
    const std::vector<std::unique_ptr<Namespace>>& topLevel() const noexcept { return m_topLevel; }

    void contribute(const std::string& namespaceName, ClassSystem::ClassInfoFactory makeInfo);
    void addContributionsTo(Namespace& home);
    void createContributedNamespaces();

    void reset();

private:
    ClassRegistry();

    struct Contribution {
        std::string namespaceName;
        ClassSystem::ClassInfoFactory makeInfo;
    };

    static void addContribution(Namespace& home, const Contribution& contribution);
    Namespace* findTopLevel(const std::string& simpleName) const;
    Namespace* knownNamespace(const std::string& fullName) const;
    void contributeBuiltInClasses();

    std::vector<std::unique_ptr<Namespace>> m_topLevel;
    std::vector<Contribution> m_contributions;
};

}  // namespace reference_host

#endif
