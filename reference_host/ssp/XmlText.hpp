#ifndef ZM_REFERENCE_HOST_SSP_XML_TEXT_HPP
#define ZM_REFERENCE_HOST_SSP_XML_TEXT_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// Appends a name as the value of an attribute, for either kind of quotes. A name with a character that XML
/// cannot hold is a host error ("UnwritableName").
void appendAttributeValue(std::string& out, const std::u16string& name);

/// The place of one attribute in a document.
struct XmlAttributePlace {
    std::size_t begin;  ///< of its name
    std::size_t nameEnd;
    std::size_t valueBegin;  ///< after the opening quote
    std::size_t valueEnd;    ///< of the closing quote
};

/// The attributes of a well-formed tag that begins there, in order. `end` is set to where a further one
/// could stand: behind the last, or behind the element's name.
std::vector<XmlAttributePlace> attributePlaces(std::string_view document, std::size_t tag, std::size_t& end);

/// Where the white space before a place begins.
std::size_t beginOfSpaceBefore(std::string_view document, std::size_t place) noexcept;

}  // namespace reference_host

#endif
