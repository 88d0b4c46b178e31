#include "editor/RemovedClients.hpp"

#include "host/Exceptions.hpp"

#include <algorithm>

namespace editor {

using zm_hmi::SignalClientPtr;
using zm_hmi::StreamingClients;

namespace {

std::vector<SignalClientPtr> allOf(const StreamingClients& clients)
{
    std::vector<SignalClientPtr> all;
    for (std::size_t i = 0; i < clients.getCount(); ++i) {
        all.push_back(clients.getShared(i));
    }
    return all;
}

}  // namespace

StreamingClients* nativeClients(const nvArray* object)
{
    if (!StreamingClients::isValidType(object)) {
        throw zmsvException(zmsvMessageId("reference_host:editor", "InvalidClients"),
                            "The editor takes one object of class \"Zelmar.HMI.StreamingClients\".");
    }
    return StreamingClients::getFromNVArray(object);
}

RemovedClients RemovedClients::validate(const nvArray* clients)
{
    RemovedClients removed;
    if (const StreamingClients* native = nativeClients(clients)) {
        const std::vector<SignalClientPtr> before = allOf(*native);
        StreamingClients::validateAndRemoveUnused(clients);
        const std::vector<SignalClientPtr> after = allOf(*native);
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (std::find(after.begin(), after.end(), before[i]) == after.end()) {
                removed.m_clients.emplace_back(i, before[i]);
            }
        }
    }
    return removed;
}

void RemovedClients::putBack(const nvArray* clients) const
{
    StreamingClients* native = nativeClients(clients);
    if (native == nullptr || m_clients.empty()) {
        return;
    }
    std::vector<SignalClientPtr> all = allOf(*native);
    for (const auto& [index, client] : m_clients) {
        all.insert(all.begin() + static_cast<std::ptrdiff_t>(std::min(index, all.size())), client);
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (i < native->getCount()) {
            native->set(i, all[i]);
        } else {
            native->add(all[i]);
        }
    }
}

}  // namespace editor
