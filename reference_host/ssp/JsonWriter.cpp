#include "reference_host/ssp/JsonWriter.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <array>
#include <charconv>
#include <type_traits>
#include <utility>

namespace reference_host {

namespace {

template <class Number>
class NumberText {
public:
    explicit NumberText(Number number)
        : m_end(std::to_chars(m_characters.data(), m_characters.data() + m_characters.size(), number).ptr)
    {
    }
    std::string_view view() const { return {m_characters.data(), m_end}; }

private:
    std::array<char, 32> m_characters{};
    const char* m_end;
};

bool needsEscape(char character)
{
    return character == '"' || character == '\\' || static_cast<unsigned char>(character) < 0x20;
}

void appendEscape(std::string& text, char character)
{
    constexpr std::string_view digits = "0123456789abcdef";
    text += '\\';
    if (character == '"' || character == '\\') {
        text += character;
    } else if (character == '\n') {
        text += 'n';
    } else {
        const auto code = static_cast<unsigned char>(character);
        text += "u00";
        text += digits[code >> 4U];
        text += digits[code & 0xFU];
    }
}

}  // namespace

bool isWellFormed(std::u16string_view text) noexcept
{
    bool isSecondDue = false;
    for (const char16_t unit : text) {
        const bool isSecond = (unit & 0xFC00U) == 0xDC00U;
        if (isSecond != isSecondDue) {
            return false;
        }
        isSecondDue = (unit & 0xFC00U) == 0xD800U;
    }
    return !isSecondDue;
}

void JsonWriter::beginItem()
{
    m_place.item();
    // What ends in one of these is no value: a string ends with its quote.
    const bool isFirst = m_text.empty() || m_text.back() == '[' || m_text.back() == ':';
    if (!isFirst) {
        m_text += ',';
    }
}

void JsonWriter::beginArray()
{
    beginItem();
    m_place.enterArray();
    m_text += '[';
}

void JsonWriter::endArray()
{
    m_place.leave();
    m_text += ']';
}

void JsonWriter::beginObject()
{
    beginItem();
    m_place.enterObject();
    m_text += '{';
}

void JsonWriter::endObject()
{
    m_place.leave();
    m_text += '}';
}

void JsonWriter::member(std::string_view name)
{
    m_place.member(name);
    append(m_text.back() == '{' ? "\"" : ",\"");
    append(name);
    append("\":");
}

void JsonWriter::null()
{
    beginItem();
    append("null");
}

void JsonWriter::boolean(bool value)
{
    beginItem();
    append(value ? "true" : "false");
}

void JsonWriter::integer(std::int64_t number)
{
    beginItem();
    append(NumberText(number).view());
}

void JsonWriter::unsignedInteger(std::uint64_t number)
{
    beginItem();
    append(NumberText(number).view());
}

void JsonWriter::real(double number)
{
    beginItem();
    const NumberText text(number);
    append(text.view());
    if (text.view().find_first_of(".e") == std::string_view::npos) {
        append(".0");
    }
}

void JsonWriter::string(std::string_view utf8)
{
    beginItem();
    m_text += '"';
    std::size_t written = 0;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        if (needsEscape(utf8[i])) {
            append(utf8.substr(written, i - written));
            appendEscape(m_text, utf8[i]);
            written = i + 1;
        }
    }
    append(utf8.substr(written));
    m_text += '"';
}

void JsonWriter::text(std::u16string_view text)
{
    if (isWellFormed(text)) {
        string(utf8FromUtf16(text));
    } else {
        unitsObject("units", text);
    }
}

void JsonWriter::byteText(std::string_view text)
{
    if (utf8FromUtf16(utf16FromUtf8(text)) == text) {
        string(text);
    } else {
        unitsObject("bytes", text);
    }
}

template <class Text>
void JsonWriter::unitsObject(const char* name, Text units)
{
    beginObject();
    member(name);
    beginArray();
    for (const auto unit : units) {
        unsignedInteger(static_cast<std::make_unsigned_t<std::remove_const_t<decltype(unit)>>>(unit));
    }
    endArray();
    endObject();
}

std::string JsonWriter::take()
{
    if (m_text.size() > m_limits.bytes) {
        throw fileError("JsonTooLarge", {std::uint64_t{m_limits.bytes}});
    }
    return std::move(m_text);
}

}  // namespace reference_host
