#include "reference_host/support/HostErrors.hpp"

#include "reference_host/support/CallSite.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MessageCatalog.hpp"

#include <utility>

namespace reference_host {

namespace {

zmsvException hostError(const char* key, const std::vector<zmsvMessageArgument>& arguments)
{
    std::vector<zmsvMessageArgument> all{std::string(CallSite::current().operationName())};
    all.insert(all.end(), arguments.begin(), arguments.end());
    zmsvMessageId id(hostCatalog, key, std::move(all));
    std::string text = MessageCatalog::text(id);
    return {std::move(id), std::move(text)};
}

}  // namespace

void throwHostError(const char* key, const std::vector<zmsvMessageArgument>& arguments)
{
    throw hostError(key, arguments);
}

void throwMisuse(const char* key, const std::vector<zmsvMessageArgument>& arguments)
{
    const zmsvException error = hostError(key, arguments);
    Ledger::recordMisuse(error.what());
    throw zmsvException(error);
}

void requirePointer(const void* pointer, std::size_t count)
{
    if (pointer == nullptr && count > 0) {
        throwHostError("NullArgument");
    }
}

}  // namespace reference_host
