#include "reference_host/support/ErrorCatalog.hpp"

#include "reference_host/support/CallSite.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MessageCatalog.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <array>
#include <iterator>

namespace reference_host {

namespace {

constexpr std::array hostMessages{
    CatalogMessage{"ValueIsDead", "{0}: the value was destroyed before: {1}"},
    CatalogMessage{"ValueIsHeld", "{0}: the value belongs to a container: {1}"},
    CatalogMessage{"ValueIsLent", "{0}: the value is borrowed by a call that is under way: {1}"},
    CatalogMessage{"ValueIsPersistent", "{0}: the value is persistent already: {1}"},
    CatalogMessage{"ContainsItself", "{0}: a container cannot contain itself: {1}"},
    CatalogMessage{"NestedTooDeep",
                   "{0}: values can be at most {1} containers deep, and this one would be deeper: {2}"},
    CatalogMessage{"FieldIsSet", "{0}: the field \"{1}\" is set already: {2}"},
    CatalogMessage{"OutputGivenTwice", "{0}: {1} gives one value as output {2} and as output {3}: {4}"},
    CatalogMessage{"SlotIsFilled", "{0}: output slot {1} is not null before the call"},
    CatalogMessage{"DiagnosticHasEnded", "{0}: the diagnostic was reported, thrown or discarded before"},
    CatalogMessage{"NullArgument", "{0}: an argument that must be there is null"},
    CatalogMessage{"WrongClass", "{0}: needs {1}, not {2}"},
    CatalogMessage{"EmptyValue", "{0}: needs a value with an element, not {1}"},
    CatalogMessage{"IndexPastTheEnd", "{0}: index {1} is past the end; the number of elements is {2}"},
    CatalogMessage{"NoSuchField", "{0}: there is no field \"{1}\" in {2}"},
    CatalogMessage{"FieldNamedTwice", "{0}: the field \"{1}\" is named twice"},
    CatalogMessage{"WrongNumberOfElements", "{0}: {1} elements do not fill {2} places"},
    CatalogMessage{"UnknownClassID", "{0}: {1} is not the code of a numeric class"},
    CatalogMessage{"UnknownScope", "{0}: {1} is not a scope that can be set"},
    CatalogMessage{"UnknownEncoding", "{0}: the encoding \"{1}\" is not known"},
    CatalogMessage{"ForeignConverter", "{0}: the text converter was not made by this host"},
    CatalogMessage{"NegativeCount", "{0}: {1} is not a number of inputs or outputs"},
    CatalogMessage{"UnknownFunction", "{0}: there is no function \"{1}\""},
    CatalogMessage{"FunctionExists", "{0}: the function \"{1}\" is defined already"},
    CatalogMessage{"TooFewInputs", "{0}: the function \"{1}\" was called with {2} inputs and needs more"},
    CatalogMessage{"NothingInFlight", "{0}: was not called inside a catch clause"},
    CatalogMessage{"OutOfMemory", "{0}: out of memory"},
    CatalogMessage{"Exception", "{1}"},
    CatalogMessage{"UnknownException", "{0}: an exception of an unknown type was thrown"},
    CatalogMessage{"InjectedFault", "{0}: was told to fail"},
};

const ErrorCatalog& hostErrors()
{
    static const ErrorCatalog& catalog = *new ErrorCatalog(hostCatalog, hostMessages);
    return catalog;
}

/// The texts are known from the start, also to code that only looks them up.
[[maybe_unused]] const ErrorCatalog& definedAtLoad = hostErrors();

}  // namespace

zmsvMessageArgument MessageArguments::convert(std::u16string_view text)
{
    return utf8FromUtf16(text);
}

ErrorCatalog::ErrorCatalog(const char* name, std::span<const CatalogMessage> messages) : m_name(name)
{
    for (const CatalogMessage& message : messages) {
        MessageCatalog::define(m_name, message.key, message.text);
    }
}

zmsvException ErrorCatalog::error(const char* key, MessageArguments arguments, MessageArguments details) const
{
    std::vector<zmsvMessageArgument> list = std::move(arguments).take();
    std::vector<zmsvMessageArgument> more = std::move(details).take();
    const std::size_t count = list.size();
    list.insert(list.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
    std::string text = MessageCatalog::text(m_name, key, list);
    list.resize(count);
    const std::string_view name(key);
    return {zmsvMessageId(m_name, std::string(name.substr(0, name.find(':'))), std::move(list)),
            std::move(text)};
}

zmsvException hostError(const char* key, MessageArguments arguments)
{
    std::vector<zmsvMessageArgument> all = std::move(arguments).take();
    all.insert(all.begin(), std::string(CallSite::current().operationName()));
    return hostErrors().error(key, std::move(all));
}

void throwHostError(const char* key, MessageArguments arguments)
{
    throw hostError(key, std::move(arguments));
}

void throwMisuse(const char* key, MessageArguments arguments)
{
    const zmsvException error = hostError(key, std::move(arguments));
    Ledger::recordMisuse(error.what());
    throw zmsvException(error);
}

void requirePointer(const void* pointer, std::size_t count)
{
    if (pointer == nullptr && count > 0) {
        throwHostError("NullArgument");
    }
}

void requireIndex(std::size_t index, std::size_t count)
{
    if (index >= count) {
        throwHostError("IndexPastTheEnd", {index, count});
    }
}

}  // namespace reference_host
