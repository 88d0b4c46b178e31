#include "reference_host/support/QuotedText.hpp"

#include <array>
#include <charconv>
#include <cstddef>

namespace reference_host {

namespace {

constexpr std::size_t longest = 200;

void appendEscaped(std::string& result, char character)
{
    constexpr std::string_view digits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
        result += '\\';
        result += character;
    } else if (character == '\n') {
        result += "\\n";
    } else if (character == '\t') {
        result += "\\t";
    } else if (byte < 0x20 || byte == 0x7F) {
        result += "\\x";
        result += digits[byte >> 4];
        result += digits[byte & 0xF];
    } else {
        result += character;
    }
}

bool isContinuation(char character)
{
    return (static_cast<unsigned char>(character) & 0xC0) == 0x80;
}

}  // namespace

std::string quotedText(std::string_view text)
{
    std::size_t end = text.size();
    if (end > longest) {
        end = longest;
        while (end > 0 && isContinuation(text[end])) {
            --end;
        }
    }
    std::string result = "\"";
    for (const char character : text.substr(0, end)) {
        appendEscaped(result, character);
    }
    return result + (end < text.size() ? "...\"" : "\"");
}

std::string numberText(double number)
{
    std::array<char, 32> buffer{};
    const std::to_chars_result end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return {buffer.data(), end.ptr};
}

}  // namespace reference_host
