#include "reference_host/ssp/XmlText.hpp"

#include "host/Text.hpp"
#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/XmlEncoding.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace reference_host {

namespace {

constexpr std::string_view space = " \t\r\n";

bool isControl(char16_t unit) noexcept
{
    return unit < u' ' && unit != u'\t' && unit != u'\n' && unit != u'\r';
}

void checkWritable(const std::u16string& name)
{
    const auto bad = std::find_if(name.begin(), name.end(),
                                  [](char16_t unit) { return isControl(unit) || unit >= 0xFFFE; });
    const std::size_t place = std::min(static_cast<std::size_t>(bad - name.begin()), loneSurrogate(name));
    if (place < name.size()) {
        std::array<char, 8> code{};
        std::snprintf(code.data(), code.size(), "U+%04X", static_cast<unsigned>(name[place]));
        std::u16string shown = name;
        std::replace_if(shown.begin(), shown.end(), isControl, u'\uFFFD');
        throw fileError("UnwritableName",
                        {toUtf8(shown), std::uint64_t{place + 1}, std::string(code.data())});
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
