#ifndef ZM_REFERENCE_HOST_CLASSES_CLASS_ERROR_HPP
#define ZM_REFERENCE_HOST_CLASSES_CLASS_ERROR_HPP

#include "host/Exceptions.hpp"

#include <string>
#include <vector>

namespace reference_host {

/// Throws a host error of the class system: catalog "reference_host:classes", this key and text. The
/// arguments are what the text names, for whoever handles the error.
[[noreturn]] void throwClassError(const char* key, const std::string& text,
                                  std::vector<zmsvMessageArgument> arguments = {});

}  // namespace reference_host

#endif
