#include "hmi/SignalSpecification.hpp"

#include "host/Text.hpp"

#include <array>
#include <vector>

namespace zm_hmi {

void SignalSpecification::extractDomainParamsFromNVArray(const nvArray* params, DomainParams& target)
{
    // Cleared and refilled, buckets and all: a fresh map would iterate in another order.
    target.clear();
    if (nvIsEmpty(params)) {
        return;
    }
    for (const std::string& name : nvGetFieldNames(params)) {
        target.insert_or_assign(toUtf16(name.c_str()), nvGetUString(nvGetField(params, 0, name.c_str())));
    }
}

OwnedArray SignalSpecification::getDomainParamsAsNVArray() const
{
    std::vector<std::string> names;
    names.reserve(DomainParams_.size());
    std::vector<const char*> fieldNames;
    fieldNames.reserve(DomainParams_.size());
    for (const auto& [name, value] : DomainParams_) {
        names.push_back(toUtf8(name));
        fieldNames.push_back(names.back().c_str());
    }

    constexpr std::array<std::size_t, 2> scalar = {1, 1};
    OwnedArray params(
        nvCreateStructArray(scalar.size(), scalar.data(), fieldNames.size(), fieldNames.data()));
    auto fieldName = fieldNames.begin();
    for (const auto& [name, value] : DomainParams_) {
        setField(params.get(), 0, *fieldName++, makeString(value));
    }
    return params;
}

std::u16string SignalSpecification::getValueForDomainParams(const std::u16string& name) const
{
    const auto found = DomainParams_.find(name);
    return found != DomainParams_.end() ? found->second : std::u16string();
}

}  // namespace zm_hmi
