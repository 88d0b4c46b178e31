#ifndef ZM_REFERENCE_HOST_SUPPORT_TEXT_CONVERSION_HPP
#define ZM_REFERENCE_HOST_SUPPORT_TEXT_CONVERSION_HPP

#include "reference_host/Export.hpp"

#include <string>
#include <string_view>

namespace reference_host {

// Both keep any code unit that is well-formed, 0 included, and put U+FFFD in place of the rest: one for
// each unpaired surrogate, one for each longest beginning of a sequence that no continuation can save.
// They may be called from any thread.

ZM_REFHOST_API std::string utf8FromUtf16(std::u16string_view text);
ZM_REFHOST_API std::u16string utf16FromUtf8(std::string_view text);

}  // namespace reference_host

#endif
