#ifndef ZM_REFERENCE_HOST_SSP_JSON_DOCUMENT_HPP
#define ZM_REFERENCE_HOST_SSP_JSON_DOCUMENT_HPP

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/ssp/JsonLimits.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// nlohmann-json with what our files need beyond it: limits, members that occur once, and errors with a place.
// For sources of ssp/ alone: the header behind it is a long one.

namespace reference_host {

/// Members keep the order of the text.
using Json = nlohmann::ordered_json;

/// Takes one element of an array of elements, with its index.
using JsonElementHandler = std::function<void(std::size_t index, Json element)>;

/// Reads a document, UTF-8, the same in every locale. With `take`, the elements of a document that is an
/// array are handed over one by one instead of being kept, and `limits.items` holds for each of them.
///
/// Text that is not strictly JSON (comments, NaN, invalid UTF-8, a lone surrogate, text after the end), a
/// member that occurs twice, and text past the limits are host errors with the reason and the JSON Pointer.
ZM_REFHOST_API Json parseJson(std::string_view text, const JsonLimits& limits = {},
                              const JsonElementHandler& take = nullptr);

/// The text of a document. Host error if the limits would keep it from being read; without limits, those for
/// the length of the text.
ZM_REFHOST_API std::string writeJson(const Json& document,
                                     const std::optional<JsonLimits>& limits = std::nullopt);

/// Text as JSON: a string, or {"units":[...]} where it is not well-formed UTF-16. The narrow form is for text
/// that may be any bytes: {"bytes":[...]} where it is not UTF-8.
ZM_REFHOST_API Json textToJson(std::u16string_view text);
ZM_REFHOST_API Json byteTextToJson(const std::string& text);

// ---- reading a document: each function refuses an item of another kind ---------------------------------

/// Refuses an item of the document: something else is expected there ("a number").
[[noreturn]] ZM_REFHOST_API void refuseJson(const Json& item, std::string expected);
/// The same of a member that an object does not have.
[[noreturn]] ZM_REFHOST_API void refuseMissing(const Json& object, std::string member, std::string expected);
/// Refuses an array or text with another number of elements.
ZM_REFHOST_API void requireCount(const Json& item, std::size_t count, std::size_t wanted);

ZM_REFHOST_API void requireOnly(const Json& object, std::initializer_list<const char*> members);
ZM_REFHOST_API const Json* findMember(const Json& object, const char* name);  ///< null if there is none
ZM_REFHOST_API const Json& member(const Json& object, const char* name);
ZM_REFHOST_API const Json& arrayIn(const Json& item);
ZM_REFHOST_API std::uint64_t unsignedIn(const Json& item);
ZM_REFHOST_API const std::string& stringIn(const Json& item);
ZM_REFHOST_API std::u16string textIn(const Json& item);   ///< in the form of `textToJson`
ZM_REFHOST_API std::string byteTextIn(const Json& item);  ///< in the form of `byteTextToJson`

/// What the functions above throw; only the item is known where it is thrown.
struct JsonRefusal {
    const Json* item;
    std::string member;  ///< of the item, if it is not the item itself
    const char* key;     ///< in the catalog of files; its first argument is the place
    std::vector<zmsvMessageArgument> arguments;
};

/// The refusal as a host error, with the JSON Pointer of the item: `place` followed by the item's place in
/// `root`. REQUIRES: the item is in `root`.
ZM_REFHOST_API zmsvException jsonError(const JsonRefusal& refusal, const Json& root,
                                       const std::string& place);

/// Does work with a document, or with a part of one that is at `place`; refusals leave it as host errors.
template <class Work>
auto readingJson(const Json& root, const std::string& place, const Work& work)
{
    try {
        return work();
    } catch (const JsonRefusal& refusal) {
        throw jsonError(refusal, root, place);
    }
}

}  // namespace reference_host

#endif
