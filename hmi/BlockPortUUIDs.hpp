#ifndef ZM_HMI_BLOCK_PORT_UUIDS_HPP
#define ZM_HMI_BLOCK_PORT_UUIDS_HPP

#include <string>
#include <unordered_map>

namespace zm_hmi {

/// The UUIDs of block ports: a port that has one keeps it for the life of the process. There is one object of
/// this class, which `SignalSpecification` owns. Entries are never removed here.
///
/// A key is the port number, "-" and the handle with six decimals ("1-12.500000"): handles that agree to six
/// decimals share an entry, on purpose. Source keys write all digits.
///
/// Main thread only.
class BlockPortUUIDs {
public:
    using Map = std::unordered_map<std::string, std::string>;

    /// A new random UUID (version 4), lower case. Throws Boost's entropy error when the random device cannot
    /// be read.
    static std::string makeUUID();

    bool contains(int port, double blockHandle) const;
    void assign(int port, double blockHandle, const std::string& uuid);

    /// The port's UUID; made and entered when the port has none. Nothing is entered when that fails.
    std::string findOrMake(int port, double blockHandle);

    Map& map() noexcept { return m_uuids; }

private:
    Map m_uuids;
};

}  // namespace zm_hmi

#endif
