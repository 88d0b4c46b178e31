#ifndef ZM_REFERENCE_HOST_SUPPORT_QUOTED_TEXT_HPP
#define ZM_REFERENCE_HOST_SUPPORT_QUOTED_TEXT_HPP

#include "reference_host/Export.hpp"

#include <string>
#include <string_view>

namespace reference_host {

/// UTF-8 text for a readable line: in quotes, with control characters as \n, \t and \x01, quotes and
/// backslashes escaped, and cut off with "..." past 200 bytes, at the end of a character.
ZM_REFHOST_API std::string quotedText(std::string_view text);

/// A number as one reads it, the shortest text that reads back the same; the same in every locale.
ZM_REFHOST_API std::string numberText(double number);

}  // namespace reference_host

#endif
