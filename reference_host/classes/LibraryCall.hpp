#ifndef ZM_REFERENCE_HOST_CLASSES_LIBRARY_CALL_HPP
#define ZM_REFERENCE_HOST_CLASSES_LIBRARY_CALL_HPP

#include "reference_host/calls/BoundaryCall.hpp"

#include <exception>
#include <new>
#include <stdexcept>
#include <type_traits>

namespace reference_host {

/// A call the other way, from the host into what a library described. The journal shows it around the
/// operations that the library calls meanwhile; no fault strikes here, and whatever the library throws
/// comes out as it was thrown.
///
/// What the body returns is the result that the journal shows.
///
/// REQUIRES: arguments and result as `BoundaryCall` takes them.
template <class Body, class... Arguments>
void callLibrary(const char* operation, Body&& body, const Arguments&... arguments)
{
    using Result = std::invoke_result_t<Body&>;
    // The standard library's memory errors are kept from the call, which would turn them into the host's.
    std::exception_ptr memoryError;
    BoundaryCall({operation, CanFail::Never, nullptr}, arguments...).run([&]() -> Result {
        try {
            return body();
        } catch (const std::bad_alloc&) {
            memoryError = std::current_exception();
        } catch (const std::length_error&) {
            memoryError = std::current_exception();
        }
        return Result();
    });
    if (memoryError) {
        std::rethrow_exception(memoryError);
    }
}

}  // namespace reference_host

#endif
