#ifndef ZM_REFERENCE_HOST_CLASSES_CLASS_REGISTRY_HPP
#define ZM_REFERENCE_HOST_CLASSES_CLASS_REGISTRY_HPP

#include "reference_host/classes/Namespace.hpp"

#include <memory>
#include <string>
#include <vector>

namespace reference_host {

/// The tree of namespaces and classes of the process, and the classes that host code contributes to it.
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

    /// Contributes a class of the host's own, which `reset` keeps. REQUIRES: called at load.
    void addBuiltIn(const std::string& namespaceName, ClassInfoFactory makeInfo);
    void contribute(const std::string& namespaceName, ClassInfoFactory makeInfo);
    void createContributedNamespaces();

    void reset();

private:
    Namespace* findTopLevel(const std::string& simpleName) const;
    Namespace* knownNamespace(const std::string& fullName) const;

    Contributions m_builtIn;
    Contributions m_contributions;
    std::vector<std::unique_ptr<Namespace>> m_topLevel;
};

/// The type of that name, built-in or of a registered class; a host error if there is none.
const nvcos::COSType* typeNamed(const std::string& name);

}  // namespace reference_host

#endif
