#ifndef ZM_REFERENCE_HOST_SUPPORT_ERROR_CATALOG_HPP
#define ZM_REFERENCE_HOST_SUPPORT_ERROR_CATALOG_HPP

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"

#include <span>
#include <string>
#include <vector>

namespace reference_host {

/// One message of a catalog, with the text that `MessageCatalog` words it by.
struct CatalogMessage {
    const char* key;
    const char* text;
};

/// A catalog of host code's own errors and warnings. Its texts are known from when it is made.
class ZM_REFHOST_API ErrorCatalog {
public:
    ErrorCatalog(const char* name, std::span<const CatalogMessage> messages);

    /// A message of the catalog and its text; throw it, or report it as a warning.
    zmsvException error(const char* key, std::vector<zmsvMessageArgument> arguments) const;

private:
    std::string m_name;
};

}  // namespace reference_host

#endif
