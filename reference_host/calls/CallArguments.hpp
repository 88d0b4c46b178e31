#pragma once

#include "host/Calls.hpp"
#include "reference_host/Export.hpp"

#include <concepts>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace reference_host {

// Lists as host/ passes them, to be described as [a, b].

struct SizeList {
    const std::size_t* sizes;
    std::size_t count;
};

struct NameList {
    const char* const* names;
    std::size_t count;
};

struct ValueList {
    const nvArray* const* values;
    int count;
};

// Arguments and results as the journal writes them. Other types have overloads in their own namespace, which
// are found by argument-dependent lookup.

ZM_REFHOST_API std::string describeArgument(const nvArray* value);
ZM_REFHOST_API std::string describeArgument(const zmsvDiagnostic* diagnostic);
ZM_REFHOST_API std::string describeArgument(const zmsvMessageId& id);
ZM_REFHOST_API std::string describeArgument(const char* text);
ZM_REFHOST_API std::string describeArgument(std::string_view text);
ZM_REFHOST_API std::string describeArgument(std::u16string_view text);
ZM_REFHOST_API std::string describeArgument(const std::vector<std::string>& texts);
ZM_REFHOST_API std::string describeArgument(const SizeList& list);
ZM_REFHOST_API std::string describeArgument(const NameList& list);
ZM_REFHOST_API std::string describeArgument(const ValueList& list);
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

/// Other owned things: only whether there is one, because addresses differ from run to run.
template <class Thing, class Deleter>
std::string describeArgument(const std::unique_ptr<Thing, Deleter>& thing)
{
    return thing ? "made" : "null";
}

}  // namespace reference_host
