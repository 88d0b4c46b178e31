#include "reference_host/values/Payload.hpp"

#include "reference_host/support/HostErrors.hpp"
#include "reference_host/values/NumericTypes.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <cstring>
#include <type_traits>
#include <utility>

namespace reference_host {

Numbers::Numbers(std::size_t byteCount, bool isComplex)
    : m_large(byteCount > m_small.size() ? std::make_unique<std::byte[]>(byteCount) : nullptr),
      m_isComplex(isComplex)
{
}

namespace {

std::vector<HeldValue> copyHeld(const std::vector<HeldValue>& values, bool deep)
{
    std::vector<HeldValue> copies;
    copies.reserve(values.size());
    for (const HeldValue& value : values) {
        copies.push_back(hold(deep ? copyDeep(value.get()) : copyShared(value.get())));
    }
    return copies;
}

}  // namespace

std::shared_ptr<Payload> copyPayload(const nvArray& value, bool deep)
{
    const Payload& payload = *value.payload;
    const std::size_t count = payload.dimensions.elementCount();
    auto content = std::visit(
        [&](const auto& from) -> decltype(Payload::content) {
            using Content = std::decay_t<decltype(from)>;
            if constexpr (std::is_same_v<Content, Numbers>) {
                const std::size_t size = byteCount(value.valueClass, from.isComplex(), count);
                Numbers copy(size, from.isComplex());
                std::memcpy(copy.data(), from.data(), size);
                return copy;
            } else if constexpr (std::is_same_v<Content, Fields>) {
                return Fields{from.table, copyHeld(from.values, deep)};
            } else if constexpr (std::is_same_v<Content, Cells>) {
                return Cells{copyHeld(from.values, deep)};
            } else {
                return from;
            }
        },
        payload.content);
    return std::make_shared<Payload>(Payload{payload.dimensions, std::move(content), payload.nesting});
}

Payload& writablePayload(nvArray* value)
{
    requireOwned(value);
    if (value->payload.use_count() > 1) {
        value->payload = copyPayload(*value, false);
    }
    return *value->payload;
}

void requireIndex(std::size_t index, std::size_t count)
{
    if (index >= count) {
        throwHostError("IndexPastTheEnd", {std::uint64_t{index}, std::uint64_t{count}});
    }
}

}  // namespace reference_host
