#include "reference_host/support/ErrorCatalog.hpp"

#include "reference_host/support/MessageCatalog.hpp"

#include <utility>

namespace reference_host {

ErrorCatalog::ErrorCatalog(const char* name, std::span<const CatalogMessage> messages) : m_name(name)
{
    for (const CatalogMessage& message : messages) {
        MessageCatalog::define(m_name, message.key, message.text);
    }
}

zmsvException ErrorCatalog::error(const char* key, std::vector<zmsvMessageArgument> arguments) const
{
    const zmsvMessageId id(m_name, key, std::move(arguments));
    return {id, MessageCatalog::text(id)};
}

}  // namespace reference_host
