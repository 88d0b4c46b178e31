#ifndef ZM_HMI_CHART_ACTIVITY_CACHE_HPP
#define ZM_HMI_CHART_ACTIVITY_CACHE_HPP

#include <bitset>
#include <cstddef>
#include <unordered_map>

namespace zm_hmi {

/// Which activities of which chart objects are observed, by lookup hashes: one of a chart object, one of a
/// chart object with an activity. `InstrumentedSignals` owns one and makes the hashes.
///
/// Entries are per chart object and activity, not per signal: signals that observe the same activity share
/// an entry, and removing it for one removes it for all. The two maps may disagree, because the collection's
/// operations on single activities change the activity map alone. Main thread only.
class ChartActivityCache {
public:
    static constexpr std::size_t activityCount = 4;

    struct Keys {
        std::size_t object;
        std::size_t activity;
    };

    /// Enters an activity in both maps, or changes nothing that can be observed and throws `std::bad_alloc`.
    /// REQUIRES: `bit < activityCount`
    void enter(const Keys& keys, std::size_t bit);

    /// Removes an activity from both maps. An unknown object gets an empty entry.
    /// REQUIRES: `bit < activityCount`
    void remove(const Keys& keys, std::size_t bit);

    void enterActivity(std::size_t key) { m_activities.insert_or_assign(key, true); }
    void removeActivity(std::size_t key) { m_activities.erase(key); }

    /// True when the activity has an entry; the value of the entry does not matter.
    bool isObserved(std::size_t activityKey) const { return m_activities.contains(activityKey); }

    /// True when any activity of the object is observed. An unknown object gets an empty entry.
    bool isAnyObserved(std::size_t objectKey) { return m_objects[objectKey].any(); }

    /// True when no activity has an entry; objects do not count.
    bool hasNoActivity() const noexcept { return m_activities.empty(); }

private:
    struct KeyIsHash {
        std::size_t operator()(std::size_t key) const noexcept { return key; }
    };

    std::unordered_map<std::size_t, bool, KeyIsHash> m_activities;
    std::unordered_map<std::size_t, std::bitset<activityCount>, KeyIsHash> m_objects;
};

}  // namespace zm_hmi

#endif
