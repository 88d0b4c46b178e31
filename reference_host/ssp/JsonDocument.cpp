#include "reference_host/ssp/JsonDocument.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/support/QuotedText.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <clocale>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace reference_host {

namespace {

constexpr std::size_t longestName = 64;

/// Numbers as in C for this thread. The parser knows decimal commas, but not the decimal points of more than
/// one byte that some locales have.
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

/// Appends a reference token to a JSON Pointer. "/" is the pointer to the whole document in messages.
void appendPlace(std::string& place, const std::string& token)
{
    const std::string shown = token.size() <= longestName ? token : quotedText(token);
    const std::string step = (Json::json_pointer() / shown).to_string();  // escapes "~" and "/"
    place = place == "/" ? step : place + step;
}

/// The parser's reason, without the text that it has read: that may be long, and need not be UTF-8.
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

/// Builds a document from what the parser finds, and checks what the parser does not.
class Builder : public nlohmann::json_sax<Json> {
public:
    Builder(const JsonLimits& limits, const JsonElementHandler& take) : m_limits(limits), m_take(take) {}

    Json take() { return std::move(m_root); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(std::int64_t number) override { return add(number); }
    bool number_unsigned(std::uint64_t number) override { return add(number); }
    bool number_float(double number, const std::string&) override { return add(number); }
    bool string(std::string& text) override { return add(std::move(text)); }
    bool binary(Json::binary_t&) override { return false; }  // JSON text has none
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool end_array() override { return close(); }
    bool end_object() override { return close(); }

    bool key(std::string& name) override
    {
        auto& members = m_open.back()->get_ref<Json::object_t&>();
        m_key = std::move(name);
        m_hasKey = true;
        if (members.size() >= m_limits.members) {
            throw fileError("JsonTooManyItems", {place(), std::uint64_t{m_limits.members}});
        }
        if (members.find(m_key) != members.end()) {
            throw fileError("JsonMemberTwice", {place()});
        }
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const Json::exception& error) override
    {
        throw fileError("JsonNotWellFormed", {place(), std::uint64_t{position}, reasonOf(error)});
    }

private:
    bool streams() const { return m_take && !m_open.empty() && m_open.front()->is_array(); }

    bool open(Json container)
    {
        if (m_open.size() >= m_limits.depth) {
            throw fileError("JsonTooDeep", {std::uint64_t{m_limits.depth}});
        }
        m_open.push_back(&put(std::move(container)));
        return true;
    }

    bool close()
    {
        m_open.pop_back();
        m_hasKey = false;
        return complete();
    }

    bool add(Json item)
    {
        put(std::move(item));
        return complete();
    }

    Json& put(Json item)
    {
        if (++m_items > m_limits.items) {
            throw fileError("JsonTooManyItems", {place(), std::uint64_t{m_limits.items}});
        }
        if (m_open.empty()) {
            m_root = std::move(item);
            return m_root;
        }
        Json& container = *m_open.back();
        if (container.is_array()) {
            container.push_back(std::move(item));
            return container.back();
        }
        auto& members = container.get_ref<Json::object_t&>();
        members.emplace_back(std::move(m_key), std::move(item));  // `key` has searched
        m_hasKey = false;
        return members.back().second;
    }

    /// Hands the element over that is complete now, if it is one.
    bool complete()
    {
        if (m_open.size() == 1 && streams()) {
            Json element = std::move(m_root.back());
            m_root.get_ref<Json::array_t&>().clear();
            m_items = 0;
            m_take(m_taken++, std::move(element));
        }
        return true;
    }

    /// Of the item that comes next.
    std::string place() const
    {
        std::string place = "/";
        for (std::size_t level = 0; level < m_open.size(); ++level) {
            const Json& container = *m_open[level];
            const bool isLast = level + 1 == m_open.size();
            if (container.is_array()) {
                const std::size_t before = container.size() + (level == 0 ? m_taken : 0);
                appendPlace(place, std::to_string(isLast ? before : before - 1));
            } else if (isLast ? m_hasKey : !container.empty()) {
                appendPlace(place, isLast ? m_key : container.get_ref<const Json::object_t&>().back().first);
            }
        }
        return place;
    }

    const JsonLimits& m_limits;
    const JsonElementHandler& m_take;
    Json m_root;
    std::vector<Json*> m_open;  // from the outermost; only the innermost grows, so that they stay in place
    std::string m_key;
    bool m_hasKey = false;
    std::size_t m_items = 0;
    std::size_t m_taken = 0;
};

/// Checks the depth and returns the number of items.
std::size_t itemsOf(const Json& item, const JsonLimits& limits, std::size_t depth)
{
    if (item.is_structured() && depth >= limits.depth) {
        throw fileError("JsonTooDeep", {std::uint64_t{limits.depth}});
    }
    std::size_t items = 1;
    if (item.is_structured()) {
        for (const Json& element : item) {
            items += itemsOf(element, limits, depth + 1);
        }
    }
    return items;
}

/// Appends the place of an item below `from`; false if it is not there.
bool findPlace(const Json& from, const Json* wanted, std::string& place)
{
    if (&from == wanted) {
        return true;
    }
    if (!from.is_structured()) {
        return false;
    }
    std::size_t index = 0;
    for (auto it = from.begin(); it != from.end(); ++it, ++index) {
        std::string inside = place;
        if (it->is_structured() || &*it == wanted) {
            appendPlace(inside, from.is_object() ? it.key() : std::to_string(index));
            if (findPlace(*it, wanted, inside)) {
                place = std::move(inside);
                return true;
            }
        }
    }
    return false;
}

std::string kindOf(const Json& item)
{
    switch (item.type()) {
        case Json::value_t::null:
            return "nothing";
        case Json::value_t::object:
            return "an object";
        case Json::value_t::array:
            return "an array";
        case Json::value_t::string:
            return "text";
        case Json::value_t::boolean:
            return "true or false";
        default:
            return "the number " + item.dump();
    }
}

template <class Text>
Json unitsToJson(const char* name, const Text& text)
{
    Json units = Json::array();
    for (const auto unit : text) {
        units.push_back(static_cast<std::make_unsigned_t<std::remove_const_t<decltype(unit)>>>(unit));
    }
    return {{name, std::move(units)}};
}

/// Text that is not a string: its units in an array.
template <class Text>
Text unitsIn(const Json& object, const char* name, const char* expected)
{
    using Unit = typename Text::value_type;
    constexpr std::uint64_t largest = std::numeric_limits<std::make_unsigned_t<Unit>>::max();
    requireOnly(object, {name});
    Text text;
    for (const Json& unit : arrayIn(member(object, name))) {
        if (!unit.is_number_unsigned() || unit.get<std::uint64_t>() > largest) {
            refuseJson(unit, expected);
        }
        text.push_back(static_cast<Unit>(unit.get<std::uint64_t>()));
    }
    return text;
}

const Json& objectIn(const Json& item)
{
    if (!item.is_object()) {
        refuseJson(item, "an object");
    }
    return item;
}

}  // namespace

Json parseJson(std::string_view text, const JsonLimits& limits, const JsonElementHandler& take)
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
    Builder builder(limits, take);
    Json::sax_parse(text.begin(), text.end(), &builder);
    return builder.take();
}

std::string writeJson(const Json& document, const std::optional<JsonLimits>& given)
{
    std::string text;
    try {
        text = document.dump();
    } catch (const Json::exception& error) {
        throw fileError("JsonUnwritable", {reasonOf(error)});
    }
    const JsonLimits limits = given.value_or(jsonLimitsFor(text.size()));
    if (itemsOf(document, limits, 0) > limits.items) {
        throw fileError("JsonTooManyItems", {std::string("/"), std::uint64_t{limits.items}});
    }
    if (text.size() > limits.bytes) {
        throw fileError("JsonTooLarge", {std::uint64_t{limits.bytes}});
    }
    return text;
}

Json textToJson(std::u16string_view text)
{
    std::string utf8 = utf8FromUtf16(text);
    const bool mayBeChanged = utf8.find("\uFFFD") != std::string::npos;  // what a lone surrogate becomes
    return mayBeChanged && utf16FromUtf8(utf8) != text ? unitsToJson("units", text) : Json(std::move(utf8));
}

Json byteTextToJson(const std::string& text)
{
    return utf8FromUtf16(utf16FromUtf8(text)) == text ? Json(text) : unitsToJson("bytes", text);
}

void refuseJson(const Json& item, std::string expected)
{
    throw JsonRefusal{&item, {}, "JsonUnexpected", {std::move(expected), kindOf(item)}};
}

void refuseMissing(const Json& object, std::string member, std::string expected)
{
    throw JsonRefusal{
        &object, std::move(member), "JsonUnexpected", {std::move(expected), std::string("nothing")}};
}

void requireCount(const Json& item, std::size_t count, std::size_t wanted)
{
    if (count != wanted) {
        throw JsonRefusal{&item, {}, "JsonWrongCount", {std::uint64_t{wanted}, std::uint64_t{count}}};
    }
}

void requireOnly(const Json& object, std::initializer_list<const char*> members)
{
    for (const auto& [name, value] : objectIn(object).get_ref<const Json::object_t&>()) {
        if (std::ranges::find(members, name) == members.end()) {
            throw JsonRefusal{&value, {}, "JsonUnknownMember", {}};
        }
    }
}

const Json* findMember(const Json& object, const char* name)
{
    const auto found = objectIn(object).find(name);
    return found != object.end() ? &*found : nullptr;
}

const Json& member(const Json& object, const char* name)
{
    const Json* const found = findMember(object, name);
    if (found == nullptr) {
        throw JsonRefusal{&object, {}, "JsonMemberMissing", {std::string(name)}};
    }
    return *found;
}

const Json& arrayIn(const Json& item)
{
    if (!item.is_array()) {
        refuseJson(item, "an array");
    }
    return item;
}

std::uint64_t unsignedIn(const Json& item)
{
    if (!item.is_number_unsigned()) {
        refuseJson(item, "an integer that is not negative");
    }
    return item.get<std::uint64_t>();
}

const std::string& stringIn(const Json& item)
{
    if (!item.is_string()) {
        refuseJson(item, "text");
    }
    return item.get_ref<const std::string&>();
}

std::u16string textIn(const Json& item)
{
    return item.is_object() ? unitsIn<std::u16string>(item, "units", "a UTF-16 code unit")
                            : utf16FromUtf8(stringIn(item));
}

std::string byteTextIn(const Json& item)
{
    return item.is_object() ? unitsIn<std::string>(item, "bytes", "a byte") : stringIn(item);
}

zmsvException jsonError(const JsonRefusal& refusal, const Json& root, const std::string& place)
{
    std::string whole = place;
    findPlace(root, refusal.item, whole);
    if (!refusal.member.empty()) {
        appendPlace(whole, refusal.member);
    }
    std::vector<zmsvMessageArgument> arguments{std::move(whole)};
    arguments.insert(arguments.end(), refusal.arguments.begin(), refusal.arguments.end());
    return fileError(refusal.key, std::move(arguments));
}

}  // namespace reference_host
