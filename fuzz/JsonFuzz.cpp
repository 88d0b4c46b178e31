#include "host/Exceptions.hpp"
#include "reference_host/ssp/RecordJson.hpp"
#include "reference_host/ssp/ValueJson.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

using reference_host::JsonLimits;
using reference_host::OwnedValue;
using reference_host::valueFromJson;
using reference_host::valueToJson;

namespace {

constexpr JsonLimits limits{.items = std::size_t{1} << 20U};

/// None when the text is refused.
std::string rewritten(std::string_view json)
{
    OwnedValue value;
    try {
        value = valueFromJson(json, limits);
    } catch (const zmsvException&) {
        return {};
    }
    return valueToJson(value.get());
}

/// The records of each struct array that they come in; none when the text is refused.
std::vector<std::string> recordsIn(std::string_view json)
{
    std::vector<std::string> parts;
    try {
        reference_host::recordsFromJson(json, {}, [&parts](const nvArray* records) {
            parts.push_back(reference_host::recordsToJson(records));
        });
    } catch (const zmsvException&) {
        return {};
    }
    return parts;
}

}  // namespace

/// Every text gives a value or is refused; what was read is written so that it reads back the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = rewritten({reinterpret_cast<const char*>(data), size});
    if (!text.empty() && text != rewritten(text)) {
        std::abort();
    }
    for (const std::string& part : recordsIn({reinterpret_cast<const char*>(data), size})) {
        if (recordsIn(part) != std::vector{part}) {
            std::abort();
        }
    }
    return 0;
}
