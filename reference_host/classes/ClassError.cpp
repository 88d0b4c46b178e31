#include "reference_host/classes/ClassError.hpp"

#include <utility>

namespace reference_host {

void throwClassError(const char* key, const std::string& text, std::vector<zmsvMessageArgument> arguments)
{
    throw zmsvException(zmsvMessageId("reference_host:classes", key, std::move(arguments)), text);
}

}  // namespace reference_host
