#ifndef ZM_REFERENCE_HOST_SSP_JSON_READER_HPP
#define ZM_REFERENCE_HOST_SSP_JSON_READER_HPP

#include "reference_host/Export.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace reference_host {

class JsonPlace;

/// What a JSON document may demand of us.
struct JsonLimits {
    std::size_t bytes = std::size_t{512} << 20U;
    std::size_t depth = 4000;                   ///< of arrays and objects; a struct in a value takes three
    std::size_t items = std::size_t{1} << 25U;  ///< arrays, objects and all that stands in them
};

/// What is neither an array nor an object. An integer is unsigned when it has no sign; with a fraction or an
/// exponent, or too long for 64 bits, a number is a double.
using JsonScalar = std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string>;

/// Hears of a document as it is read. The place is that of the value in question. What a function throws
/// ends the reading.
class ZM_REFHOST_API JsonHandler {
public:
    JsonHandler() = default;
    JsonHandler(const JsonHandler&) = delete;
    JsonHandler& operator=(const JsonHandler&) = delete;
    virtual ~JsonHandler();

    virtual void scalar(const JsonPlace& place, JsonScalar scalar) = 0;
    virtual void beginArray(const JsonPlace& place) = 0;
    virtual void beginObject(const JsonPlace& place) = 0;
    /// The name of the member that follows.
    virtual void member(const JsonPlace& place, std::string name) = 0;
    /// Of the array or object that was begun last.
    virtual void end(const JsonPlace& place) = 0;
};

/// Reads a document, UTF-8, the same in every locale. What is not JSON to the letter (comments, NaN, bytes
/// that are no UTF-8, half a pair of surrogates, text after the end), a member that occurs twice in its
/// object, and what goes past the limits is a host error with the reason and the place ("/values/3/0").
/// Takes no more of the stack for deep documents than for flat ones.
ZM_REFHOST_API void readJson(std::string_view text, const JsonLimits& limits, JsonHandler& handler);

}  // namespace reference_host

#endif
