#include "reference_host/ssp/JsonReader.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/JsonPlace.hpp"

#include <nlohmann/json.hpp>

#include <clocale>
#include <set>
#include <utility>
#include <vector>

namespace reference_host {

JsonHandler::~JsonHandler() = default;

namespace {

/// Numbers as in C for this thread. The parser knows of decimal commas, but not of the decimal points of more
/// than one byte that some locales have.
class PlainNumbers {
public:
    PlainNumbers() : m_plain(newlocale(LC_NUMERIC_MASK, "C", nullptr)), m_former(uselocale(m_plain)) {}
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;
    ~PlainNumbers()
    {
        uselocale(m_former);
        freelocale(m_plain);
    }

private:
    locale_t m_plain;
    locale_t m_former;
};

/// What the parser says, without the text that it has read: that may be long, and need not be UTF-8.
std::string reasonOf(const nlohmann::json::exception& error)
{
    constexpr int numberOverflow = 406;
    if (error.id == numberOverflow) {
        return "the number is too large";
    }
    const std::string_view text = error.what();
    const std::size_t dash = text.find(" - ");
    const std::string_view reason = dash != std::string_view::npos ? text.substr(dash + 3) : text;
    return std::string(reason.substr(0, reason.find("; last read")));
}

/// Stands between the parser and the handler, and checks what the parser does not.
class Reading : public nlohmann::json::json_sax_t {
public:
    Reading(const JsonLimits& limits, JsonHandler& handler) : m_handler(handler), m_place(limits) {}

    bool null() override { return scalar(nullptr); }
    bool boolean(bool value) override { return scalar(value); }
    bool number_integer(std::int64_t number) override { return scalar(number); }
    bool number_unsigned(std::uint64_t number) override { return scalar(number); }
    bool number_float(double number, const std::string&) override { return scalar(number); }
    bool string(std::string& text) override { return scalar(std::move(text)); }
    bool binary(nlohmann::json::binary_t&) override { return false; }  // JSON text has none

    bool start_array(std::size_t) override
    {
        m_place.item();
        m_handler.beginArray(m_place);
        m_place.enterArray();
        return true;
    }

    bool start_object(std::size_t) override
    {
        m_place.item();
        m_handler.beginObject(m_place);
        m_place.enterObject();
        m_members.emplace_back();
        return true;
    }

    bool key(std::string& name) override
    {
        m_place.member(name);
        if (!m_members.back().insert(name).second) {
            throw fileError("JsonMemberTwice", {m_place.text()});
        }
        m_handler.member(m_place, std::move(name));
        return true;
    }

    bool end_array() override
    {
        m_place.leave();
        m_handler.end(m_place);
        return true;
    }

    bool end_object() override
    {
        m_members.pop_back();
        return end_array();
    }

    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::json::exception& error) override
    {
        throw fileError("JsonNotWellFormed", {m_place.text(), std::uint64_t{position}, reasonOf(error)});
    }

private:
    bool scalar(JsonScalar scalar)
    {
        m_place.item();
        m_handler.scalar(m_place, std::move(scalar));
        return true;
    }

    JsonHandler& m_handler;
    JsonPlace m_place;
    std::vector<std::set<std::string>> m_members;  // of each open object
};

}  // namespace

void readJson(std::string_view text, const JsonLimits& limits, JsonHandler& handler)
{
    if (text.size() > limits.bytes) {
        throw fileError("JsonTooLarge", {std::uint64_t{limits.bytes}});
    }
    // The parser takes a zero for the end, whatever follows.
    const std::size_t zero = text.find('\0');
    if (zero != std::string_view::npos) {
        throw fileError("JsonNotWellFormed",
                        {std::string("/"), std::uint64_t{zero + 1}, std::string("a zero byte")});
    }
    const PlainNumbers plainNumbers;
    Reading reading(limits, handler);
    nlohmann::json::sax_parse(text.begin(), text.end(), &reading);
}

}  // namespace reference_host
