#include "reference_host/support/CallSite.hpp"

#include <dlfcn.h>

#include <boost/core/demangle.hpp>

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace reference_host {

namespace {

// Every boundary operation accesses it; this TLS model makes that cheap in a shared object.
[[gnu::tls_model("initial-exec")]] thread_local CallSite callUnderWay;

std::string hexadecimal(std::uintptr_t number)
{
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    return "0x" + std::string(digits.data(), end);
}

/// "zm_hmi::f (libx.so+0x12ab)"; without the name where the library hides it.
std::string codeAt(const void* address)
{
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        return hexadecimal(reinterpret_cast<std::uintptr_t>(address));
    }
    std::string_view file = info.dli_fname;
    file.remove_prefix(file.rfind('/') + 1);  // from the start where there is none: npos + 1 is 0
    const std::uintptr_t offset =
        reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(info.dli_fbase);
    const std::string place = std::string(file) + "+" + hexadecimal(offset);
    return info.dli_sname != nullptr ? boost::core::demangle(info.dli_sname) + " (" + place + ")" : place;
}

}  // namespace

CallSite CallSite::current() noexcept
{
    return callUnderWay;
}

CallSite CallSite::enter(CallSite site) noexcept
{
    const CallSite outer = callUnderWay;
    callUnderWay = site;
    return outer;
}

void CallSite::leave(CallSite outer) noexcept
{
    callUnderWay = outer;
}

std::string describeCallSite(const CallSite& site)
{
    const std::string operation = site.operationName();
    return site.caller != nullptr ? operation + ", called from " + codeAt(site.caller) : operation;
}

}  // namespace reference_host
