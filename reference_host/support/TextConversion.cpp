#include "reference_host/support/TextConversion.hpp"

namespace reference_host {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUtf8(std::string& text, char32_t code)
{
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    const auto appendContinuation = [&](int shift) { append(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | (code >> 6));
        appendContinuation(0);
    } else if (code < 0x10000) {
        append(0xE0 | (code >> 12));
        appendContinuation(6);
        appendContinuation(0);
    } else {
        append(0xF0 | (code >> 18));
        appendContinuation(12);
        appendContinuation(6);
        appendContinuation(0);
    }
}

void appendUtf16(std::u16string& text, char32_t code)
{
    if (code < 0x10000) {
        text += static_cast<char16_t>(code);
    } else {
        text += static_cast<char16_t>(0xD7C0 + (code >> 10));
        text += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    }
}

/// The meaning of a first byte: the number of continuation bytes, its own bits, and the range of the first
/// continuation byte. The range is narrower where the code would be overlong, a surrogate or above U+10FFFF.
struct Lead {
    int continuations = -1;
    char32_t bits = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
};

Lead lead(unsigned char byte)
{
    const char32_t bits = byte;
    if (byte < 0x80) {
        return {0, bits};
    }
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {1, bits & 0x1F};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        const unsigned char low = byte == 0xE0 ? 0xA0 : 0x80;
        const unsigned char high = byte == 0xED ? 0x9F : 0xBF;
        return {2, bits & 0x0F, low, high};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        const unsigned char low = byte == 0xF0 ? 0x90 : 0x80;
        const unsigned char high = byte == 0xF4 ? 0x8F : 0xBF;
        return {3, bits & 0x07, low, high};
    }
    return {};
}

/// Whether a surrogate pair begins at `index`.
bool isPair(std::u16string_view text, std::size_t index)
{
    return isHighSurrogate(text[index]) && index + 1 < text.size() && isLowSurrogate(text[index + 1]);
}

}  // namespace

std::string utf8FromUtf16(std::u16string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (isPair(text, i)) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - char32_t{0xDC00});
        } else if (isHighSurrogate(code) || isLowSurrogate(code)) {
            code = replacement;
        }
        appendUtf8(result, code);
    }
    return result;
}

std::u16string utf16FromUtf8(std::string_view text)
{
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter character = decodeUtf8(text);
        appendUtf16(result, character.code);
        text.remove_prefix(character.length);
    }
    return result;
}

DecodedCharacter decodeUtf8(std::string_view text)
{
    const Lead first = lead(static_cast<unsigned char>(text.front()));
    if (first.continuations < 0) {
        return {replacement, 1, false};
    }
    char32_t code = first.bits;
    std::size_t length = 1;
    for (int i = 0; i < first.continuations; ++i) {
        const unsigned char low = i == 0 ? first.low : 0x80;
        const unsigned char high = i == 0 ? first.high : 0xBF;
        const auto byte = length < text.size() ? static_cast<unsigned char>(text[length]) : 0;
        if (byte < low || byte > high) {
            return {replacement, length, false};
        }
        code = (code << 6) | (byte & 0x3F);
        ++length;
    }
    return {code, length, true};
}

std::size_t unpairedSurrogate(std::u16string_view text) noexcept
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isPair(text, i)) {
            ++i;
        } else if (isHighSurrogate(text[i]) || isLowSurrogate(text[i])) {
            return i;
        }
    }
    return std::u16string_view::npos;
}

}  // namespace reference_host
