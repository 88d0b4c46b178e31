#include "python/ValueHandle.hpp"

#include <exception>
#include <stdexcept>
#include <unordered_set>
#include <utility>

namespace zmhost {

namespace {

/// Never destroyed: Python lets go of objects until the very end.
std::unordered_set<ValueHandle*>& handles()
{
    static auto& instance = *new std::unordered_set<ValueHandle*>;
    return instance;
}

}  // namespace

ValueHandle::ValueHandle(reference_host::OwnedValue value) : m_value(std::move(value))
{
    handles().insert(this);
}

ValueHandle::~ValueHandle()
{
    handles().erase(this);
    release();
}

nvArray* ValueHandle::get() const
{
    if (m_value == nullptr) {
        throw std::runtime_error("the host has shut down; its values are gone");
    }
    return m_value.get();
}

void ValueHandle::releaseAll() noexcept
{
    for (ValueHandle* handle : handles()) {
        handle->release();
    }
}

void ValueHandle::release() noexcept
{
    try {
        reference_host::destroyValue(m_value.release());
    } catch (const std::exception&) {
        // A destructor must not throw into Python; the ledger has counted the misuse.
        return;
    }
}

}  // namespace zmhost
