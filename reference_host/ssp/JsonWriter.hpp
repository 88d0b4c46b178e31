#ifndef ZM_REFERENCE_HOST_SSP_JSON_WRITER_HPP
#define ZM_REFERENCE_HOST_SSP_JSON_WRITER_HPP

#include "reference_host/Export.hpp"
#include "reference_host/ssp/JsonPlace.hpp"
#include "reference_host/ssp/JsonReader.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace reference_host {

/// Whether UTF-16 text has no half pair of surrogates, so that it can be a JSON string.
ZM_REFHOST_API bool isWellFormed(std::u16string_view text) noexcept;

/// Writes a document, value by value in its order, without white space; the same in every locale. What
/// `readJson` would refuse under the same limits is refused here.
class ZM_REFHOST_API JsonWriter {
public:
    explicit JsonWriter(const JsonLimits& limits = {}) : m_limits(limits), m_place(limits) {}

    void beginArray();
    void endArray();
    void beginObject();
    void endObject();

    /// The name of the member that follows; characters that need no escape.
    void member(std::string_view name);

    void null();
    void boolean(bool value);
    void integer(std::int64_t number);
    void unsignedInteger(std::uint64_t number);

    /// A finite number with a fraction or an exponent, the shortest that reads back the same.
    void real(double number);

    void string(std::string_view utf8);    ///< well-formed
    void text(std::u16string_view text);   ///< a string, or {"units":[...]} where not `isWellFormed`
    void byteText(std::string_view text);  ///< a string, or {"bytes":[...]} where it is no UTF-8

    /// Of the value that was begun last.
    const JsonPlace& place() const noexcept { return m_place; }

    /// The document.
    std::string take();

private:
    template <class Text>
    void unitsObject(const char* name, Text units);
    void beginItem();
    void append(std::string_view text) { m_text += text; }

    JsonLimits m_limits;
    JsonPlace m_place;
    std::string m_text;
};

}  // namespace reference_host

#endif
