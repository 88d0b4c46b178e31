#ifndef ZM_REFERENCE_HOST_CALLS_CALL_ARGUMENTS_HPP
#define ZM_REFERENCE_HOST_CALLS_CALL_ARGUMENTS_HPP

#include "host/Calls.hpp"
#include "reference_host/Export.hpp"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace reference_host {

// Arguments and results as the journal writes them. More overloads may stand beside a type, in
// whatever namespace it lives in: they are found by argument-dependent lookup.

ZM_REFHOST_API std::string describeArgument(const nvArray* value);
ZM_REFHOST_API std::string describeArgument(const zmsvDiagnostic* diagnostic);
ZM_REFHOST_API std::string describeArgument(const zmsvMessageId& id);
ZM_REFHOST_API std::string describeArgument(const char* text);
ZM_REFHOST_API std::string describeArgument(std::string_view text);
ZM_REFHOST_API std::string describeArgument(std::u16string_view text);
ZM_REFHOST_API std::string describeArgument(const void* address);
ZM_REFHOST_API std::string describeArgument(double number);
ZM_REFHOST_API std::string describeArgument(bool flag);

template <std::integral Integer>
std::string describeArgument(Integer number)
{
    return std::to_string(number);
}

template <class Enum>
    requires std::is_enum_v<Enum>
std::string describeArgument(Enum value)
{
    return std::to_string(static_cast<long long>(value));
}

}  // namespace reference_host

#endif
