#ifndef ZM_HOST_TEXT_HPP
#define ZM_HOST_TEXT_HPP

#include "host/Conventions.hpp"

#include <memory>
#include <string>

/// Converts between UTF-16 and one narrow encoding. Immutable; may be shared between threads.
class ZM_HOST_API zmsvTextConverter {
public:
    zmsvTextConverter(const zmsvTextConverter&) = delete;
    zmsvTextConverter& operator=(const zmsvTextConverter&) = delete;
    virtual ~zmsvTextConverter();

protected:
    zmsvTextConverter();
};

/// [owned] [throws] The converter for a named encoding. "UTF-8" is the one that every host has; a
/// name that the host does not know is a host error.
ZM_HOST_API std::unique_ptr<const zmsvTextConverter> makeTextConverter(const char* encodingName);

/// [throws] UTF-16 to UTF-8. An unpaired surrogate becomes U+FFFD.
ZM_HOST_API std::string toUtf8(const std::u16string& text);

/// [throws] UTF-16 to the converter's encoding.
ZM_HOST_API std::string toUtf8(const std::u16string& text, const zmsvTextConverter& converter);

/// [throws] Null-terminated UTF-8 to UTF-16. Each ill-formed sequence becomes U+FFFD.
ZM_HOST_API std::u16string toUtf16(const char* text);

/// [throws] The last component of a path, without directories; empty when the path ends in a
/// separator or is empty.
ZM_HOST_API std::u16string extractFileName(const std::u16string& path);

/// [throws] The path with the platform's separators. With `normalize`, also without "." parts,
/// doubled separators and ".." parts that can be resolved by the text alone.
ZM_HOST_API std::u16string makeNativeForm(const std::u16string& path, bool normalize);

#endif
