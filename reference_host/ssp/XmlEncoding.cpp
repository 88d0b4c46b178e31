#include "reference_host/ssp/XmlEncoding.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"

#include <algorithm>
#include <cstddef>

namespace reference_host {

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

zmsvException notWellFormed(const char* reason)
{
    return diagramError("NotWellFormed", {std::string(reason)});
}

bool isHighSurrogate(char16_t unit) noexcept
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char16_t unit) noexcept
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// `highByte` is the place of the more significant byte of each two.
std::string fromUtf16(std::string_view document, std::size_t highByte)
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
    if (document.size() % 2 != 0 || loneSurrogate(text) != std::u16string::npos) {
        throw notWellFormed("ill-formed UTF-16");
    }
    return toUtf8(text);
}

std::string fromLatin1(std::string_view document)
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

/// The name of the encoding in the XML declaration, a part of the document; empty when there is none.
std::string_view declaredEncoding(std::string_view document)
{
    const std::size_t begin = document.starts_with(utf8Mark) ? utf8Mark.size() : 0;
    const std::string_view declaration = document.substr(begin, document.find("?>") - begin);
    if (!declaration.starts_with("<?xml") ||
        declaration.find_first_of(" \t\r\n") != std::string_view("<?xml").size()) {
        return {};
    }
    const std::size_t key = declaration.find("encoding");
    const std::size_t quote = declaration.find_first_of("\"'", key);
    if (key == std::string_view::npos || quote == std::string_view::npos) {
        return {};
    }
    return declaration.substr(quote + 1, declaration.find(declaration[quote], quote + 1) - quote - 1);
}

bool isEncoding(std::string_view name, std::string_view upperCase)
{
    return std::equal(name.begin(), name.end(), upperCase.begin(), upperCase.end(), [](char a, char b) {
        return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b;
    });
}

}  // namespace

std::size_t loneSurrogate(const std::u16string& text) noexcept
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            ++i;
        } else if (isHighSurrogate(text[i]) || isLowSurrogate(text[i])) {
            return i;
        }
    }
    return std::u16string::npos;
}

std::string_view asUtf8(std::string_view document, std::string& buffer)
{
    const std::string_view start = document.substr(0, 2);
    const bool isLittle = start == "\xFF\xFE" || start == std::string_view("<\0", 2);
    const bool isBig = start == "\xFE\xFF" || start == std::string_view("\0<", 2);
    const std::string_view declared = declaredEncoding(document);
    if (isLittle || isBig) {
        buffer = fromUtf16(document, isLittle ? 1 : 0);
    } else if (declared.empty() || isEncoding(declared, "UTF-8") || isEncoding(declared, "US-ASCII")) {
        return document;
    } else if (isEncoding(declared, "ISO-8859-1") && !document.starts_with(utf8Mark)) {
        buffer = fromLatin1(document);
    } else {
        throw notWellFormed("unknown encoding");
    }
    declareUtf8(buffer);
    return buffer;
}

void declareUtf8(std::string& document)
{
    const std::string_view declared = declaredEncoding(document);
    if (!declared.empty() && !isEncoding(declared, "UTF-8")) {
        document.replace(static_cast<std::size_t>(declared.data() - document.data()), declared.size(),
                         "UTF-8");
    }
}

}  // namespace reference_host
