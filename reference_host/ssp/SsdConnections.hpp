#ifndef ZM_REFERENCE_HOST_SSP_SSD_CONNECTIONS_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_CONNECTIONS_HPP

#include "reference_host/model/Block.hpp"
#include "reference_host/ssp/SsdReader.hpp"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace reference_host {

/// The connections of one system. They are collected while the system is read and connected when it is
/// complete, because a document may name an element before it defines it.
class SsdConnections {
public:
    /// The names of both elements are known, the blocks are not.
    void add(std::uint64_t line, Connection connection);

    /// An element that is passed over but may be connected.
    void noteDictionary(std::u16string name);

    /// Gives the system its connections, in document order, and each end its block if there is one. An end
    /// without block or connector is a warning. Takes linear time.
    void connect(Block& system, std::vector<SsdWarning>& warnings);

private:
    std::vector<std::uint64_t> m_lines;
    std::vector<Connection> m_connections;
    std::unordered_set<std::u16string> m_dictionaries;
};

}  // namespace reference_host

#endif
