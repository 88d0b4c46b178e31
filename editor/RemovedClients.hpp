#ifndef ZM_EDITOR_REMOVED_CLIENTS_HPP
#define ZM_EDITOR_REMOVED_CLIENTS_HPP

#include "hmi/StreamingClients.hpp"

#include <cstddef>
#include <utility>
#include <vector>

namespace editor {

/// The native collection behind a host object, which owns it; null for null. A value that is not one object
/// of "Zelmar.HMI.StreamingClients" is a host error ("InvalidClients").
zm_hmi::StreamingClients* nativeClients(const nvArray* object);

/// Streaming clients that an edit left without a block or signal, kept so that its undo can put them back.
class RemovedClients {
public:
    RemovedClients() = default;

    /// Has the host validate the clients and keeps those that it removes. Null for no clients.
    static RemovedClients validate(const nvArray* clients);

    /// Puts them back: each at its old index, or as near to it as there are clients.
    void putBack(const nvArray* clients) const;

private:
    std::vector<std::pair<std::size_t, zm_hmi::SignalClientPtr>> m_clients;  // by index, ascending
};

}  // namespace editor

#endif
