#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/classes/RegisteredClass.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace reference_host {

/// Makes the description of a class of host code.
using ClassInfoFactory = std::function<std::unique_ptr<nvcos::COSClassInfo>()>;

/// A class of host code that is added to a namespace when that is defined.
struct Contribution {
    std::string namespaceName;
    ClassInfoFactory makeInfo;
};
using Contributions = std::vector<Contribution>;

/// A full name in two: "Zelmar.HMI.X" is ("Zelmar.HMI", "X"); a name without a dot has an empty parent.
struct SplitName {
    explicit SplitName(const std::string& fullName);

    std::string parent;
    std::string simple;
};

/// Throws unless a namespace or class can have the name: not empty, and without a dot.
void checkSimpleName(const char* kind, const char* name);

/// A namespace in the tree. `ClassSystem` says how and when it is defined. While it is being defined it can
/// be searched, with the members that were added so far.
class Namespace final : public nvcos::COSNamespace {
public:
    /// REQUIRES: the contributions outlive the namespace.
    Namespace(std::string fullName, const Contributions& contributions);
    ~Namespace() override;

    /// Becomes the owner of the description; a namespace of the host's own has none.
    void adopt(nvcos::COSNamespaceInfo* info) noexcept { m_info = registered(info); }

    void addInnerNamespace(nvcos::COSNamespaceInfo* info) override;
    void addClass(nvcos::COSClassInfo* info, int first, int second) override;

    /// The same for host code. A namespace of the host's own has no info.
    Namespace& insertNamespace(const char* name, nvcos::COSNamespaceInfo* info);
    void insertClass(nvcos::COSClassInfo* info, ClassOrigin origin);
    void insertContributed(const Contribution& contribution);

    void define();
    bool isDefined() const noexcept { return m_state != State::Undefined; }

    // Search the members that were added so far; define nothing.
    Namespace* knownInner(const std::string& simpleName) const;
    RegisteredClass* knownClass(const std::string& simpleName) const;

    // These define the namespace; the searches also ask its info to load a missing member.
    Namespace* findInner(const std::string& simpleName);
    RegisteredClass* findClass(const std::string& simpleName);
    const std::vector<std::unique_ptr<Namespace>>& innerNamespaces();
    const std::vector<std::unique_ptr<RegisteredClass>>& classes();

    const std::string& fullName() const noexcept { return m_fullName; }
    std::string simpleName() const;
    nvcos::COSNamespaceInfo* info() const noexcept { return m_info.get(); }

    /// "Zelmar.HMI.X: 2" for each class here and below that has instances, without defining anything.
    void listInstances(std::vector<std::string>& lines) const;

private:
    enum class State { Undefined, Defining, Defined };

    void addContributions();
    void checkNewName(const char* kind, const char* name);
    bool hasInstances() const;
    void removeContents();

    std::string m_fullName;
    const Contributions& m_contributions;
    Registered<nvcos::COSNamespaceInfo> m_info;
    State m_state = State::Undefined;
    std::vector<std::unique_ptr<Namespace>> m_inner;
    std::vector<std::unique_ptr<RegisteredClass>> m_classes;
};

}  // namespace reference_host

namespace nvcos {
std::string describeArgument(const COSNamespace* cosNamespace);
}
