#pragma once

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace reference_host {

/// The arguments of a message, converted: integers to 64 bits, texts to UTF-8. Written as {"get", index}.
///
/// Arguments are moved into place and never copied. A `std::variant` whose copy fails for lack of memory
/// cannot be destroyed with the libraries that we use (g++ 12), and a braced list would copy.
class ZM_REFHOST_API MessageArguments {
public:
    MessageArguments() = default;
    MessageArguments(std::vector<zmsvMessageArgument> list) : m_list(std::move(list)) {}

    template <class First, class... More>
        requires(!std::same_as<std::remove_cvref_t<First>, MessageArguments> &&
                 !std::same_as<std::remove_cvref_t<First>, std::vector<zmsvMessageArgument>>)
    MessageArguments(First&& first, More&&... more)
    {
        m_list.reserve(1 + sizeof...(More));
        m_list.push_back(convert(std::forward<First>(first)));
        (m_list.push_back(convert(std::forward<More>(more))), ...);
    }

    std::vector<zmsvMessageArgument> take() && { return std::move(m_list); }

private:
    static zmsvMessageArgument convert(std::string text) { return text; }
    static zmsvMessageArgument convert(const char* text) { return std::string(text); }
    static zmsvMessageArgument convert(std::string_view text) { return std::string(text); }
    static zmsvMessageArgument convert(std::u16string_view text);
    static zmsvMessageArgument convert(double number) { return number; }
    static zmsvMessageArgument convert(std::signed_integral auto number) { return std::int64_t{number}; }
    static zmsvMessageArgument convert(std::unsigned_integral auto number) { return std::uint64_t{number}; }

    std::vector<zmsvMessageArgument> m_list;
};

/// One message of a catalog: its key, and its text as `MessageCatalog` fills it. A key may have several
/// texts, which differ in a suffix ("NoName:member"); the suffix is not part of the message's id.
struct CatalogMessage {
    const char* key;
    const char* text;
};

/// A catalog of the host's own errors and warnings. Its texts are known once it is constructed.
class ZM_REFHOST_API ErrorCatalog {
public:
    ErrorCatalog(const char* name, std::span<const CatalogMessage> messages);

    /// A message of the catalog with its text, to be thrown or to be reported as a warning. The details are
    /// further arguments of the text, which are not part of the message's id.
    zmsvException error(const char* key, MessageArguments arguments, MessageArguments details = {}) const;

private:
    std::string m_name;
};

/// The catalog of errors at the boundary and of values. Argument {0} of each text is the operation under
/// way, which the functions below put in front, so that every such error names it.
inline constexpr const char* hostCatalog = "reference_host:errors";

ZM_REFHOST_API zmsvException hostError(const char* key, MessageArguments arguments = {});
[[noreturn]] ZM_REFHOST_API void throwHostError(const char* key, MessageArguments arguments = {});

/// As `throwHostError`, for an error that a correct caller never makes; it is entered in the ledger.
[[noreturn]] ZM_REFHOST_API void throwMisuse(const char* key, MessageArguments arguments = {});

/// Throws a host error if a pointer to `count` things is null and `count` is not 0.
ZM_REFHOST_API void requirePointer(const void* pointer, std::size_t count = 1);

/// Throws a host error unless index < count.
ZM_REFHOST_API void requireIndex(std::size_t index, std::size_t count);

}  // namespace reference_host
