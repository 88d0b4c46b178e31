#include "reference_host/files/XmlText.hpp"

#include "host/Text.hpp"
#include "reference_host/files/FileErrors.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace reference_host {

namespace {

constexpr std::string_view space = " \t\r\n";

// ---- encodings --------------------------------------------------------------------------------------

/// The two bytes of a code unit, the first of the document at 0; the mark in front of the text is left out.
std::string fromUtf16(const std::string& document, std::size_t highByte)
{
    std::u16string text;
    text.reserve(document.size() / 2);
    for (std::size_t i = 0; i + 1 < document.size(); i += 2) {
        const auto high = static_cast<unsigned char>(document[i + highByte]);
        const auto low = static_cast<unsigned char>(document[i + 1 - highByte]);
        text.push_back(static_cast<char16_t>(high << 8U | low));
    }
    if (text.starts_with(u'\uFEFF')) {
        text.erase(0, 1);
    }
    return toUtf8(text);
}

std::string fromLatin1(const std::string& document)
{
    std::string utf8;
    for (const char c : document) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80U) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0U | code >> 6U);
            utf8 += static_cast<char>(0x80U | (code & 0x3FU));
        }
    }
    return utf8;
}

/// The place of the encoding's name in the XML declaration; empty at the document's begin when there is none.
std::string_view declaredEncoding(std::string_view document)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    const std::size_t begin = document.starts_with(mark) ? mark.size() : 0;
    if (!document.substr(begin).starts_with("<?xml")) {
        return document.substr(0, 0);
    }
    const std::string_view declaration = document.substr(begin, document.find("?>") - begin);
    const std::size_t key = declaration.find("encoding");
    if (key == std::string_view::npos) {
        return document.substr(0, 0);
    }
    const std::size_t quote = declaration.find_first_of("\"'", key);
    return declaration.substr(quote + 1, declaration.find(declaration[quote], quote + 1) - quote - 1);
}

bool isEncoding(std::string_view name, std::string_view upperCase)
{
    return std::equal(name.begin(), name.end(), upperCase.begin(), upperCase.end(), [](char a, char b) {
        return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b;
    });
}

// ---- names ------------------------------------------------------------------------------------------

bool isHighSurrogate(char16_t unit) noexcept
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char16_t unit) noexcept
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool isWritable(const std::u16string& name, std::size_t index) noexcept
{
    const char16_t unit = name[index];
    if (isHighSurrogate(unit)) {
        return index + 1 < name.size() && isLowSurrogate(name[index + 1]);
    }
    if (isLowSurrogate(unit)) {
        return index > 0 && isHighSurrogate(name[index - 1]);
    }
    const bool isSpace = unit == u'\t' || unit == u'\n' || unit == u'\r';
    return (unit >= u' ' || isSpace) && unit < 0xFFFE;
}

void checkWritable(const std::u16string& name)
{
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (!isWritable(name, i)) {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "U+%04X", static_cast<unsigned>(name[i]));
            std::u16string shown = name;
            std::replace_if(
                shown.begin(), shown.end(), [](char16_t unit) { return unit < u' '; }, u'\uFFFD');
            throw fileError("UnwritableName",
                            {toUtf8(shown), std::uint64_t{i + 1}, std::string(code.data())});
        }
    }
}

const char* referenceFor(char c) noexcept
{
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&apos;";
        case '\t':
            return "&#9;";
        case '\n':
            return "&#10;";
        case '\r':
            return "&#13;";
        default:
            return nullptr;
    }
}

}  // namespace

std::string asUtf8Document(const std::string& document)
{
    const std::string_view start = std::string_view(document).substr(0, 2);
    const bool isLittle = start == "\xFF\xFE" || start == std::string_view("<\0", 2);
    const bool isBig = start == "\xFE\xFF" || start == std::string_view("\0<", 2);
    const bool isLatin1 = isEncoding(declaredEncoding(document), "ISO-8859-1");
    std::string utf8 = isLittle || isBig ? fromUtf16(document, isLittle ? 1 : 0)
                       : isLatin1        ? fromLatin1(document)
                                         : document;
    const std::string_view declared = declaredEncoding(utf8);
    if (!declared.empty() && !isEncoding(declared, "UTF-8")) {
        utf8.replace(static_cast<std::size_t>(declared.data() - utf8.data()), declared.size(), "UTF-8");
    }
    return utf8;
}

void appendAttributeValue(std::string& out, const std::u16string& name)
{
    checkWritable(name);
    for (const char c : toUtf8(name)) {
        if (const char* reference = referenceFor(c)) {
            out += reference;
        } else {
            out += c;
        }
    }
}

std::vector<XmlAttributePlace> attributePlaces(std::string_view document, std::size_t tag, std::size_t& end)
{
    std::vector<XmlAttributePlace> places;
    end = document.find_first_of(" \t\r\n/>", tag);
    for (;;) {
        const std::size_t begin = document.find_first_not_of(space, end);
        if (document[begin] == '/' || document[begin] == '>') {
            return places;
        }
        const std::size_t nameEnd = document.find_first_of(" \t\r\n=", begin);
        const std::size_t quote = document.find_first_of("\"'", nameEnd);
        const std::size_t close = document.find(document[quote], quote + 1);
        places.push_back({begin, nameEnd, quote + 1, close});
        end = close + 1;
    }
}

std::size_t beginOfSpaceBefore(std::string_view document, std::size_t place) noexcept
{
    const std::size_t last = document.substr(0, place).find_last_not_of(space);
    return last == std::string_view::npos ? 0 : last + 1;
}

}  // namespace reference_host
