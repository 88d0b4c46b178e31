#include "reference_host/ssp/JsonDocument.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/JsonPlace.hpp"
#include "reference_host/ssp/JsonWriter.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <type_traits>
#include <variant>

namespace reference_host {

namespace {

class TreeReading : public JsonHandler {
public:
    void scalar(const JsonPlace&, JsonScalar scalar) override { m_tree.scalar(std::move(scalar)); }
    void beginArray(const JsonPlace&) override { m_tree.begin(Json::array()); }
    void beginObject(const JsonPlace&) override { m_tree.begin(Json::object()); }
    void member(const JsonPlace&, std::string name) override { m_tree.member(std::move(name)); }
    void end(const JsonPlace&) override { m_tree.end(); }

    Json take() { return m_tree.take(); }

private:
    JsonTree m_tree;
};

/// The units of text that cannot stand as a string, in an array.
template <class Text>
Text unitsOf(const JsonView& units)
{
    using Unit = typename Text::value_type;
    constexpr std::uint64_t largest = std::numeric_limits<std::make_unsigned_t<Unit>>::max();
    Text text;
    text.reserve(units.count());
    for (const Json& unit : units.json()) {
        if (!unit.is_number_unsigned() || unit.get<std::uint64_t>() > largest) {
            units.element(text.size()).refuse(sizeof(Unit) == 1 ? "a byte" : "a UTF-16 code unit");
        }
        text.push_back(static_cast<Unit>(unit.get<std::uint64_t>()));
    }
    return text;
}

}  // namespace

Json parseJson(std::string_view text, const JsonLimits& limits)
{
    TreeReading reading;
    readJson(text, limits, reading);
    return reading.take();
}

Json textToJson(std::u16string_view text)
{
    if (isWellFormed(text)) {
        return utf8FromUtf16(text);
    }
    Json units = Json::array();
    for (const char16_t unit : text) {
        units.push_back(std::uint64_t{unit});
    }
    return {{"units", std::move(units)}};
}

std::string JsonView::place() const
{
    const std::string outside = m_outside != nullptr ? m_outside->text() : "/";
    if (outside == "/") {
        return m_place;
    }
    return m_place == "/" ? outside : outside + m_place;
}

JsonView JsonView::inside(const Json& json, std::string_view name) const
{
    JsonView view = *this;
    view.m_json = &json;
    appendPlace(view.m_place, name);
    return view;
}

void JsonView::requireOnly(std::initializer_list<const char*> names) const
{
    if (!m_json->is_object()) {
        refuse("an object");
    }
    for (const auto& [name, value] : m_json->items()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            throw fileError("JsonUnknownMember", {inside(value, name).place()});
        }
    }
}

JsonView JsonView::member(const char* name) const
{
    std::optional<JsonView> found = find(name);
    if (!found) {
        throw fileError("JsonMemberMissing", {place(), std::string(name)});
    }
    return *std::move(found);
}

std::optional<JsonView> JsonView::find(const char* name) const
{
    if (!m_json->is_object()) {
        refuse("an object");
    }
    const auto found = m_json->find(name);
    if (found == m_json->end()) {
        return std::nullopt;
    }
    return inside(*found, name);
}

std::size_t JsonView::count() const
{
    if (!m_json->is_array()) {
        refuse("an array");
    }
    return m_json->size();
}

JsonView JsonView::element(std::size_t index) const
{
    if (index >= count()) {
        throw fileError("JsonWrongCount", {place(), std::uint64_t{count()}, std::uint64_t{index + 1}});
    }
    return inside((*m_json)[index], std::to_string(index));
}

bool JsonView::boolean() const
{
    if (!m_json->is_boolean()) {
        refuse("true or false");
    }
    return m_json->get<bool>();
}

std::uint64_t JsonView::unsignedInteger() const
{
    if (!m_json->is_number_unsigned()) {
        refuse("an integer that is not negative");
    }
    return m_json->get<std::uint64_t>();
}

double JsonView::number() const
{
    if (!m_json->is_number()) {
        refuse("a number");
    }
    return m_json->get<double>();
}

std::string JsonView::string() const
{
    if (!m_json->is_string()) {
        refuse("text");
    }
    return m_json->get<std::string>();
}

std::u16string JsonView::text() const
{
    if (!m_json->is_object()) {
        return utf16FromUtf8(string());
    }
    requireOnly({"units"});
    return unitsOf<std::u16string>(member("units"));
}

std::string JsonView::byteText() const
{
    if (!m_json->is_object()) {
        return string();
    }
    requireOnly({"bytes"});
    return unitsOf<std::string>(member("bytes"));
}

void JsonView::refuse(const char* expected) const
{
    throw fileError("JsonUnexpected", {place(), std::string(expected)});
}

void JsonTree::begin(Json container)
{
    m_open.push_back(add(std::move(container)));
}

void JsonTree::scalar(JsonScalar scalar)
{
    std::visit([this](auto&& content) { add(Json(std::forward<decltype(content)>(content))); },
               std::move(scalar));
}

Json* JsonTree::add(Json json)
{
    if (m_open.empty()) {
        m_root = std::move(json);
        return &m_root;
    }
    Json& container = *m_open.back();
    if (container.is_array()) {
        container.push_back(std::move(json));
        return &container.back();
    }
    // Appended without a search: the reader lets no member occur twice.
    auto& members = container.get_ref<Json::object_t&>();
    members.emplace_back(std::move(m_member), std::move(json));
    return &members.back().second;
}

}  // namespace reference_host
