#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace reference_host {

class Namespace;
class RegisteredClass;

/// The tree of namespaces and classes of the process, for host code: it lists the tree, adds to it and
/// empties it. Libraries use the same tree through `nvcos::COSNamespace`.
///
/// A namespace is defined when its contents are first needed: when a class, a type or an inner namespace is
/// looked up in it, when it is enumerated, or when something is added to it from outside. Defining it adds
/// the classes that host code contributed and then calls the info's `defineContents`, once. If that throws,
/// its additions are removed again (except classes that have instances by then), the exception reaches the
/// code that needed the contents, and the next use tries again.
///
/// Names are full names, "Zelmar.HMI" or "Zelmar.HMI.SignalSpecification", unless said otherwise.
/// Main thread only.
class ZM_REFHOST_API ClassSystem {
public:
    ClassSystem() = delete;

    using ClassInfoFactory = std::function<std::unique_ptr<nvcos::COSClassInfo>()>;

    /// The top-level namespaces, in the order in which they were added.
    static std::vector<std::string> namespaces();

    /// The simple names of the members of a namespace, in the order of their addition. Define the namespace;
    /// an unknown name is a host error.
    static std::vector<std::string> innerNamespaces(const std::string& namespaceName);
    static std::vector<std::string> classes(const std::string& namespaceName);

    /// Whether there is such a namespace or class; the enclosing namespaces are defined.
    static bool hasNamespace(const std::string& namespaceName);
    static bool hasClass(const std::string& className);

    /// Creates an empty namespace of the host's own, and the ones around it, where they do not exist.
    static void createNamespace(const std::string& namespaceName);

    /// Adds a class of host code to a namespace when that is defined, or at once if it is defined already.
    /// Never creates the namespace.
    static void contributeClass(const std::string& namespaceName, ClassInfoFactory makeInfo);

    /// Creates the namespaces of all contributed classes. For a host that wants them without a library;
    /// a library behaves differently when it finds its namespaces already there.
    static void createContributedNamespaces();

    /// Back to the start: no namespaces, only the host's built-in classes contributed. Deletes every
    /// descriptor, so a library that registered some can be unloaded afterwards and not before. A host
    /// error that names them while instances live.
    static void reset();

    // ---- for the sources of classes/ ----

    /// As `contributeClass`, for a class that `reset` keeps. Always true; for the initialiser of a constant.
    static bool addBuiltIn(const std::string& namespaceName, ClassInfoFactory makeInfo);

    /// The namespace or class, or null. Define the enclosing namespaces.
    static Namespace* findNamespace(const std::string& fullName);
    static RegisteredClass* findClass(const std::string& fullName);

    /// The class; a host error if there is none.
    static RegisteredClass& classNamed(const std::string& fullName);

    /// The type of that name, built-in or of a registered class; a host error if there is none.
    static const nvcos::COSType* typeNamed(const std::string& name);
};

}  // namespace reference_host
