#ifndef ZM_REFERENCE_HOST_VALUES_VALUE_HPP
#define ZM_REFERENCE_HOST_VALUES_VALUE_HPP

#include "host/Array.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/support/CallSite.hpp"

#include <cstdint>
#include <memory>

namespace reference_host {

/// What a value holds. The numeric classes carry the host's own codes.
enum class ValueClass : std::uint8_t {
    Double = static_cast<std::uint8_t>(nvClassID::Double),
    Single,
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Logical,
    Char,
    Struct,
    StructObject,  ///< the older object class: a struct array with a class name
    Cell,
    ClassObject  ///< handles to instances of the class object system
};

/// Who ends a value. That a value is lent to a call is counted apart: see `Loan`.
enum class Ownership : std::uint8_t { Dead, Owned, Held };

/// How long a value is meant to live; see the scope operations of host/Array.hpp.
enum class Scope : std::uint8_t { None, Temporary, CallerOwned, Local, Persistent };

struct Payload;

}  // namespace reference_host

/// One host value. Headers are never given back to the system, so that a value that has ended is
/// recognised for as long as its header has not been used again, which takes thousands of values.
/// The payload is shared between shared-data copies and split when one of them is written.
///
/// Host code makes, reads and writes values with the operations of ValueMaking.hpp, ValueReading.hpp
/// and ValueContainers.hpp, which neither enter the journal nor meet faults. They do check: each
/// throws a `zmsvException` for a misuse, and the ledger counts it.
struct nvArray {
    std::shared_ptr<reference_host::Payload> payload;
    std::uint64_t serial = 0;  ///< 1, 2, ... in the order of creation; what logs call the value
    nvArray* previous = nullptr;
    nvArray* next = nullptr;
    reference_host::CallSite madeBy;
    std::uint32_t loans = 0;  ///< calls that have the value as a borrowed argument
    reference_host::ValueClass valueClass = reference_host::ValueClass::Double;
    reference_host::Ownership ownership = reference_host::Ownership::Dead;
    reference_host::Scope scope = reference_host::Scope::None;
    bool meantToLive = false;  ///< declared to the ledger
};

namespace reference_host {

/// Ends an owned value; null is ignored. A dead, held or lent value is a misuse.
ZM_REFHOST_API void destroyValue(nvArray* value);

struct ValueDeleter {
    void operator()(nvArray* value) const { destroyValue(value); }
};

/// A value that host code owns.
using OwnedValue = std::unique_ptr<nvArray, ValueDeleter>;

/// Lends values to a call for the time of the block: meanwhile they cannot be destroyed, re-scoped,
/// stored or written. Null is ignored. A dead value is a misuse.
class ZM_REFHOST_API Loan {
public:
    explicit Loan(const nvArray* value);
    Loan(Loan&& other) noexcept;
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;
    Loan& operator=(Loan&&) = delete;
    ~Loan();

private:
    nvArray* m_value;
    std::uint64_t m_serial = 0;  // the header may have ended with its container and be in use again
};

/// Sets the scope of an owned value. A held, lent or dead value is a misuse, and so is any scope
/// after the persistent one.
ZM_REFHOST_API void setScope(nvArray* value, Scope scope);

/// Misuse unless the value is alive; a null value is a host error.
ZM_REFHOST_API void requireAlive(const nvArray* value);

/// Misuse unless the value is alive, owned and not lent, so that it may be written, stored or ended.
ZM_REFHOST_API void requireOwned(const nvArray* value);

}  // namespace reference_host

#endif
