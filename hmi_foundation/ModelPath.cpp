#include "hmi_foundation/ModelPath.hpp"

#include "host/Text.hpp"

namespace zm_hmi_foundation {

namespace {

constexpr const char16_t* pathSeparator = u"/";
constexpr const char* zidSeparator = ":";

// At least one character must follow the prefix: "model/" and "model" are returned unchanged.
template <class Text>
Text removePrefix(const Text& text, const Text& prefix)
{
    if (text.size() > prefix.size() && text.starts_with(prefix)) {
        return text.substr(prefix.size());
    }
    return text;
}

template <class Text>
Text addPrefix(const Text& text, const Text& modelName, const typename Text::value_type* separator)
{
    if (text.empty() || modelName.empty()) {
        return text;
    }
    return modelName + separator + text;
}

}  // namespace

std::u16string RemoveModelFromPath(const std::u16string& path, const std::u16string& modelName)
{
    return removePrefix(path, modelName + pathSeparator);
}

std::u16string AddModelToPath(const std::u16string& path, const std::u16string& modelName)
{
    return addPrefix(path, modelName, pathSeparator);
}

std::string RemoveModelFromZID(const std::string& zid, const std::u16string& modelName)
{
    return removePrefix(zid, toUtf8(modelName) + zidSeparator);
}

std::string AddModelToZID(const std::string& zid, const std::u16string& modelName)
{
    return addPrefix(zid, toUtf8(modelName), zidSeparator);
}

}  // namespace zm_hmi_foundation
