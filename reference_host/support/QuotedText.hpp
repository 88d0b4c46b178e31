#pragma once

#include "reference_host/Export.hpp"

#include <cstddef>
#include <string>
#include <string_view>

namespace reference_host {

// How messages show text that comes from files, scripts or the library. The text is UTF-8, well-formed or
// not; the result is always well-formed and a single line that cannot control a terminal: control
// characters (C0, C1, DEL), bidirectional controls, line separators and ill-formed bytes are escaped as
// \n, \t, \x1b or \u202e. A longer text is cut and ends in "...".

/// The longest quoted text, in characters without the quotes.
inline constexpr std::size_t longestQuotedText = 80;

/// In double quotes. Quotes and backslashes inside are escaped.
ZM_REFHOST_API std::string quotedText(std::string_view text);

/// As `quotedText`, without the quotes around it, for a message that has its own.
ZM_REFHOST_API std::string escapedText(std::string_view text);

/// For text that is not quoted, such as a file name or the reason in another message: quotes and
/// backslashes stay as they are.
ZM_REFHOST_API std::string printableText(std::string_view text, std::size_t longest = longestQuotedText);

/// The shortest decimal text that reads back as the same number, in every locale.
ZM_REFHOST_API std::string numberText(double number);

}  // namespace reference_host
