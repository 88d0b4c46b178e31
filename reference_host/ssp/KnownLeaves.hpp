#ifndef ZM_REFERENCE_HOST_SSP_KNOWN_LEAVES_HPP
#define ZM_REFERENCE_HOST_SSP_KNOWN_LEAVES_HPP

#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace reference_host {

/// Makes the values that a document is full of. Those that are equal to one of the last few share its
/// elements, which takes a third off the memory of a large struct array whose fields repeat themselves.
class KnownLeaves {
public:
    OwnedValue number(double number)
    {
        return known(m_numbers, std::bit_cast<std::uint64_t>(number), [&] { return makeDouble(number); });
    }

    OwnedValue logical(bool value)
    {
        return known(m_numbers, value ? trueKey : falseKey, [&] { return makeLogical(value); });
    }

    OwnedValue text(const std::string& utf8)
    {
        return known(m_texts, utf8, [&] { return makeText(std::string_view(utf8)); });
    }

private:
    template <class Key>
    struct Slot {
        Key key{};
        OwnedValue value;
    };

    // Bits of NaN, which JSON has no number for.
    static constexpr std::uint64_t falseKey = ~std::uint64_t{0} - 1;
    static constexpr std::uint64_t trueKey = ~std::uint64_t{0};

    static constexpr std::size_t bitsOfIndex = 10;
    static constexpr std::size_t slotCount = std::size_t{1} << bitsOfIndex;

    template <class Key, class Make>
    static OwnedValue known(std::vector<Slot<Key>>& slots, const Key& key, const Make& make)
    {
        // The product's high bits depend on all bits of the hash, which for a number may be the number.
        const std::uint64_t hash = std::hash<Key>{}(key)*0x9E3779B97F4A7C15U;
        Slot<Key>& slot = slots[hash >> (64 - bitsOfIndex)];
        if (!slot.value || slot.key != key) {
            slot.value = make();
            slot.key = key;
        }
        return copyShared(slot.value.get());
    }

    std::vector<Slot<std::uint64_t>> m_numbers = std::vector<Slot<std::uint64_t>>(slotCount);
    std::vector<Slot<std::string>> m_texts = std::vector<Slot<std::string>>(slotCount);
};

}  // namespace reference_host

#endif
