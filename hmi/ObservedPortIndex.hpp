#ifndef ZM_HMI_OBSERVED_PORT_INDEX_HPP
#define ZM_HMI_OBSERVED_PORT_INDEX_HPP

#include "hmi/SignalSpecification.hpp"
#include "hmi/SplitTable.hpp"

#include <boost/unordered/unordered_flat_set.hpp>

#include <bit>
#include <cstddef>
#include <cstdint>

namespace zm_hmi {

/// The pairs of block handle and port for which a query by handle and port is true, as `ObservedPortMap`
/// would find by its entries. A query is one probe: 18 ns at 1,000 signals, where writing and hashing the key
/// text alone takes 90 ns.
///
/// The index follows the map's own changes. It cannot follow a record that is changed elsewhere while it
/// is entered (records are shared): such a change makes every index inexact until it is made anew. Handles
/// are compared by their bits, so that 0.0 and -0.0, which have different keys, are different entries.
class ObservedPortIndex {
public:
    bool isExact() const noexcept { return m_knownChanges == SignalSpecification::changesOfEntered(); }

    /// All changes of records so far are in the index.
    void acceptChanges() noexcept { m_knownChanges = SignalSpecification::changesOfEntered(); }

    /// The index does not have all changes any more.
    void distrust() noexcept { m_knownChanges = SignalSpecification::changesOfEntered() - 1; }

    /// Whether the pair is in the index. REQUIRES: `isExact()`
    bool contains(double handle, int port) const noexcept
    {
        const HandlePort key{std::bit_cast<std::uint64_t>(handle), port};
        return m_pairs.partOf(key).contains(key);
    }

    void insert(double handle, int port)
    {
        const HandlePort key{std::bit_cast<std::uint64_t>(handle), port};
        m_pairs.partOf(key).insert(key);
    }

    void erase(double handle, int port) noexcept
    {
        const HandlePort key{std::bit_cast<std::uint64_t>(handle), port};
        m_pairs.partOf(key).erase(key);
    }

    void reserve(std::size_t count) { m_pairs.reserve(count); }

    /// Keeps the room.
    void clear() noexcept
    {
        if (!m_pairs.empty()) {
            m_pairs.clear();
        }
    }

private:
    struct HandlePort {
        std::uint64_t handleBits;
        int port;
        friend bool operator==(const HandlePort&, const HandlePort&) = default;
    };

    struct Hash {
        using is_avalanching = void;  // all bits of the result are used: Boost need not mix it again
        std::size_t operator()(const HandlePort& key) const noexcept
        {
            __extension__ using Wide = unsigned __int128;
            const std::uint64_t port = static_cast<std::uint32_t>(key.port) * 0x9e3779b97f4a7c15U;
            const Wide product = Wide{key.handleBits ^ port} * 0xd6e8feb86659fd93U;
            return static_cast<std::size_t>(product) ^ static_cast<std::size_t>(product >> 64);
        }
    };

    SplitTable<boost::unordered_flat_set<HandlePort, Hash>> m_pairs;
    std::size_t m_knownChanges = 0;
};

}  // namespace zm_hmi

#endif
