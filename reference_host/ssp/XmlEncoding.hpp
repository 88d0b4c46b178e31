#ifndef ZM_REFERENCE_HOST_SSP_XML_ENCODING_HPP
#define ZM_REFERENCE_HOST_SSP_XML_ENCODING_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace reference_host {

/// The place of the first surrogate without its other half; npos when there is none.
std::size_t loneSurrogate(const std::u16string& text) noexcept;

/// A document as UTF-8. XML says how to tell its encoding; known are UTF-8, UTF-16, ISO-8859-1 and US-ASCII.
/// A document in another one, or in UTF-16 that is ill-formed, is a host error ("NotWellFormed"). It is our
/// own work because the parser takes lone surrogates, and is less strict with names in the other encodings.
///
/// Gives the document itself where it is UTF-8 already; otherwise the text is kept in `buffer`, and its
/// declaration names UTF-8.
std::string_view asUtf8(std::string_view document, std::string& buffer);

/// Has the declaration of a document in UTF-8 name that encoding, if it names any.
void declareUtf8(std::string& document);

}  // namespace reference_host

#endif
