#include "live/BrokerQueue.hpp"

#include <utility>

namespace live {

void BrokerQueue::setScene(std::shared_ptr<const Scene> scene)
{
    m_ownScene = scene;
    m_wantedChanged = true;
    const std::lock_guard lock(m_mutex);
    handOver();
    m_scene = std::move(scene);
}

bool BrokerQueue::takeWanted(std::vector<ChannelId>& wanted)
{
    if (!std::exchange(m_wantedChanged, false)) {
        return false;
    }
    wanted.clear();
    for (const LiveChannel& channel : m_ownScene->channels) {
        if (channel.isListed) {
            wanted.push_back(channel.id);
        }
    }
    return true;
}

void BrokerQueue::publish(std::int64_t /*time*/)
{
    const std::unique_lock lock(m_mutex, std::try_to_lock);
    if (lock.owns_lock()) {
        handOver();
    }
}

void BrokerQueue::flush()
{
    const std::lock_guard lock(m_mutex);
    handOver();
}

void BrokerQueue::handOver()
{
    if (m_own.empty()) {
        return;
    }
    m_waiting += m_own.size();
    const std::size_t size = m_own.size();
    m_batches.push_back(std::exchange(m_own, {}));
    m_own.reserve(size);
    while (m_waiting > m_limit && !m_batches.empty()) {
        m_waiting -= m_batches.front().size();
        m_dropped += m_batches.front().size();
        m_batches.pop_front();
    }
}

bool BrokerQueue::take(std::vector<LiveValue>& values, std::shared_ptr<const Scene>& scene)
{
    values.clear();
    const std::lock_guard lock(m_mutex);
    const bool hasScene = m_scene != nullptr;
    if (hasScene) {
        scene = std::exchange(m_scene, nullptr);
    }
    if (m_batches.empty()) {
        return hasScene;
    }
    values = std::move(m_batches.front());
    m_batches.pop_front();
    m_waiting -= values.size();
    return true;
}

std::uint64_t BrokerQueue::dropped() const
{
    const std::lock_guard lock(m_mutex);
    return m_dropped;
}

std::size_t BrokerQueue::waiting() const
{
    const std::lock_guard lock(m_mutex);
    return m_waiting;
}

}  // namespace live
