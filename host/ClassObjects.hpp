#ifndef ZM_HOST_CLASS_OBJECTS_HPP
#define ZM_HOST_CLASS_OBJECTS_HPP

#include "host/Array.hpp"

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

/// The host's class object system: namespaces, classes, their instances and the values that cross in
/// method calls. A library describes a class by a `COSClassInfo` (host/ClassDescriptors.hpp), adds it
/// to a namespace, and is asked for the class's properties and methods when it is first used.
namespace nvcos {

/// Who makes a call. Opaque; passed through.
struct COSClient;

/// A type that the host knows by name. Opaque; lives as long as the process.
struct COSType;

namespace internal {

/// A name that the host keeps once for the process: equal names have equal addresses.
class Interned {
public:
    constexpr Interned() noexcept = default;
    constexpr explicit Interned(const char* text) noexcept : m_text(text) {}

    /// Null-terminated UTF-8; null for the null value.
    constexpr const char* c_str() const noexcept { return m_text; }
    constexpr bool isNull() const noexcept { return m_text == nullptr; }
    friend constexpr bool operator==(Interned, Interned) noexcept = default;

private:
    const char* m_text = nullptr;
};

/// [throws] [null ok] Interns a name; null gives the null value.
ZM_HOST_API Interned makeInterned(const char* name);

}  // namespace internal

/// One instance of a host class, counted. Held through `COSInterfacePtr`.
class ZM_HOST_API COSInterface {
public:
    COSInterface(const COSInterface&) = delete;
    COSInterface& operator=(const COSInterface&) = delete;
    /// [no-throw] One more holder.
    virtual void addReference() noexcept = 0;
    /// [no-throw] One holder less; the last one ends the instance.
    virtual void releaseReference() noexcept = 0;

protected:
    COSInterface();
    virtual ~COSInterface();
};

/// A counted reference to an instance, or none.
class COSInterfacePtr {
public:
    COSInterfacePtr() noexcept = default;
    /// Takes a reference of its own.
    explicit COSInterfacePtr(COSInterface* instance) noexcept : m_instance(instance)
    {
        if (m_instance != nullptr) {
            m_instance->addReference();
        }
    }
    COSInterfacePtr(const COSInterfacePtr& other) noexcept : COSInterfacePtr(other.m_instance) {}
    COSInterfacePtr(COSInterfacePtr&& other) noexcept : m_instance(std::exchange(other.m_instance, nullptr))
    {
    }
    COSInterfacePtr& operator=(COSInterfacePtr other) noexcept
    {
        std::swap(m_instance, other.m_instance);
        return *this;
    }
    ~COSInterfacePtr()
    {
        if (m_instance != nullptr) {
            m_instance->releaseReference();
        }
    }

    COSInterface* get() const noexcept { return m_instance; }
    explicit operator bool() const noexcept { return m_instance != nullptr; }

private:
    COSInterface* m_instance = nullptr;
};

/// A value as method bodies and property descriptors see it, already converted to the declared type:
///
///   "unicodeString"   std::u16string        "double scalar"   double
///   "asciiString"     std::string           "logical scalar"  bool
///   "uint32 scalar"   std::uint32_t         "any", classes    nvArray*
///   "int32 scalar"    std::int32_t          no value          std::monostate
///
/// An `nvArray*` among the inputs, or given to `setValue`, is borrowed for the call. One that a method
/// body stores in an output belongs to the host from then on; one returned by `getValue` stays with
/// the descriptor and ends in its `releaseValue`. A null `nvArray*` reads as an empty value.
using COSValue = std::variant<std::monostate, std::u16string, std::string, std::uint32_t, std::int32_t,
                              double, bool, nvArray*>;

/// The types that signatures and properties refer to.
class ZM_HOST_API COSTypeRepository {
public:
    COSTypeRepository() = delete;
    /// [borrowed] [throws] The type of that name: one of the names above or the full name of a class.
    /// A name that nobody has registered is a host error that says so.
    static const COSType* getType(internal::Interned name);
};

}  // namespace nvcos

/// [throws] The instance at `index` (0-based) of a class-object array. A value of another class, or an
/// index past the end, is a host error.
ZM_HOST_API nvcos::COSInterfacePtr omGetArrayElement(const nvArray* value, std::size_t index);

/// [owned] [throws] A 1-by-1 value that refers to the instance.
ZM_HOST_API nvArray* omCreateNVCOSScalar(const nvcos::COSInterfacePtr& instance);

/// [borrowed] [no-throw] [null ok] What the class's `allocateInstance` returned for this instance;
/// null for none, and for an instance of a class without native data.
ZM_HOST_API void* omGetInstanceData(const nvcos::COSInterface* instance) noexcept;

#endif
