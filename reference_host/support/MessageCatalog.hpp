#ifndef ZM_REFERENCE_HOST_SUPPORT_MESSAGE_CATALOG_HPP
#define ZM_REFERENCE_HOST_SUPPORT_MESSAGE_CATALOG_HPP

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"

#include <string>

namespace reference_host {

/// The texts of all messages, by catalog and key. A text refers to its arguments as {0}, {1} ...
class ZM_REFHOST_API MessageCatalog {
public:
    /// Adds a text or changes it.
    static void define(const std::string& catalog, const std::string& key, std::string text);

    /// The text with its arguments filled in, the same in every locale. A message that no catalog has
    /// reads "catalog:key (argument, argument)"; a placeholder without an argument stays as it is.
    static std::string text(const zmsvMessageId& id);
};

/// An argument as texts show it: doubles in the shortest form that reads back the same.
ZM_REFHOST_API std::string argumentText(const zmsvMessageArgument& argument);

}  // namespace reference_host

#endif
