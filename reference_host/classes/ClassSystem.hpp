#ifndef ZM_REFERENCE_HOST_CLASSES_CLASS_SYSTEM_HPP
#define ZM_REFERENCE_HOST_CLASSES_CLASS_SYSTEM_HPP

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace reference_host {

/// The tree of namespaces and classes, seen from the host's own side: what there is, what host code
/// puts into it, and how it is emptied. Libraries see the same tree through `nvcos::COSNamespace`.
///
/// A namespace is defined when its contents are first needed: a class, a type or an inner namespace is
/// looked up in it, it is enumerated, or something is added to it from outside. Defining it adds the
/// classes that host code contributed and then calls the info's `defineContents`, once. When that
/// throws, what it added is taken out again (but for a class that has instances by then), the
/// exception reaches whoever needed the contents, and the next need tries again.
///
/// Names are full names, "Zelmar.HMI" or "Zelmar.HMI.SignalSpecification", unless said otherwise.
/// Main thread only.
class ZM_REFHOST_API ClassSystem {
public:
    ClassSystem() = delete;

    using ClassInfoFactory = std::function<std::unique_ptr<nvcos::COSClassInfo>()>;

    /// The top-level namespaces, in the order in which they were added.
    static std::vector<std::string> namespaces();

    /// The simple names of what a namespace holds, in the order in which it was added. Define the
    /// namespace; one that does not exist is a host error.
    static std::vector<std::string> innerNamespaces(const std::string& namespaceName);
    static std::vector<std::string> classes(const std::string& namespaceName);

    /// Whether there is such a namespace or class; the enclosing namespaces are defined.
    static bool hasNamespace(const std::string& namespaceName);
    static bool hasClass(const std::string& className);

    /// Creates an empty namespace of the host's own, and the ones around it, where they do not exist.
    static void createNamespace(const std::string& namespaceName);

    /// Has a class of host code stand in a namespace, whoever creates that and whenever: it is added
    /// when the namespace is defined, at once when that has happened. Never creates the namespace.
    static void contributeClass(const std::string& namespaceName, ClassInfoFactory makeInfo);

    /// Creates the namespaces of all contributed classes. For a host that wants them without a library;
    /// a library behaves differently when it finds its namespaces already there.
    static void createContributedNamespaces();

    /// Back to the start: no namespaces, only the host's built-in classes contributed. Deletes every
    /// descriptor, so a library that registered some can be unloaded afterwards and not before. A host
    /// error that names them while instances live.
    static void reset();
};

}  // namespace reference_host

#endif
