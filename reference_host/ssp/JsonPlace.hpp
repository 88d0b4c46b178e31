#ifndef ZM_REFERENCE_HOST_SSP_JSON_PLACE_HPP
#define ZM_REFERENCE_HOST_SSP_JSON_PLACE_HPP

#include "reference_host/Export.hpp"
#include "reference_host/ssp/JsonReader.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// Where one stands in a document that is being read or written, from its beginning to its end, with an eye
/// on the limits: more items or a greater depth than they allow is a host error.
class ZM_REFHOST_API JsonPlace {
public:
    explicit JsonPlace(const JsonLimits& limits) : m_limits(limits) {}

    /// The next item begins: in an array the next element, in an object the value of its last `member`.
    void item();

    /// The item is an array, or an object; what follows is in it until `leave`.
    void enterArray();
    void enterObject();
    void member(std::string_view name);
    void leave();

    /// For errors: takes time in proportion to the depth. "/" for the document, "/values/3" for element 3
    /// (0-based) of its member "values".
    std::string text() const;

private:
    struct Level {
        bool isArray = false;
        std::size_t elements = 0;  // of an array, the one under way included
        std::string member;        // of an object, the one under way
    };

    void enter(bool isArray);

    JsonLimits m_limits;
    std::vector<Level> m_levels;
    std::size_t m_items = 0;
};

/// From the place of an array or object to that of an element or member in it.
void appendPlace(std::string& place, std::string_view member);

}  // namespace reference_host

#endif
