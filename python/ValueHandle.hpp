#ifndef ZM_PYTHON_VALUE_HANDLE_HPP
#define ZM_PYTHON_VALUE_HANDLE_HPP

#include "reference_host/values/Value.hpp"

namespace zmhost {

/// A host value that Python holds; it ends with its Python object, or in `releaseAll`. Every handle is
/// used by one thread at a time: whoever holds Python's lock, which native calls do not give up.
class ValueHandle {
public:
    /// REQUIRES: `value` is not null.
    explicit ValueHandle(reference_host::OwnedValue value);
    ValueHandle(const ValueHandle&) = delete;
    ValueHandle& operator=(const ValueHandle&) = delete;
    ~ValueHandle();

    /// Borrowed. Throws Python's `RuntimeError` after `releaseAll`.
    nvArray* get() const;

    /// Ends the values of all handles, for the end of the program: what Python has not let go of by then
    /// is no leak of anybody's.
    static void releaseAll() noexcept;

private:
    void release() noexcept;

    reference_host::OwnedValue m_value;
};

}  // namespace zmhost

#endif
