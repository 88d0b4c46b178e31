#ifndef ZM_TESTS_HMI_KEY_HASH_HPP
#define ZM_TESTS_HMI_KEY_HASH_HPP

#include <cstddef>
#include <cstdint>
#include <string>

namespace zm_hmi {

/// The hash of key texts, step by step: what `boost::hash<std::string>` of Boost 1.81 computes.
inline std::uint64_t mixed(std::uint64_t x)
{
    x = x ^ (x >> 32);
    x = x * 0xe9846af9b1a615dU;
    x = x ^ (x >> 32);
    x = x * 0xe9846af9b1a615dU;
    return x ^ (x >> 28);
}

inline std::size_t keyHash(const std::string& text)
{
    std::uint64_t h = 0;
    std::size_t at = 0;
    const auto byte = [&](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(text[at + i])}; };
    for (; text.size() - at >= 4; at += 4) {
        const std::uint64_t w = byte(0) + (byte(1) << 8) + (byte(2) << 16) + (byte(3) << 24);
        h = mixed(h + 0x9e3779b9U + w);
    }
    const std::size_t n = text.size() - at;
    std::uint64_t w = std::uint64_t{1} << (8 * n);
    for (std::size_t i = 0; i < n; ++i) {
        w += byte(i) << (8 * i);
    }
    return mixed(h + 0x9e3779b9U + w);
}

}  // namespace zm_hmi

#endif
