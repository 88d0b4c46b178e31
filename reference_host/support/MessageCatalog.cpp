#include "reference_host/support/MessageCatalog.hpp"

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

/// Never destroyed: libraries raise errors while the process ends.
Texts& texts()
{
    static Texts& instance = *new Texts{
        {{libraryCatalog, "InvalidElementIndex"},
         "The index is not that of an element; the number of elements is {0}."},
        {{libraryCatalog, "NoCollection"}, "The object has no collection behind it."},
        {{libraryCatalog, "SignalObserversSetParamInvalidType"},
         "The observers parameter must be an object of class Zelmar.HMI.ModelObservers."},
        {{libraryCatalog, "SignalObserversSetParamNonScalar"},
         "The observers parameter must be a single value."},
    };
    return instance;
}

std::string withoutText(const std::string& catalog, const std::string& key,
                        const std::vector<zmsvMessageArgument>& arguments)
{
    std::string list;
    for (const zmsvMessageArgument& argument : arguments) {
        list += (list.empty() ? " (" : ", ") + argumentText(argument);
    }
    return catalog + ":" + key + (list.empty() ? "" : list + ")");
}

/// The number in braces at the beginning of a text, and its length there; a length of 0 for none.
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
    return text(id.catalog(), id.key(), id.arguments());
}

std::string MessageCatalog::text(const std::string& catalog, const std::string& key,
                                 const std::vector<zmsvMessageArgument>& arguments)
{
    const auto found = texts().find({catalog, key});
    return found != texts().end() ? filled(found->second, arguments) : withoutText(catalog, key, arguments);
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
