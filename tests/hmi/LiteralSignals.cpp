#include "tests/hmi/LiteralSignals.hpp"

#include "host/Text.hpp"
#include "tests/hmi/KeyHash.hpp"

#include <boost/lexical_cast.hpp>

#include <algorithm>

namespace zm_hmi {

namespace {

std::string parameter(const SignalValues& values, const std::u16string& name)
{
    for (const auto& [key, value] : values.domainParams) {
        if (key == name) {
            return toUtf8(value);
        }
    }
    return {};
}

bool isKnownActivity(const std::string& activity)
{
    return activity == "Self" || activity == "Child" || activity == "Leaf" || activity == "Data";
}

}  // namespace

// ---- keys -------------------------------------------------------------------------------------------

std::size_t LiteralSignals::cachedKey(double handle, int port)
{
    return keyHash(boost::lexical_cast<std::string>(handle) + "$$" + std::to_string(port));
}

std::size_t LiteralSignals::nonCachedKey(const std::u16string& path, const std::u16string& subPath,
                                         int output, int logical) const
{
    const std::string prefix = m_modelName.empty() ? "" : toUtf8(m_modelName) + "/";
    return keyHash(prefix + toUtf8(path) + "$$" + toUtf8(subPath) + "$$" +
                   std::to_string(logical >= 1 ? logical : output));
}

std::size_t LiteralSignals::nonCachedKey(const SignalValues& values) const
{
    return nonCachedKey(values.blockPath, values.subPath, values.outputPort, values.logicalPort);
}

std::size_t LiteralSignals::objectKey(const std::string& zid, const std::string& kzid) const
{
    return keyHash(toUtf8(m_modelName) + zid + kzid);
}

std::size_t LiteralSignals::activityKey(const std::string& zid, const std::string& kzid,
                                        const std::string& activity) const
{
    return keyHash(toUtf8(m_modelName) + zid + kzid + activity);
}

std::string LiteralSignals::relative(const std::string& zid) const
{
    const std::string prefix = toUtf8(m_modelName) + ":";
    return zid.size() > prefix.size() && zid.compare(0, prefix.size(), prefix) == 0
               ? zid.substr(prefix.size())
               : zid;
}

// ---- elements ---------------------------------------------------------------------------------------

bool LiteralSignals::isChart(const SignalValues& values)
{
    return values.domainType == u"kw_state" || values.domainType == u"kw_chart" ||
           values.domainType == u"kw_data";
}

bool LiteralSignals::isSameSignal(const SignalValues& one, const SignalValues& other)
{
    if (one.cachedHandle != 0.0 && other.cachedHandle != 0.0 && one.cachedHandle == other.cachedHandle &&
        one.cachedPort == other.cachedPort) {
        return true;
    }
    return one.outputPort == other.outputPort && one.logicalPort == other.logicalPort &&
           one.blockPath == other.blockPath && one.subPath == other.subPath;
}

void LiteralSignals::insert(std::size_t index, const Record& record)
{
    m_elements.insert(m_elements.begin() + static_cast<std::ptrdiff_t>(index), record);
    m_cachedPorts.clear();
    addToObservedPortMap(record);
}

void LiteralSignals::set(std::size_t index, const Record& record)
{
    removeFromObservedPortMap(m_elements[index]);
    addToObservedPortMap(record);
    m_elements[index] = record;
    m_cachedPorts.clear();
}

void LiteralSignals::remove(std::size_t index)
{
    if (isChart(*m_elements[index])) {
        removeFromChartCaches(*m_elements[index]);
    } else {
        removeFromObservedPortMap(m_elements[index]);
        m_cachedPorts.clear();
    }
    m_elements.erase(m_elements.begin() + static_cast<std::ptrdiff_t>(index));
}

void LiteralSignals::remove(const SignalValues& given)
{
    for (std::size_t i = 0; i < m_elements.size(); ++i) {
        if (isSameSignal(given, *m_elements[i])) {
            m_cachedPorts.clear();
            removeFromObservedPortMap(m_elements[i]);
            m_elements.erase(m_elements.begin() + static_cast<std::ptrdiff_t>(i));
            return;
        }
    }
}

// ---- observed ports ---------------------------------------------------------------------------------

void LiteralSignals::enter(std::size_t key, const Record& record)
{
    if (key != 0) {
        m_cachedPorts.clear();
        m_entries.emplace_back(key, record);
    }
}

void LiteralSignals::addToObservedPortMap(const Record& record)
{
    if (isChart(*record)) {
        addToChartCaches(*record);
        return;
    }
    enter(nonCachedKey(*record), record);
    if (record->cachedPort != 0) {
        enter(cachedKey(record->cachedHandle, record->cachedPort), record);
    }
}

void LiteralSignals::removeFromObservedPortMap(const Record& record)
{
    const SignalValues removed = *record;
    const std::size_t before = m_entries.size();
    std::erase_if(m_entries, [&, key = nonCachedKey(removed)](const Entry& entry) {
        return entry.first == key && entry.second->outputPort == removed.outputPort &&
               entry.second->blockPath == removed.blockPath;
    });
    std::erase_if(m_entries,
                  [&, key = cachedKey(removed.cachedHandle, removed.cachedPort)](const Entry& entry) {
                      return entry.first == key && entry.second->cachedPort == removed.cachedPort &&
                             entry.second->cachedHandle == removed.cachedHandle;
                  });
    if (m_entries.size() != before) {
        m_cachedPorts.clear();
    }
}

void LiteralSignals::updateObservedPortMap()
{
    m_entries.clear();
    for (const Record& record : m_elements) {
        addToObservedPortMap(record);
    }
}

void LiteralSignals::cacheZMPorts(const std::vector<zmPort*>& ports)
{
    m_cachedPorts = {ports.begin(), ports.end()};
}

std::size_t LiteralSignals::entriesOf(const Record& record) const
{
    return static_cast<std::size_t>(std::count_if(
        m_entries.begin(), m_entries.end(), [&](const Entry& entry) { return entry.second == record; }));
}

bool LiteralSignals::isPortObserved(double handle, int port) const
{
    const std::size_t key = cachedKey(handle, port);
    return std::any_of(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.first == key && entry.second->cachedPort == port && entry.second->cachedHandle == handle;
    });
}

bool LiteralSignals::isPortObserved(double handle, const std::u16string& path, const std::u16string& subPath,
                                    int output, int port, int logical, const Choose& choose)
{
    if (isPortObserved(handle, port)) {
        return true;
    }
    const std::size_t key = nonCachedKey(path, subPath, output, logical);
    std::vector<Record> candidates;
    for (const auto& [entryKey, record] : m_entries) {
        if (entryKey != key || record->outputPort != output || record->blockPath != path) {
            continue;
        }
        if (port == 0) {
            return true;
        }
        if (record->cachedPort == 0) {
            candidates.push_back(record);
        }
    }
    if (candidates.empty()) {
        return false;
    }
    const Record bound = choose(candidates);
    bound->cachedHandle = handle;
    bound->cachedPort = port;
    addToObservedPortMap(bound);
    return true;
}

// ---- chart activities -------------------------------------------------------------------------------

void LiteralSignals::addToChartCaches(const SignalValues& values)
{
    const std::string activity = parameter(values, u"Activity");
    if (!isKnownActivity(activity)) {
        return;
    }
    const std::string kzid = parameter(values, u"KZID");
    m_chartObjects[objectKey(values.zid, kzid)].insert(activity);
    m_activities[activityKey(values.zid, kzid, activity)] = true;
}

void LiteralSignals::removeFromChartCaches(const SignalValues& values)
{
    const std::string activity = parameter(values, u"Activity");
    if (!isKnownActivity(activity)) {
        return;
    }
    const std::string kzid = parameter(values, u"KZID");
    m_chartObjects[objectKey(values.zid, kzid)].erase(activity);
    m_activities.erase(activityKey(values.zid, kzid, activity));
}

bool LiteralSignals::isKWActivityObserved(const std::string& zid, double kzid,
                                          const std::string& activity) const
{
    return m_activities.count(activityKey(relative(zid), boost::lexical_cast<std::string>(kzid), activity)) >
           0;
}

bool LiteralSignals::isAnyKWActivityObserved(const std::string& zid, double kzid) const
{
    const auto found = m_chartObjects.find(objectKey(relative(zid), boost::lexical_cast<std::string>(kzid)));
    return found != m_chartObjects.end() && !found->second.empty();
}

}  // namespace zm_hmi
