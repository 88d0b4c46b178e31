#include "reference_host/support/MessageCatalog.hpp"

#include "reference_host/support/HostErrors.hpp"
#include "reference_host/support/QuotedText.hpp"

#include <charconv>
#include <map>
#include <string_view>
#include <type_traits>
#include <utility>

namespace reference_host {

namespace {

using Texts = std::map<std::pair<std::string, std::string>, std::string>;

constexpr const char* libraryCatalog = "dvx_hmi_foundation:errors";

struct CatalogRow {
    const char* catalog;
    const char* key;
    const char* text;
};

constexpr CatalogRow initialRows[] = {
    {libraryCatalog, "InvalidElementIndex",
     "The index is not that of an element; the number of elements is {0}."},
    {libraryCatalog, "NoCollection", "The object has no collection behind it."},
    {libraryCatalog, "SignalObserversSetParamInvalidType",
     "The observers parameter must be an object of class Zelmar.HMI.ModelObservers."},
    {libraryCatalog, "SignalObserversSetParamNonScalar", "The observers parameter must be a single value."},

    {hostCatalog, "ValueIsDead", "{0}: the value was destroyed before: {1}"},
    {hostCatalog, "ValueIsHeld", "{0}: the value belongs to a container: {1}"},
    {hostCatalog, "ValueIsLent", "{0}: the value is borrowed by a call that is under way: {1}"},
    {hostCatalog, "ValueIsPersistent", "{0}: the value is persistent already: {1}"},
    {hostCatalog, "ContainsItself", "{0}: the value cannot hold itself: {1}"},
    {hostCatalog, "NestedTooDeep",
     "{0}: no value stands more than {1} containers deep, and this one holds as many: {2}"},
    {hostCatalog, "FieldIsSet", "{0}: the field \"{1}\" holds a value already: {2}"},
    {hostCatalog, "OutputGivenTwice", "{0}: {1} gives one value as output {2} and as output {3}: {4}"},
    {hostCatalog, "SlotIsFilled", "{0}: output slot {1} is not null before the call"},
    {hostCatalog, "DiagnosticHasEnded", "{0}: the diagnostic was reported, thrown or discarded before"},

    {hostCatalog, "NullArgument", "{0}: an argument that must be there is null"},
    {hostCatalog, "WrongClass", "{0}: needs {1}, not {2}"},
    {hostCatalog, "EmptyValue", "{0}: needs a value with an element, not {1}"},
    {hostCatalog, "IndexPastTheEnd", "{0}: index {1} is past the end; the number of elements is {2}"},
    {hostCatalog, "NoSuchField", "{0}: there is no field \"{1}\" in {2}"},
    {hostCatalog, "FieldNamedTwice", "{0}: the field \"{1}\" is named twice"},
    {hostCatalog, "WrongNumberOfElements", "{0}: {1} elements do not fill {2} places"},
    {hostCatalog, "UnknownClassID", "{0}: {1} is not the code of a numeric class"},
    {hostCatalog, "UnknownScope", "{0}: {1} is not a scope that can be set"},
    {hostCatalog, "UnknownEncoding", "{0}: the encoding \"{1}\" is not known"},
    {hostCatalog, "ForeignConverter", "{0}: the text converter was not made by this host"},
    {hostCatalog, "NegativeCount", "{0}: {1} is not a number of inputs or outputs"},

    {hostCatalog, "UnknownFunction", "{0}: there is no function \"{1}\""},
    {hostCatalog, "FunctionExists", "{0}: the function \"{1}\" is defined already"},
    {hostCatalog, "TooFewInputs", "{0}: the function \"{1}\" was called with {2} inputs and needs more"},
    {hostCatalog, "NothingInFlight", "{0}: was not called inside a catch clause"},
    {hostCatalog, "OutOfMemory", "{0}: out of memory"},
    {hostCatalog, "Exception", "{1}"},
    {hostCatalog, "UnknownException", "{0}: something was thrown that is not an exception"},
    {hostCatalog, "InjectedFault", "{0}: was told to fail"},
};

/// Never destroyed: libraries raise errors while the process goes down.
Texts& texts()
{
    static Texts& instance = *[] {
        auto* initial = new Texts;
        for (const CatalogRow& row : initialRows) {
            (*initial)[{row.catalog, row.key}] = row.text;
        }
        return initial;
    }();
    return instance;
}

std::string withoutText(const zmsvMessageId& id)
{
    std::string result = id.catalog() + ":" + id.key();
    for (const zmsvMessageArgument& argument : id.arguments()) {
        result += (&argument == id.arguments().data() ? " (" : ", ") + argumentText(argument);
    }
    return id.arguments().empty() ? result : result + ")";
}

/// The number in braces that `text` begins with, and how long it is; a length of 0 when there is none.
struct Placeholder {
    std::size_t argument = 0;
    std::size_t length = 0;
};

Placeholder placeholderAt(std::string_view text)
{
    Placeholder result;
    const char* first = text.data() + 1;
    const char* last = text.data() + text.size();
    const std::from_chars_result number = std::from_chars(first, last, result.argument);
    if (number.ec == std::errc{} && number.ptr != last && *number.ptr == '}') {
        result.length = static_cast<std::size_t>(number.ptr - text.data()) + 1;
    }
    return result;
}

std::string filled(std::string_view text, const std::vector<zmsvMessageArgument>& arguments)
{
    std::string result;
    while (!text.empty()) {
        const Placeholder placeholder = text.front() == '{' ? placeholderAt(text) : Placeholder{};
        if (placeholder.length > 0 && placeholder.argument < arguments.size()) {
            text.remove_prefix(placeholder.length);
            const bool isQuoted = result.ends_with('"') && text.starts_with('"');
            result += argumentText(arguments[placeholder.argument], isQuoted);
        } else {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

}  // namespace

void MessageCatalog::define(const std::string& catalog, const std::string& key, std::string text)
{
    texts()[{catalog, key}] = std::move(text);
}

std::string MessageCatalog::text(const zmsvMessageId& id)
{
    const auto found = texts().find({id.catalog(), id.key()});
    return found != texts().end() ? filled(found->second, id.arguments()) : withoutText(id);
}

std::string argumentText(const zmsvMessageArgument& argument, bool isQuoted)
{
    return std::visit(
        [isQuoted](const auto& content) {
            using Content = std::decay_t<decltype(content)>;
            if constexpr (std::is_same_v<Content, std::string>) {
                return isQuoted ? escapedText(content)
                                : printableText(content, MessageCatalog::longestArgument);
            } else if constexpr (std::is_same_v<Content, double>) {
                return numberText(content);
            } else {
                return std::to_string(content);
            }
        },
        argument);
}

}  // namespace reference_host
