#ifndef ZM_HOST_CLASS_DESCRIPTORS_HPP
#define ZM_HOST_CLASS_DESCRIPTORS_HPP

#include "host/ClassObjects.hpp"

#include <cstddef>

/// What a library derives from to describe namespaces, classes, methods and properties, and the host
/// objects that take the descriptions. Descriptors are allocated with the host's allocator (see
/// `HostAllocated`) and belong to the host once they are added; the host deletes them through these
/// bases. The order of the virtual operations is part of the contract.
namespace nvcos {

class COSClass;
class COSNamespace;

/// The inputs and outputs of a method. Made by the host, owned by the method's descriptor.
class ZM_HOST_API COSMethodSignature {
public:
    virtual ~COSMethodSignature();
    COSMethodSignature(const COSMethodSignature&) = delete;
    COSMethodSignature& operator=(const COSMethodSignature&) = delete;

    /// [owned] [throws] A signature without inputs and outputs.
    static COSMethodSignature* createMethodSignature();

    /// [throws] Appends the next input. A null type is a host error.
    virtual void addInput(const COSType* type) = 0;
    /// [throws] As `addInput`, for the outputs.
    virtual void addOutput(const COSType* type) = 0;

    /// [throws] The last `count` inputs may be left out. More than there are is a host error.
    virtual void setNumberOfOptionalInputs(int count) = 0;

protected:
    COSMethodSignature();
};

/// Describes one method. Base of the library's method descriptors.
class ZM_HOST_API COSMethodInfo {
public:
    /// [throws] [null ok] The name that scripts use; null makes a descriptor without a name.
    explicit COSMethodInfo(const char* name);
    COSMethodInfo(const COSMethodInfo&) = delete;
    COSMethodInfo& operator=(const COSMethodInfo&) = delete;
    virtual ~COSMethodInfo();

    /// [borrowed] [no-throw] The name, null-terminated; null when there is none.
    virtual const char* getName() const noexcept;

    /// [throws] Runs the method. Inputs come converted to the signature's types; `inputCount` says how
    /// many the caller passed. On entry `outputCount` is the number that the caller asked for and
    /// `outputs` has room for those the signature declares; on return it is the number of results.
    /// The host takes an output that was written even where the count does not cover it.
    virtual void invoke(const COSClient* client, int& outputCount, COSValue* outputs, int inputCount,
                        const COSValue* inputs) const = 0;

    /// [borrowed] [no-throw] The signature; null while there is none.
    virtual const COSMethodSignature* getSignature() const noexcept = 0;

private:
    internal::Interned m_name;
};

/// How scripts may use a property.
enum class COSPropAccess : int {
    ReadWrite = 2,
    ScriptReadOnly = 5  ///< scripts read it; an assignment from host code still reaches `setValue`
};

/// Describes one property. Base of the library's property descriptors.
class ZM_HOST_API COSPropInfo {
public:
    COSPropInfo(const COSPropInfo&) = delete;
    COSPropInfo& operator=(const COSPropInfo&) = delete;
    virtual ~COSPropInfo();

    /// [borrowed] [no-throw] The name, null-terminated.
    virtual const char* getName() const noexcept = 0;
    /// [borrowed] [throws] The type of the value.
    virtual const COSType* getType() const = 0;
    /// [no-throw] A `COSPropAccess`.
    virtual int getAccess() const noexcept = 0;
    /// [no-throw] The version that the property came with.
    virtual double getVersion() const noexcept = 0;

    /// [throws] The value for one instance. The host calls `releaseValue` with it exactly once, when
    /// it has read it.
    virtual COSValue getValue(COSInterface* instance) = 0;
    /// [throws] Assigns a value, which is borrowed for the call.
    virtual void setValue(COSInterface* instance, COSValue value) = 0;
    /// [consumed: value] [throws] Takes back what `getValue` returned.
    virtual void releaseValue(COSInterface* instance, COSValue value) = 0;

protected:
    COSPropInfo();
};

/// Describes one class. The host asks for the members in `initializeClass` when the class is first
/// used, and for native data whenever it makes or ends an instance.
class ZM_HOST_API COSClassInfo {
public:
    COSClassInfo(const COSClassInfo&) = delete;
    COSClassInfo& operator=(const COSClassInfo&) = delete;
    virtual ~COSClassInfo();

    /// [borrowed] [no-throw] The name within the namespace.
    virtual const char* getClassName() const noexcept = 0;
    /// [throws] Adds properties and methods.
    virtual void initializeClass(COSClass* cosClass, const COSClient* client) = 0;
    /// [throws] The native data of a new instance; the class's constructor method runs afterwards.
    virtual void* allocateInstance(COSInterface* instance) = 0;
    /// [consumed: data] [no-throw] Ends the native data of an instance.
    virtual void deallocateInstance(COSInterface* instance, void* data) = 0;

    // Operations that most classes leave at their defaults: nothing is loaded, saved or copied
    // specially, an instance has no children, any class may contain any other, no name is reserved.
    /// [throws] Whether it has loaded the stored value.
    virtual bool customLoad(COSInterface* instance, const nvArray* stored);
    /// [owned] [throws] The value to store; null for none.
    virtual nvArray* customSave(const COSInterface* instance) const;
    /// [throws] Called when an instance was loaded.
    virtual void instanceLoaded(COSInterface* instance);
    /// [owned] [throws] The native data of a copy; null for none.
    virtual void* copyData(const COSInterface* instance, const void* data) const;
    /// [throws] The number of children.
    virtual std::size_t getChildrenOfInstance(const COSInterface* instance) const;
    /// [throws] Whether instances of another class may contain instances of this one.
    virtual bool canOtherClassContainThisClass(const COSClass* other) const;
    /// [throws] Whether instances of this class may contain instances of another.
    virtual bool canThisClassContainOtherClass(const COSClass* other) const;
    /// [throws] Whether no property may have that name.
    virtual bool isPropertyNameReservedByThisClass(const char* name) const;

protected:
    COSClassInfo();
};

/// A class as the host holds it.
class ZM_HOST_API COSClass {
public:
    COSClass(const COSClass&) = delete;
    COSClass& operator=(const COSClass&) = delete;

    /// [consumed: property] [throws] A second property of the same name is a host error.
    virtual void addProperty(COSPropInfo* property) = 0;

    /// [consumed: method] [throws] A second method of the same name, and one without a name or
    /// signature, is a host error. The method named like the class is its constructor.
    virtual void addMethod(COSMethodInfo* method) = 0;

    /// [borrowed] [no-throw] As `omGetInstanceData`.
    virtual void* getInstanceData(const COSInterface* instance) const noexcept = 0;

protected:
    COSClass();
    virtual ~COSClass();
};

/// Describes one namespace. The host calls `defineContents` once, when it first needs the contents.
class ZM_HOST_API COSNamespaceInfo {
public:
    COSNamespaceInfo(const COSNamespaceInfo&) = delete;
    COSNamespaceInfo& operator=(const COSNamespaceInfo&) = delete;
    virtual ~COSNamespaceInfo();

    /// [borrowed] [no-throw] The name within the enclosing namespace.
    virtual const char* getName() const noexcept = 0;
    /// [throws] Adds classes and inner namespaces.
    virtual void defineContents(COSNamespace* cosNamespace) = 0;

    // Called for a name that the defined contents lack; the defaults load nothing.
    /// [throws] Whether it has made a type of that name known.
    virtual bool attemptToLoadType(COSNamespace* cosNamespace, internal::Interned name);
    /// [throws] Whether it has added a class of that name.
    virtual bool attemptToLoadClass(COSNamespace* cosNamespace, internal::Interned name);
    /// [throws] Whether it has made a function of that name known.
    virtual bool attemptToLoadFunction(COSNamespace* cosNamespace, internal::Interned name);
    /// [throws] Whether it has added an inner namespace of that name.
    virtual bool attemptToLoadInnerNamespace(COSNamespace* cosNamespace, internal::Interned name);
    /// [throws] Called when a name is defined a second time; the default throws a host error that
    /// names it.
    virtual void throwErrorForDefinitionOfExistingName(COSNamespace* cosNamespace, internal::Interned name);

protected:
    COSNamespaceInfo();
};

/// A namespace as the host holds it.
class ZM_HOST_API COSNamespace {
public:
    COSNamespace(const COSNamespace&) = delete;
    COSNamespace& operator=(const COSNamespace&) = delete;

    /// [borrowed] [throws] The namespace of that full name ("Zelmar.HMI"), or null. The enclosing
    /// namespaces are defined first; the namespace itself is not.
    static COSNamespace* getNamespace(internal::Interned fullName);

    /// [consumed: info] [throws] Adds a top-level namespace. One that exists is a host error.
    static void addNamespace(COSNamespaceInfo* info);

    /// [consumed: info] [throws] Adds a namespace inside this one. One that exists is a host error.
    virtual void addInnerNamespace(COSNamespaceInfo* info) = 0;

    /// [consumed: info] [throws] Adds a class. A namespace that is not defined yet is defined first; a
    /// name that exists is a host error. The two integers are the host's; the library passes 0 and 2.
    virtual void addClass(COSClassInfo* info, int first, int second) = 0;

protected:
    COSNamespace();
    virtual ~COSNamespace();
};

}  // namespace nvcos

#endif
