#pragma once

#include "reference_host/Export.hpp"

#include <cstddef>
#include <string>
#include <string_view>

namespace reference_host {

// Conversion keeps well-formed text, including U+0000. Each unpaired surrogate becomes U+FFFD, and so does
// each maximal ill-formed part of a UTF-8 sequence. The functions may be called from any thread.

ZM_REFHOST_API std::string utf8FromUtf16(std::u16string_view text);
ZM_REFHOST_API std::u16string utf16FromUtf8(std::string_view text);

/// One character of UTF-8 text, or one ill-formed part of it.
struct DecodedCharacter {
    char32_t code = 0;       ///< U+FFFD for an ill-formed part
    std::size_t length = 0;  ///< in bytes, at least 1
    bool isWellFormed = false;
};

/// Decodes the first character. REQUIRES: `text` is not empty.
ZM_REFHOST_API DecodedCharacter decodeUtf8(std::string_view text);

/// The index of the first surrogate without its other half, or npos.
ZM_REFHOST_API std::size_t unpairedSurrogate(std::u16string_view text) noexcept;

}  // namespace reference_host
