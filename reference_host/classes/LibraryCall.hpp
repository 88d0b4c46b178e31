#pragma once

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassErrors.hpp"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace reference_host {

/// Calls from the host into a library's descriptor. The journal shows the call around the operations that the
/// library calls meanwhile, with the body's return value as the result. Faults do not strike here.
/// Exceptions of the library pass through unchanged.
///
/// REQUIRES: arguments and result as `BoundaryCall` takes them.
template <class Body, class... Arguments>
void callLibrary(const char* operation, Body&& body, const Arguments&... arguments)
{
    using Result = std::invoke_result_t<Body&>;
    // Kept out of BoundaryCall, which would convert the standard library's memory errors to the host's.
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

/// Runs a body that calls a library. If the library was given a value that it cannot use, the error names
/// only the operation that refused it; this puts the script's view (`context()`) in front of the text. The
/// message's id and arguments stay, and errors of other catalogs pass through unchanged.
template <class Body, class Context>
void withContext(Body&& body, Context&& context)
{
    try {
        body();
    } catch (const zmsvException& error) {
        const std::string& catalog = error.id().catalog();
        if (catalog != hostCatalog && catalog != classCatalog) {
            throw;
        }
        throw zmsvException(error.id(), context() + ": " + error.what());
    }
}

}  // namespace reference_host
