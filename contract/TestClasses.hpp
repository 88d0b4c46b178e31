#ifndef ZM_CONTRACT_TEST_CLASSES_HPP
#define ZM_CONTRACT_TEST_CLASSES_HPP

#include "host/ClassDescriptors.hpp"
#include "host/Memory.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Descriptors as a library writes them, each doing what the test tells it to. They know host/ only.
namespace test_classes {

/// What one call of a method sees.
struct Call {
    int& outputCount;
    nvcos::COSValue* outputs;
    int inputCount;
    const nvcos::COSValue* inputs;
};

using MethodBody = std::function<void(Call&)>;

/// A method by its declaration.
struct Method {
    std::string name;
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    int optionalInputs = 0;
    MethodBody body;
};

const nvcos::COSType* typeNamed(const std::string& name);

class MethodInfo final : public nvcos::COSMethodInfo, public HostAllocated {
public:
    /// A method without a name or signature, which the host refuses.
    explicit MethodInfo(const char* name) : COSMethodInfo(name) {}
    explicit MethodInfo(const Method& method);
    ~MethodInfo() override;

    void invoke(const nvcos::COSClient* client, int& outputCount, nvcos::COSValue* outputs, int inputCount,
                const nvcos::COSValue* inputs) const override;
    const nvcos::COSMethodSignature* getSignature() const noexcept override { return m_signature.get(); }

private:
    std::unique_ptr<nvcos::COSMethodSignature> m_signature;
    MethodBody m_body;
};

/// What a property does, and how often it was asked.
struct PropertyScript {
    std::function<nvcos::COSValue(nvcos::COSInterface*)> getValue;
    std::function<void(nvcos::COSInterface*, const nvcos::COSValue&)> setValue;
    std::function<void(const nvcos::COSValue&)> releaseValue;
    int released = 0;
};

class PropertyInfo final : public nvcos::COSPropInfo, public HostAllocated {
public:
    PropertyInfo(const char* name, const nvcos::COSType* type, PropertyScript* script = nullptr,
                 int access = static_cast<int>(nvcos::COSPropAccess::ReadWrite))
        : m_name(name), m_type(type), m_script(script), m_access(access)
    {
    }

    const char* getName() const noexcept override { return m_name; }
    const nvcos::COSType* getType() const override { return m_type; }
    int getAccess() const noexcept override { return m_access; }
    double getVersion() const noexcept override { return 1.0; }
    nvcos::COSValue getValue(nvcos::COSInterface* instance) override { return m_script->getValue(instance); }
    void setValue(nvcos::COSInterface* instance, nvcos::COSValue value) override
    {
        m_script->setValue(instance, value);
    }
    void releaseValue(nvcos::COSInterface* /*instance*/, nvcos::COSValue value) override
    {
        ++m_script->released;
        if (m_script->releaseValue) {
            m_script->releaseValue(value);
        }
    }

private:
    const char* m_name;
    const nvcos::COSType* m_type;
    PropertyScript* m_script;
    int m_access;
};

/// What a class does, and how often it was asked. Outlives the class.
struct ClassScript {
    std::function<void(nvcos::COSClass&)> initialize;
    std::function<void*()> allocate;  ///< nothing: the address of the script itself
    int initialized = 0;
    int allocated = 0;
    int deallocated = 0;
    void* lastData = nullptr;  ///< what the last instance to end had
    std::function<void(nvcos::COSInterface*)> atDeallocation;
};

class ClassInfo final : public nvcos::COSClassInfo, public HostAllocated {
public:
    ClassInfo(const char* name, ClassScript& script) : m_name(name), m_script(script) {}

    const char* getClassName() const noexcept override { return m_name; }
    void initializeClass(nvcos::COSClass* cosClass, const nvcos::COSClient* client) override;
    void* allocateInstance(nvcos::COSInterface* instance) override;
    void deallocateInstance(nvcos::COSInterface* instance, void* data) override;

private:
    const char* m_name;
    ClassScript& m_script;
};

/// What a namespace does, and how often it was asked. Outlives the namespace.
struct NamespaceScript {
    std::function<void(nvcos::COSNamespace&)> define;
    std::function<bool(nvcos::COSNamespace&, const std::string& what, const std::string& name)> load;
    std::function<void(const std::string& name)> refuse;  ///< nothing: the host's own error
    int defined = 0;
};

class NamespaceInfo final : public nvcos::COSNamespaceInfo, public HostAllocated {
public:
    NamespaceInfo(const char* name, NamespaceScript& script) : m_name(name), m_script(script) {}

    const char* getName() const noexcept override { return m_name; }
    void defineContents(nvcos::COSNamespace* cosNamespace) override;
    bool attemptToLoadType(nvcos::COSNamespace* home, nvcos::internal::Interned name) override
    {
        return load(home, "type", name);
    }
    bool attemptToLoadClass(nvcos::COSNamespace* home, nvcos::internal::Interned name) override
    {
        return load(home, "class", name);
    }
    bool attemptToLoadFunction(nvcos::COSNamespace* home, nvcos::internal::Interned name) override
    {
        return load(home, "function", name);
    }
    bool attemptToLoadInnerNamespace(nvcos::COSNamespace* home, nvcos::internal::Interned name) override
    {
        return load(home, "namespace", name);
    }
    void throwErrorForDefinitionOfExistingName(nvcos::COSNamespace* home,
                                               nvcos::internal::Interned name) override;

private:
    bool load(nvcos::COSNamespace* home, const std::string& what, nvcos::internal::Interned name);

    const char* m_name;
    NamespaceScript& m_script;
};

// Adders that hand a new descriptor over, and free it when the host refuses it.
void addNamespace(const char* name, NamespaceScript& script);
void addInner(nvcos::COSNamespace& home, const char* name, NamespaceScript& script);
void addClass(nvcos::COSNamespace& home, const char* name, ClassScript& script);
void addMethod(nvcos::COSClass& cosClass, const Method& method);
void addProperty(nvcos::COSClass& cosClass, const char* name, const char* type,
                 PropertyScript* script = nullptr,
                 nvcos::COSPropAccess access = nvcos::COSPropAccess::ReadWrite);

nvcos::COSNamespace* findNamespace(const char* fullName);

}  // namespace test_classes

#endif
