#include "hmi/ChartActivityCache.hpp"

namespace zm_hmi {

void ChartActivityCache::enter(const Keys& keys, std::size_t bit)
{
    std::bitset<activityCount>& activities = m_objects[keys.object];  // an empty entry is not observable
    enterActivity(keys.activity);
    activities.set(bit);
}

void ChartActivityCache::remove(const Keys& keys, std::size_t bit)
{
    m_objects[keys.object].reset(bit);
    removeActivity(keys.activity);
}

}  // namespace zm_hmi
