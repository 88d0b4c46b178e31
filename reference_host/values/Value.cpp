#include "reference_host/values/Value.hpp"

#include "reference_host/support/HostErrors.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/values/Payload.hpp"
#include "reference_host/values/ValueDescription.hpp"

#include <utility>

namespace reference_host {

LiveRegistry<nvArray>& liveValueRegistry()
{
    static LiveRegistry<nvArray>& registry = *new LiveRegistry<nvArray>;
    return registry;
}

OwnedValue openValue(ValueClass valueClass, std::shared_ptr<Payload> payload)
{
    nvArray* value = liveValueRegistry().open();
    value->payload = std::move(payload);
    value->madeBy = CallSite::current();
    value->loans = 0;
    value->valueClass = valueClass;
    value->ownership = Ownership::Owned;
    value->scope = Scope::None;
    value->meantToLive = false;
    return OwnedValue(value);
}

namespace {

/// The header first, then the payload: ending what it holds may run code that looks at the value.
void endValue(nvArray* value) noexcept
{
    const std::shared_ptr<Payload> payload = std::move(value->payload);
    value->ownership = Ownership::Dead;
    liveValueRegistry().close(value);
}

/// A container that ends cannot refuse, so what it holds is only reported.
void reportEndWhileLent(const nvArray* value) noexcept
{
    try {
        Ledger::recordMisuse(
            std::string(CallSite::current().operationName()) +
            ": ends a container while a call has the value in it: " + describeWithSerial(value));
    } catch (const std::exception&) {
        Ledger::recordMisuse({});
    }
}

}  // namespace

void HeldDeleter::operator()(nvArray* value) const noexcept
{
    if (value->loans > 0) {
        reportEndWhileLent(value);
    }
    endValue(value);
}

HeldValue hold(OwnedValue value) noexcept
{
    if (value) {
        value->ownership = Ownership::Held;
    }
    return HeldValue(value.release());
}

void destroyValue(nvArray* value)
{
    if (value != nullptr) {
        requireOwned(value);
        endValue(value);
    }
}

void requireAlive(const nvArray* value)
{
    if (value == nullptr) {
        throwHostError("NullArgument");
    }
    if (value->ownership == Ownership::Dead) {
        throwMisuse("ValueIsDead", {describeWithSerial(value)});
    }
}

void requireOwned(const nvArray* value)
{
    requireAlive(value);
    if (value->ownership == Ownership::Held) {
        throwMisuse("ValueIsHeld", {describeWithSerial(value)});
    }
    if (value->loans > 0) {
        throwMisuse("ValueIsLent", {describeWithSerial(value)});
    }
}

void setScope(nvArray* value, Scope scope)
{
    requireOwned(value);
    if (value->scope == Scope::Persistent) {
        throwMisuse("ValueIsPersistent", {describeWithSerial(value)});
    }
    value->scope = scope;
}

// A loan is kept in the header of a value that the borrower may only read.
Loan::Loan(const nvArray* value) : m_value(const_cast<nvArray*>(value))
{
    if (m_value != nullptr) {
        requireAlive(m_value);
        m_serial = m_value->serial;
        ++m_value->loans;
    }
}

Loan::Loan(Loan&& other) noexcept : m_value(std::exchange(other.m_value, nullptr)), m_serial(other.m_serial)
{
}

Loan::~Loan()
{
    const bool isSameValue = m_value != nullptr && m_value->serial == m_serial;
    if (isSameValue && m_value->ownership != Ownership::Dead) {
        --m_value->loans;
    }
}

}  // namespace reference_host
