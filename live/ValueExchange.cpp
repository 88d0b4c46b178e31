#include "live/ValueExchange.hpp"

#include <utility>

namespace live {

void MergedValues::add(const LiveValue& value)
{
    if (value.channel >= m_places.size()) {
        m_places.resize(value.channel + std::size_t{1});
    }
    std::uint32_t& place = m_places[value.channel];
    if (place != 0) {
        m_values[place - 1].merge(value);
        return;
    }
    m_values.push_back(value);
    place = static_cast<std::uint32_t>(m_values.size());
}

void MergedValues::addAll(const MergedValues& later)
{
    for (const LiveValue& value : later.m_values) {
        add(value);
    }
}

void MergedValues::clear()
{
    for (const LiveValue& value : m_values) {
        m_places[value.channel] = 0;
    }
    m_values.clear();
}

void ValueExchange::setScene(std::shared_ptr<const Scene> scene)
{
    std::unique_lock lock(m_mutex);
    m_delivery.scene = std::move(scene);
    handOver(std::move(lock));
}

bool ValueExchange::takeWanted(std::vector<ChannelId>& wanted)
{
    if (!m_wantedChanged.load(std::memory_order_acquire)) {
        return false;
    }
    const std::unique_lock lock(m_mutex, std::try_to_lock);
    if (!lock.owns_lock()) {
        return false;
    }
    m_wantedChanged = false;
    wanted = m_wanted;
    return true;
}

void ValueExchange::publish(std::int64_t time)
{
    m_time = time;
    m_hasTime = true;
    std::unique_lock lock(m_mutex, std::try_to_lock);
    if (lock.owns_lock()) {
        handOver(std::move(lock));
    }
}

void ValueExchange::flush()
{
    handOver(std::unique_lock(m_mutex));
}

void ValueExchange::handOver(std::unique_lock<std::mutex> lock)
{
    if (m_delivery.values.empty()) {
        std::swap(m_delivery.values, m_own);
    } else {
        m_delivery.values.addAll(m_own);
    }
    if (m_hasTime) {
        m_delivery.time = m_time;
        m_delivery.hasTime = true;
    }
    const bool mustWake = !std::exchange(m_isReady, true);
    if (mustWake && m_wake) {
        m_wake();  // with the lock, so that `close` waits for it
    }
    lock.unlock();
    m_own.clear();
}

void ValueExchange::setWanted(std::vector<ChannelId> wanted)
{
    const std::lock_guard lock(m_mutex);
    m_wanted = std::move(wanted);
    m_wantedChanged.store(true, std::memory_order_release);
}

bool ValueExchange::take(Delivery& delivery)
{
    delivery.values.clear();
    delivery.scene.reset();
    delivery.hasTime = false;
    const std::lock_guard lock(m_mutex);
    std::swap(m_delivery, delivery);
    return std::exchange(m_isReady, false);
}

void ValueExchange::close()
{
    const std::lock_guard lock(m_mutex);
    m_wake = nullptr;
}

}  // namespace live
