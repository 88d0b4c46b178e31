#include "hmi/StreamingClients.hpp"

#include "hmi/Collections.hpp"
#include "hmi_foundation/HostErrors.hpp"
#include "host/Memory.hpp"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace zm_hmi {

using zm_hmi_foundation::throwInvalidElementIndex;

namespace {

constexpr const char* hostClass = "Zelmar.HMI.StreamingClients";

}  // namespace

bool StreamingClients::isValidType(const nvArray* value)
{
    return collections::isValidType(value, hostClass);
}

StreamingClients* StreamingClients::getFromNVArray(const nvArray* value)
{
    return collections::nativeCollection<StreamingClients>(value);
}

bool StreamingClients::isEqual(const StreamingClients* other) const
{
    if (other == nullptr || m_clients.size() != other->m_clients.size()) {
        return false;
    }
    // The host compares the parameters and may change either collection meanwhile.
    for (std::size_t i = 0; i < m_clients.size() && i < other->m_clients.size(); ++i) {
        const SignalClientPtr left = m_clients[i];
        const SignalClientPtr right = other->m_clients[i];
        if (!left->isEqual(right.get())) {
            return false;
        }
    }
    return true;
}

SignalClientPtr StreamingClients::getShared(std::size_t index) const
{
    if (index >= m_clients.size()) {
        throwInvalidElementIndex(m_clients.size());
    }
    return m_clients[index];
}

void StreamingClients::add(SignalClientPtr client)
{
    withHostMemoryErrors([&] { m_clients.push_back(std::move(client)); });
}

void StreamingClients::set(std::size_t index, SignalClientPtr client)
{
    const SignalClientPtr replaced = getShared(index);
    m_clients[index] = std::move(client);
}

void StreamingClients::remove(std::size_t index)
{
    const SignalClientPtr removed = getShared(index);
    m_clients.erase(m_clients.begin() + static_cast<std::ptrdiff_t>(index));
}

void StreamingClients::setModelName(const std::u16string& name)
{
    withHostMemoryErrors([&] {
        std::u16string newName = name;  // may be one of the collection's own names
        std::u16string newSyncedName = m_modelName.empty() ? newName : m_syncedModelName;
        const std::u16string oldName = m_modelName;
        for (std::size_t i = 0; i < m_clients.size(); ++i) {
            const SignalClientPtr client = m_clients[i];
            client->renameModel(oldName, newName);
        }
        m_modelName = std::move(newName);
        m_syncedModelName = std::move(newSyncedName);
    });
}

OwnedArray StreamingClients::getPersistenceData() const
{
    return withHostMemoryErrors([&] {
        static const char* const* const fieldNames = SignalClient::getStructFields();
        static const std::size_t fieldCount = SignalClient::getNumStructFields();

        const std::array<std::size_t, 2> row = {1, m_clients.size()};
        OwnedArray data(nvCreateStructArray(row.size(), row.data(), fieldCount, fieldNames));
        for (std::size_t i = 0; i < m_clients.size(); ++i) {
            m_clients[i]->getPersistenceData(data.get(), i);
        }
        return data;
    });
}

void StreamingClients::setFromPersistenceData(const nvArray* data)
{
    withHostMemoryErrors([&] {
        const std::size_t count = nvGetNumberOfElements(data);
        if (count > m_clients.size()) {
            m_clients.reserve(m_clients.size() + count);
        }
        for (std::size_t i = 0; i < count; ++i) {
            add(boost::make_shared<SignalClient>(data, i, std::u16string()));
        }
    });
}

OwnedArray StreamingClients::copy() const
{
    return withHostMemoryErrors([&] {
        auto [object, target] = collections::newHostObject<StreamingClients>(hostClass);
        target->m_modelName = m_modelName;
        target->m_syncedModelName = m_syncedModelName;
        std::vector<SignalClientPtr> clones(m_clients.size());
        std::transform(m_clients.begin(), m_clients.end(), clones.begin(),
                       [](const SignalClientPtr& client) { return SignalClientPtr(client->clone()); });
        target->m_clients = std::move(clones);
        return std::move(object);
    });
}

}  // namespace zm_hmi
