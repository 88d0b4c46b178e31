#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/JsonPlace.hpp"
#include "reference_host/ssp/KnownLeaves.hpp"
#include "reference_host/ssp/ValueJson.hpp"
#include "reference_host/ssp/ValueObject.hpp"

#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

namespace reference_host {

namespace {

/// Makes each value as soon as its text has been read: of a large struct array nothing is in memory twice.
class ValueReading : public JsonHandler {
public:
    void scalar(const JsonPlace& place, JsonScalar scalar) override
    {
        if (isInMember()) {
            m_tree.scalar(std::move(scalar));
            finishMember(place);
        } else {
            add(std::visit([&](auto& content) { return leaf(content, place); }, scalar));
        }
    }

    void beginArray(const JsonPlace& place) override
    {
        if (isInMember()) {
            if (m_tree.isOpen() || m_member != "values") {
                m_tree.begin(Json::array());
            } else {
                enterValues();
            }
        } else if (!m_objects.empty() && m_levels.back() == Level::AllValues) {
            m_objects.back().fields.emplace_back();
            m_levels.push_back(Level::Field);
        } else {
            refuse(place);
        }
    }

    void beginObject(const JsonPlace&) override
    {
        if (isInMember()) {
            m_tree.begin(Json::object());
        } else {
            m_objects.emplace_back();
            m_levels.push_back(Level::Object);
        }
    }

    void member(const JsonPlace&, std::string name) override
    {
        if (m_tree.isOpen()) {
            m_tree.member(std::move(name));
        } else {
            m_member = std::move(name);
        }
    }

    void end(const JsonPlace& place) override
    {
        if (m_tree.isOpen()) {
            m_tree.end();
            finishMember(place);
            return;
        }
        const Level level = m_levels.back();
        m_levels.pop_back();
        if (level == Level::Object) {
            ValueObject content = std::move(m_objects.back());
            m_objects.pop_back();
            add(valueOf(std::move(content), place));
        }
    }

    OwnedValue take() { return std::move(m_value); }

private:
    enum class Level : std::uint8_t { Object, AllValues, Field };

    /// In a member of an object, but for the values of "values".
    bool isInMember() const { return !m_levels.empty() && m_levels.back() == Level::Object; }

    void finishMember(const JsonPlace& place)
    {
        if (m_tree.isOpen()) {
            return;
        }
        if (m_member == "values") {
            throw fileError("JsonUnexpected", {place.text(), std::string("an array")});
        }
        addMember(m_tree.take());
    }

    void enterValues()
    {
        addMember(nullptr);
        m_levels.push_back(Level::AllValues);
    }

    /// Without a search: the reader lets no member occur twice.
    void addMember(Json json)
    {
        m_objects.back().members.get_ref<Json::object_t&>().emplace_back(m_member, std::move(json));
    }

    void add(OwnedValue value)
    {
        if (m_levels.empty()) {
            m_value = std::move(value);
        } else if (m_levels.back() == Level::AllValues) {
            m_objects.back().values.push_back(std::move(value));
        } else {
            m_objects.back().fields.back().push_back(std::move(value));
        }
    }

    OwnedValue leaf(std::nullptr_t, const JsonPlace&) { return nullptr; }
    OwnedValue leaf(bool value, const JsonPlace&) { return m_leaves.logical(value); }
    OwnedValue leaf(double number, const JsonPlace&) { return m_leaves.number(number); }
    OwnedValue leaf(const std::string& text, const JsonPlace&) { return m_leaves.text(text); }
    OwnedValue leaf(std::int64_t, const JsonPlace& place) { refuse(place); }
    OwnedValue leaf(std::uint64_t, const JsonPlace& place) { refuse(place); }

    [[noreturn]] static void refuse(const JsonPlace& place)
    {
        throw fileError("JsonUnexpected",
                        {place.text(), std::string("a value (a double has a fraction or an exponent)")});
    }

    std::vector<Level> m_levels;
    std::vector<ValueObject> m_objects;
    std::string m_member;  // of the innermost object
    JsonTree m_tree;       // of a member that is under way
    KnownLeaves m_leaves;
    OwnedValue m_value;
};

}  // namespace

OwnedValue valueFromJson(std::string_view json, const JsonLimits& limits)
{
    ValueReading reading;
    readJson(json, limits, reading);
    return reading.take();
}

}  // namespace reference_host
