#ifndef ZM_REFERENCE_HOST_SSP_JSON_DOCUMENT_HPP
#define ZM_REFERENCE_HOST_SSP_JSON_DOCUMENT_HPP

#include "reference_host/Export.hpp"
#include "reference_host/ssp/JsonReader.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// For sources of files/ alone: the header behind it is a long one.

namespace reference_host {

/// Members stay in the order of the text.
using Json = nlohmann::ordered_json;

/// A whole document in memory; refusals as `readJson` says.
ZM_REFHOST_API Json parseJson(std::string_view text, const JsonLimits& limits = {});

/// Text as JSON: a string, or {"units":[...]} where it is no well-formed UTF-16.
ZM_REFHOST_API Json textToJson(std::u16string_view text);

/// A value in a document and its place there. Each reader is strict: another kind of value is a host error
/// with the place ("/blocks/3/name: Expected: text."). Valid as long as the document stands as it is.
class ZM_REFHOST_API JsonView {
public:
    explicit JsonView(const Json& json) : m_json(&json) {}

    /// A value in a document that is being read, which has to stay at this place meanwhile.
    JsonView(const Json& json, const JsonPlace& place) : m_json(&json), m_outside(&place) {}

    const Json& json() const noexcept { return *m_json; }
    std::string place() const;

    /// Host error unless it is an object without members of other names.
    void requireOnly(std::initializer_list<const char*> names) const;

    /// A member of an object, which has to be there; `find` gives none for one that is not.
    JsonView member(const char* name) const;
    std::optional<JsonView> find(const char* name) const;

    /// The elements of an array.
    std::size_t count() const;
    JsonView element(std::size_t index) const;

    bool boolean() const;
    std::uint64_t unsignedInteger() const;
    double number() const;  ///< any number

    std::string string() const;    ///< of a plain string, UTF-8
    std::u16string text() const;   ///< in the form of `textToJson`
    std::string byteText() const;  ///< a string, or {"bytes":[...]} where it is no UTF-8

    /// Throws: another kind of value is expected here.
    [[noreturn]] void refuse(const char* expected) const;

private:
    JsonView inside(const Json& json, std::string_view name) const;

    const Json* m_json;
    const JsonPlace* m_outside = nullptr;
    std::string m_place = "/";  // inside the place outside
};

/// Puts a document together from what a `JsonHandler` hears.
class JsonTree {
public:
    void begin(Json container);  ///< an empty array or object
    void member(std::string name) { m_member = std::move(name); }
    void scalar(JsonScalar scalar);
    void end() { m_open.pop_back(); }

    bool isOpen() const noexcept { return !m_open.empty(); }
    Json take() { return std::exchange(m_root, Json()); }

private:
    Json* add(Json json);

    Json m_root;
    std::vector<Json*> m_open;  // from the outermost; only the innermost grows, so that they stay in place
    std::string m_member;
};

}  // namespace reference_host

#endif
