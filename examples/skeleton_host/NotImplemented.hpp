#ifndef ZM_SKELETON_HOST_NOT_IMPLEMENTED_HPP
#define ZM_SKELETON_HOST_NOT_IMPLEMENTED_HPP

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

/// The body of an operation that waits to be written.
[[noreturn]] inline void throwNotImplemented(const char* operation)
{
    throw std::logic_error(std::string("not implemented: ") + operation);
}

/// The same for an operation that may not throw.
[[noreturn]] inline void abortNotImplemented(const char* operation)
{
    std::fprintf(stderr, "not implemented: %s\n", operation);
    std::abort();
}

#endif
