#include "reference_host/classes/Interning.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/DescribeClassArguments.hpp"

#include <string>
#include <unordered_set>

namespace reference_host {

nvcos::internal::Interned intern(const char* name)
{
    // Never destroyed: names are good until the process has ended.
    static auto* const names = new std::unordered_set<std::string>;
    return name != nullptr ? nvcos::internal::Interned(names->emplace(name).first->c_str())
                           : nvcos::internal::Interned();
}

}  // namespace reference_host

nvcos::internal::Interned nvcos::internal::makeInterned(const char* name)
{
    return reference_host::BoundaryCall({"makeInterned"}, name).run([&] {
        return reference_host::intern(name);
    });
}
