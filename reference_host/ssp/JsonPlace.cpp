#include "reference_host/ssp/JsonPlace.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/support/QuotedText.hpp"

#include <cstdint>

namespace reference_host {

namespace {

constexpr std::size_t longestName = 64;

}  // namespace

void JsonPlace::item()
{
    if (!m_levels.empty() && m_levels.back().isArray) {
        ++m_levels.back().elements;
    }
    if (++m_items > m_limits.items) {
        throw fileError("JsonTooManyItems", {text(), std::uint64_t{m_limits.items}});
    }
}

void JsonPlace::enterArray()
{
    enter(true);
}

void JsonPlace::enterObject()
{
    enter(false);
}

void JsonPlace::enter(bool isArray)
{
    if (m_levels.size() >= m_limits.depth) {
        throw fileError("JsonTooDeep", {std::uint64_t{m_limits.depth}});
    }
    m_levels.push_back({isArray, 0, {}});
}

void JsonPlace::member(std::string_view name)
{
    m_levels.back().member = name;
}

void JsonPlace::leave()
{
    m_levels.pop_back();
}

std::string JsonPlace::text() const
{
    std::string place = "/";
    for (const Level& level : m_levels) {
        if (level.isArray && level.elements > 0) {
            appendPlace(place, std::to_string(level.elements - 1));
        } else if (!level.isArray && !level.member.empty()) {
            appendPlace(place, level.member);
        }
    }
    return place;
}

void appendPlace(std::string& place, std::string_view member)
{
    if (place != "/") {
        place += '/';
    }
    place += member.size() <= longestName ? std::string(member) : quotedText(member);
}

}  // namespace reference_host
