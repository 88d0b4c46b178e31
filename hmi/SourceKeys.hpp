#ifndef ZM_HMI_SOURCE_KEYS_HPP
#define ZM_HMI_SOURCE_KEYS_HPP

#include <boost/container_hash/hash.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

/// Source keys: 64-bit hashes of short texts that name a port.
///
///   cached       handle "$$" port
///   not cached   model "/" block path "$$" sub-path "$$" port; without a model name there is no "/" either
///
/// Keys are only compared with keys of the same process and never saved.
namespace zm_hmi {

/// The hash that `boost::hash<std::string>` gives for a text, computed while the text is put together: the
/// text itself is never stored. The hash combines four bytes at a time; up to three bytes wait for the next
/// piece.
class KeyHash {
public:
    /// Appends a little-endian number of four bytes.
    void append(std::uint32_t bytes) noexcept
    {
        m_waiting |= std::uint64_t{bytes} << m_waitingBits;
        boost::hash_combine(m_hash, static_cast<std::uint32_t>(m_waiting));
        m_waiting >>= 32;
    }

    /// Appends the lowest `count` bytes, one to three, of a number whose other bytes are 0.
    void append(std::uint32_t bytes, unsigned count) noexcept
    {
        m_waiting |= std::uint64_t{bytes} << m_waitingBits;
        m_waitingBits += 8 * count;
        if (m_waitingBits >= 32) {
            boost::hash_combine(m_hash, static_cast<std::uint32_t>(m_waiting));
            m_waiting >>= 32;
            m_waitingBits -= 32;
        }
    }

    std::size_t value() const noexcept
    {
        std::size_t hash = m_hash;
        boost::hash_combine(hash, static_cast<std::uint32_t>(m_waiting | std::uint64_t{1} << m_waitingBits));
        return hash;
    }

private:
    std::size_t m_hash = 0;
    std::uint64_t m_waiting = 0;
    unsigned m_waitingBits = 0;
};

/// The beginning of all non-cached keys of one model, hashed once: the model name and "/".
class ModelKeyPrefix {
public:
    /// Makes no host call and throws nothing.
    explicit ModelKeyPrefix(const std::u16string& modelName) noexcept;

    /// Only a well-formed model name can be hashed in advance; any other is converted by the host each time.
    bool isUsable() const noexcept { return m_isUsable; }
    const KeyHash& hash() const noexcept { return m_hash; }

private:
    KeyHash m_hash;
    bool m_isUsable = true;
};

/// As `SignalSpecification::getNonCachedInfoHash`. REQUIRES: `prefix.isUsable()`
std::size_t nonCachedKey(const ModelKeyPrefix& prefix, const std::u16string& blockPath,
                         const std::u16string& subPath, int outputPortIndex, int logicalPortIndex);

}  // namespace zm_hmi

#endif
