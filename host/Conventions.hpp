#ifndef ZM_HOST_CONVENTIONS_HPP
#define ZM_HOST_CONVENTIONS_HPP

/// Conventions that hold for every operation declared in host/.
///
///  1. Ownership. An owned value ends in exactly one `nvDestroyArray`, or passes into a container.
///     A borrowed value belongs to a container and is never destroyed, re-scoped or stored elsewhere.
///  2. Consumption. A value marked [consumed] passes to the callee when the operation returns
///     normally. When the operation throws, it is still the caller's.
///  3. Scopes. A new value is in no scope and belongs to whoever holds its pointer. A scope records
///     the intended lifetime; it never destroys a value.
///  4. Text. Wide text is UTF-16, narrow text UTF-8. Both may hold any code unit, also 0 where a
///     length is passed. Ill-formed text is converted with U+FFFD in place of each bad sequence.
///  5. Indices of elements, cells and fields are 0-based and linear (first dimension fastest). The
///     indices that scripts use are 1-based; only the class bindings see those.
///  6. Diagnostics. A non-null handle ends exactly once: reported, thrown or discarded.
///  7. Failures leave as C++ exceptions: `zmsvException` for host errors, `zmsvOutOfMemoryException`
///     for short memory. Both cross the boundary and are caught by type on either side.
///  8. Threads. All of host/ is called from one thread at a time, the host's main thread; the text
///     and path operations of host/Text.hpp may be called from any.
///
/// The tags of the operation comments:
///
///   [owned]     the result belongs to the caller
///   [borrowed]  the result belongs to the argument it was read from
///   [consumed]  the named argument passes to the callee (see 2)
///   [throws]    may throw `zmsvException` or `zmsvOutOfMemoryException`
///   [no-throw]  never throws
///   [null ok]   a null value argument is accepted; the sentence says what comes back
///
/// An operation without [null ok] answers a null value argument with a `zmsvException` that names
/// the operation.

/// Marks what the host implements and the library calls, and the types that cross between them.
#define ZM_HOST_API __attribute__((visibility("default")))

#endif
