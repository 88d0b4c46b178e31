#ifndef ZM_PYTHON_VALUE_HANDLE_HPP
#define ZM_PYTHON_VALUE_HANDLE_HPP

#include "reference_host/values/Value.hpp"

namespace zmhost {

/// A host value that Python holds; it ends with its Python object, or in `releaseAll`. Every handle is
/// used by one thread at a time, the one that holds Python's lock; native calls do not release the lock.
class ValueHandle {
public:
    /// REQUIRES: `value` is not null.
    explicit ValueHandle(reference_host::OwnedValue value);
    ValueHandle(const ValueHandle&) = delete;
    ValueHandle& operator=(const ValueHandle&) = delete;
    ~ValueHandle();

    /// Borrowed. Throws Python's `RuntimeError` after `releaseAll`.
    nvArray* get() const;

    /// Destroys the values of all handles at the end of the program, so that values that Python still refers
    /// to are not reported as leaks.
    static void releaseAll() noexcept;

private:
    void release() noexcept;

    reference_host::OwnedValue m_value;
};

}  // namespace zmhost

#endif
