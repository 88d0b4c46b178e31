#include "contract/Check.hpp"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace contract {

namespace {

std::string kebabCase(const char* identifier)
{
    std::string name;
    for (const char* c = identifier; *c != '\0'; ++c) {
        if (std::isupper(static_cast<unsigned char>(*c)) != 0) {
            name += '-';
        }
        name += static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    }
    return name;
}

std::vector<std::string> words(const char* text)
{
    std::istringstream stream(text);
    std::vector<std::string> found;
    for (std::string word; stream >> word;) {
        found.push_back(word);
    }
    return found;
}

}  // namespace

std::vector<Check>& checks()
{
    static std::vector<Check> all;
    return all;
}

Registration::Registration(const char* identifier, const char* operations, const char* sentence,
                           void (*run)())
{
    checks().push_back({kebabCase(identifier), sentence, words(operations), run});
}

void fail(const std::string& message, std::source_location where)
{
    const char* slash = std::strrchr(where.file_name(), '/');
    const std::string file = slash != nullptr ? slash + 1 : where.file_name();
    throw Failure{file + ":" + std::to_string(where.line()) + ": " + message};
}

void skip(const std::string& reason)
{
    throw Skip{reason};
}

void expectTrue(bool condition, const std::string& what, std::source_location where)
{
    if (!condition) {
        fail("not so: " + what, where);
    }
}

/// Independent of the host's own conversion, which may be what is wrong.
std::string shown(const std::u16string& text)
{
    std::string result = "u\"";
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F) {
            result += static_cast<char>(unit);
        } else {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "\\u%04X", static_cast<unsigned>(unit));
            result += code.data();
        }
    }
    return result + '"';
}

std::string shown(std::nullptr_t)
{
    return "null";
}

}  // namespace contract
