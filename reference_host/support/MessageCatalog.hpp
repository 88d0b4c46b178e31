#pragma once

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace reference_host {

/// The texts of all messages, by catalog and key. A text refers to its arguments as {0}, {1} ...
///
/// Arguments are foreign text and are made safe to print: in a text such as `no block "{0}"` argument 0 is
/// escaped and shortened as by `quotedText`; elsewhere an argument may be a sentence, and is escaped and
/// shortened to `longestArgument` characters as by `printableText`.
class ZM_REFHOST_API MessageCatalog {
public:
    static constexpr std::size_t longestArgument = 1000;

    /// Adds a text or changes it.
    static void define(const std::string& catalog, const std::string& key, std::string text);

    /// The text with its arguments filled in, the same in every locale. The text of an unknown message
    /// is "catalog:key (argument, argument)"; a placeholder without an argument stays as it is.
    static std::string text(const zmsvMessageId& id);
    static std::string text(const std::string& catalog, const std::string& key,
                            const std::vector<zmsvMessageArgument>& arguments);
};

/// An argument as a text shows it. Doubles have the shortest form that reads back the same.
ZM_REFHOST_API std::string argumentText(const zmsvMessageArgument& argument, bool isQuoted = false);

}  // namespace reference_host
