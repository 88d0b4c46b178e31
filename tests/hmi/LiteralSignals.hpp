#ifndef ZM_TESTS_HMI_LITERAL_SIGNALS_HPP
#define ZM_TESTS_HMI_LITERAL_SIGNALS_HPP

#include "tests/hmi/SignalValues.hpp"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zm_hmi {

/// The rules of an instrumented-signals collection, one line a rule, with plain lists in place of every
/// lookup structure: slow, and easy to compare with what was agreed. Random operations are run on this and
/// on the collection side by side.
class LiteralSignals {
public:
    using Record = std::shared_ptr<SignalValues>;

    void add(const Record& record) { insert(m_elements.size(), record); }
    void insert(std::size_t index, const Record& record);
    void set(std::size_t index, const Record& record);
    void remove(std::size_t index);
    void remove(const SignalValues& given);
    void setModelName(const std::u16string& name) { m_modelName = name; }

    void addToObservedPortMap(const Record& record);
    void removeFromObservedPortMap(const Record& record);
    void updateObservedPortMap();
    void cacheZMPorts(const std::vector<zmPort*>& ports);

    const std::vector<Record>& elements() const { return m_elements; }
    std::size_t entriesOf(const Record& record) const;

    bool isAnyPortObserved() const { return !m_entries.empty(); }
    bool isZMPortObserved(const zmPort* port) const { return m_cachedPorts.count(port) > 0; }
    bool isPortObserved(double handle, int port) const;

    /// Where several unbound signals match, the order of the map decides which is bound: `choose` picks it.
    using Choose = std::function<Record(const std::vector<Record>& candidates)>;
    bool isPortObserved(double handle, const std::u16string& path, const std::u16string& subPath, int output,
                        int port, int logical, const Choose& choose);

    bool isKWActivityObserved(const std::string& zid, double kzid, const std::string& activity) const;
    bool isAnyKWActivityObserved(const std::string& zid, double kzid) const;

private:
    using Entry = std::pair<std::size_t, Record>;

    static bool isChart(const SignalValues& values);
    static bool isSameSignal(const SignalValues& one, const SignalValues& other);
    static std::size_t cachedKey(double handle, int port);
    std::size_t nonCachedKey(const std::u16string& path, const std::u16string& subPath, int output,
                             int logical) const;
    std::size_t nonCachedKey(const SignalValues& values) const;
    std::size_t objectKey(const std::string& zid, const std::string& kzid) const;
    std::size_t activityKey(const std::string& zid, const std::string& kzid,
                            const std::string& activity) const;
    std::string relative(const std::string& zid) const;

    void enter(std::size_t key, const Record& record);
    void addToChartCaches(const SignalValues& values);
    void removeFromChartCaches(const SignalValues& values);

    std::u16string m_modelName;
    std::vector<Record> m_elements;
    std::vector<Entry> m_entries;
    std::set<const zmPort*> m_cachedPorts;
    std::map<std::size_t, bool> m_activities;
    std::map<std::size_t, std::set<std::string>> m_chartObjects;
};

}  // namespace zm_hmi

#endif
