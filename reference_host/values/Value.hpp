#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/support/CallSite.hpp"
#include "reference_host/values/NumericTypes.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace reference_host {

/// Who destroys a value: its owner, or the container that holds it.
enum class Ownership : std::uint8_t { Dead, Owned, Held };

/// The intended lifetime of a value; see the scope operations of host/Array.hpp.
enum class Scope : std::uint8_t { None, Temporary, CallerOwned, Local, Persistent };

struct Payload;

}  // namespace reference_host

/// One host value: a header, and a payload that shared-data copies share until one of them is written.
///
/// The memory of a header is kept when its value is destroyed, and is not used again for the next few
/// thousand values, so that a stale pointer is recognised as such.
///
/// Host code makes, reads and writes values with the functions of ValueMaking.hpp, ValueReading.hpp and
/// ValueContainers.hpp. Unlike the operations of host/, these are not journaled and no fault strikes them.
/// They check their arguments: a misuse throws a `zmsvException` and is counted by the ledger.
struct nvArray {
    std::shared_ptr<reference_host::Payload> payload;
    std::uint64_t serial = 0;  ///< 1, 2, ... in the order of creation; the name of the value in logs
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

/// Destroys an owned value; null is ignored. A dead, held or lent value is a misuse.
ZM_REFHOST_API void destroyValue(nvArray* value);

struct ValueDeleter {
    void operator()(nvArray* value) const { destroyValue(value); }
};

/// A value owned by host code.
using OwnedValue = std::unique_ptr<nvArray, ValueDeleter>;

/// Lends a value to a call: while the loan lives, the value cannot be destroyed, re-scoped, stored or
/// written. Null is ignored. A dead value is a misuse.
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

/// Throws for a dead value (misuse) and for null (host error).
ZM_REFHOST_API void requireAlive(const nvArray* value);

/// As `requireAlive`; a held or lent value is a misuse too. Such a value may be written, stored, destroyed.
ZM_REFHOST_API void requireOwned(const nvArray* value);

/// "double", "char", "struct" ... or the full name of the objects' class; empty for null.
ZM_REFHOST_API std::string className(const nvArray* value);
ZM_REFHOST_API bool isOfClass(const nvArray* value, const char* name);

/// One readable line: `"Gain"`, `double 2`, `logical true`, `1x3 struct {UUID, BlockPath_}`,
/// `0x0 double`, `1x2 cell`, `1x1 Zelmar.HMI.SignalSpecification`, `null`, `a destroyed value`.
/// Never fails for a destroyed value.
ZM_REFHOST_API std::string describe(const nvArray* value);

/// As logs name it: `#12 double 2`.
ZM_REFHOST_API std::string describeWithSerial(const nvArray* value);

/// Declares to the ledger that the host or the program keeps a value until it ends.
ZM_REFHOST_API void declareMeantToLive(nvArray* value);

/// The number of undeclared owned values that are alive.
ZM_REFHOST_API std::size_t liveValues();

}  // namespace reference_host
