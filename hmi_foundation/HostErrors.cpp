#include "hmi_foundation/HostErrors.hpp"

#include "host/Calls.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace zm_hmi_foundation {

namespace {

// Reached only when a host operation that must not return has returned.
[[noreturn]] void unreachable()
{
    std::fputs("unreachable\n", stderr);
    std::abort();
}

}  // namespace

void throwHostError(const zmsvMessageId& id)
{
    zmsvThrowIExceptionFromDiagnostic(zmsvCreateDiagnostic(id, std::string()), nullptr);
    unreachable();
}

void throwInvalidElementIndex(std::size_t elementCount)
{
    throwHostError(zmsvMessageId(errorCatalog, "InvalidElementIndex", {std::uint64_t{elementCount}}));
}

void throwNoCollection()
{
    throwHostError(zmsvMessageId(errorCatalog, "NoCollection"));
}

std::size_t toZeroBasedIndex(std::size_t scriptIndex, std::size_t elementCount)
{
    if (scriptIndex == 0) {
        throwInvalidElementIndex(elementCount);
    }
    return scriptIndex - 1;
}

}  // namespace zm_hmi_foundation
