#include "reference_host/support/QuotedText.hpp"

#include "reference_host/support/TextConversion.hpp"

#include <array>
#include <charconv>

namespace reference_host {

namespace {

constexpr std::string_view ellipsis = "...";

bool isControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

/// Characters that change the direction or the lines of a text, or that are invisible at its beginning.
bool isFormatting(char32_t code)
{
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

std::string hexadecimal(char32_t number, int digitCount)
{
    std::string digits;
    for (int shift = 4 * (digitCount - 1); shift >= 0; shift -= 4) {
        digits += "0123456789abcdef"[(number >> shift) & 0xF];
    }
    return digits;
}

std::string escapedBytes(std::string_view bytes)
{
    std::string result;
    for (const char byte : bytes) {
        result += "\\x" + hexadecimal(static_cast<unsigned char>(byte), 2);
    }
    return result;
}

std::string shown(const DecodedCharacter& character, std::string_view bytes, bool isQuoted)
{
    if (!character.isWellFormed) {
        return escapedBytes(bytes);
    }
    switch (character.code) {
        case U'\n':
            return "\\n";
        case U'\t':
            return "\\t";
        case U'"':
        case U'\\':
            return (isQuoted ? "\\" : "") + std::string(bytes);
        default:
            break;
    }
    if (isControl(character.code) && character.code < 0x80) {
        return escapedBytes(bytes);
    }
    const bool isHidden = isControl(character.code) || isFormatting(character.code);
    return isHidden ? "\\u" + hexadecimal(character.code, 4) : std::string(bytes);
}

std::string shownText(std::string_view text, std::size_t longest, bool isQuoted)
{
    std::string result;
    std::size_t count = 0;  // characters in the result
    std::size_t cutAt = 0;  // bytes of the result that leave room for the ellipsis
    while (!text.empty()) {
        const DecodedCharacter character = decodeUtf8(text);
        const std::string piece = shown(character, text.substr(0, character.length), isQuoted);
        const bool isEscape = piece.size() != character.length || !character.isWellFormed;
        count += isEscape ? piece.size() : 1;
        if (count > longest) {
            return result.substr(0, cutAt).append(ellipsis);
        }
        result += piece;
        if (count + ellipsis.size() <= longest) {
            cutAt = result.size();
        }
        text.remove_prefix(character.length);
    }
    return result;
}

}  // namespace

std::string quotedText(std::string_view text)
{
    return '"' + escapedText(text) + '"';
}

std::string escapedText(std::string_view text)
{
    return shownText(text, longestQuotedText, true);
}

std::string printableText(std::string_view text, std::size_t longest)
{
    return shownText(text, longest, false);
}

std::string numberText(double number)
{
    std::array<char, 32> buffer{};
    const std::to_chars_result end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return {buffer.data(), end.ptr};
}

}  // namespace reference_host
