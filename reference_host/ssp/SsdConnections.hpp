#ifndef ZM_REFERENCE_HOST_SSP_SSD_CONNECTIONS_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_CONNECTIONS_HPP

#include "reference_host/model/Block.hpp"
#include "reference_host/ssp/SsdReader.hpp"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace reference_host {

/// The connections of one system, as the document names their ends. They are collected while the
/// system is read and connected when it is complete, for a document may name what comes later.
class SsdConnections {
public:
    void add(std::uint64_t line, Connection connection);

    /// An element that is passed over but may be connected.
    void noteDictionary(std::u16string name);

    /// Gives the system its connections, in document order, each end with its block where there is
    /// one. An end without block or connector is a warning. Linear in connections and connectors.
    void connect(Block& system, std::vector<SsdWarning>& warnings);

private:
    struct Entry {
        std::uint64_t line;
        Connection connection;
    };

    std::vector<Entry> m_entries;
    std::unordered_set<std::u16string> m_dictionaries;
};

}  // namespace reference_host

#endif
