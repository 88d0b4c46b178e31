#ifndef ZM_REFERENCE_HOST_CLASSES_NAMESPACE_HPP
#define ZM_REFERENCE_HOST_CLASSES_NAMESPACE_HPP

#include "host/ClassDescriptors.hpp"
#include "reference_host/classes/RegisteredClass.hpp"

#include <memory>
#include <string>
#include <vector>

namespace reference_host {

/// Throws unless the name is one that a namespace or class can have: given, and without a dot.
void checkSimpleName(const char* kind, const char* name);

/// A namespace in the tree. How and when it is defined: see `ClassSystem`. While it is being defined it
/// can be searched and holds what was added so far.
class Namespace final : public nvcos::COSNamespace {
public:
    explicit Namespace(std::string fullName);
    ~Namespace() override;

    /// Becomes the owner of the description; a namespace of the host's own has none.
    void adopt(nvcos::COSNamespaceInfo* info) noexcept { m_info = registered(info); }

    void addInnerNamespace(nvcos::COSNamespaceInfo* info) override;
    void addClass(nvcos::COSClassInfo* info, int first, int second) override;

    /// The same for host code. A namespace of the host's own has no info.
    Namespace& insertNamespace(const char* name, nvcos::COSNamespaceInfo* info);
    void insertClass(nvcos::COSClassInfo* info, ClassOrigin origin);

    void define();
    bool isDefined() const noexcept { return m_state != State::Undefined; }

    // What is there by now.
    Namespace* knownInner(const std::string& simpleName) const;
    RegisteredClass* knownClass(const std::string& simpleName) const;

    // These define the namespace; the searches also give its info a chance to load what is missing.
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

    void checkNewName(const char* kind, const char* name);
    bool hasInstances() const;
    void removeContents();

    std::string m_fullName;
    Registered<nvcos::COSNamespaceInfo> m_info;
    State m_state = State::Undefined;
    std::vector<std::unique_ptr<Namespace>> m_inner;
    std::vector<std::unique_ptr<RegisteredClass>> m_classes;
};

}  // namespace reference_host

#endif
