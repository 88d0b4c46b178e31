#ifndef ZM_HMI_INSTRUMENTED_SIGNALS_HPP
#define ZM_HMI_INSTRUMENTED_SIGNALS_HPP

#include "hmi/SignalSpecification.hpp"
#include "hmi_foundation/Export.hpp"
#include "host/OwnedArray.hpp"
#include "host/Ports.hpp"

#include <boost/shared_ptr.hpp>

#include <bitset>
#include <cstddef>
#include <list>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace zm_hmi {

using SignalSpecificationPtr = boost::shared_ptr<SignalSpecification>;

/// A model's instrumented signals, in the user's order, with the maps that tell the editor which ports
/// and chart activities are observed. The native object behind the host class
/// "Zelmar.HMI.InstrumentedSignals", which makes and ends it.
///
/// Indices are 0-based; one that is not below the count throws the host's "InvalidElementIndex" with the
/// count as its argument. Nothing rejects duplicates. What holds: an element outside the chart domain stands
/// in the observed port map, as this very object, unless another element of the same port was removed or
/// replaced since, which takes all entries of the port; chart elements stand in the chart caches only; the
/// port cache is empty or was filled after the last change of the port map.
///
/// An operation that runs short of memory halfway may leave the port map behind the elements;
/// `updateObservedPortMap` makes it right.
///
/// Host code that runs inside an operation may call back into the same collection. Main thread only.
class InstrumentedSignals {
public:
    InstrumentedSignals() = default;
    InstrumentedSignals(const InstrumentedSignals&) = delete;
    InstrumentedSignals& operator=(const InstrumentedSignals&) = delete;
    ~InstrumentedSignals() = default;

    // ---- from host values ----

    /// True for null, for an empty value, and for one object of the host class.
    static bool isValidType(const nvArray* value);

    /// The collection behind object 0 of a class-object array; null for null and for an empty value. It
    /// belongs to the host object. REQUIRES: `isValidType(value)`.
    static InstrumentedSignals* getFromNVArray(const nvArray* value);

    // ---- elements ----

    std::size_t getCount() const noexcept { return m_signals.size(); }

    /// True when both have equal elements (`SignalSpecification::isEqual`) in the same order.
    bool isEqual(const InstrumentedSignals* other) const;

    ZM_HMI_API SignalSpecificationPtr get(std::size_t index) const;

    void add(const SignalSpecificationPtr& signal);

    /// Inserts before the element at `index`; the count itself is a valid index and appends.
    void insert(std::size_t index, const SignalSpecificationPtr& signal);

    /// Replaces an element. A chart element that is replaced stays in the chart caches.
    void set(std::size_t index, const SignalSpecificationPtr& signal);

    /// Removes an element from the list and from the maps it stands in.
    void remove(std::size_t index);

    /// Removes the first element that observes the same port as `signal`, or nothing. Unlike removal by
    /// index this takes every element for a port: the chart caches are left as they are.
    void remove(const SignalSpecification& signal);

    // ---- model name ----

    const std::u16string& getModelName() const noexcept { return m_modelName; }

    /// Renames the model in every element. Keys already entered in the maps keep the old name.
    void setModelName(const std::u16string& modelName);

    // ---- host forms ----

    /// A struct array with one element a signal and the 16 persisted fields.
    OwnedArray getPersistenceData() const;

    /// Appends a record for every element of a persisted struct array.
    void setFromPersistenceData(const nvArray* data);

    /// A new host object whose collection has the model name and a clone of every element, or of those not
    /// excluded from saving. Its port map is a copy of this one and refers to this collection's elements,
    /// skipped ones included; `updateObservedPortMap` on the copy makes it refer to the clones.
    OwnedArray copy(bool exclude) const;

    // ---- observed ports: ObservedPortMap.cpp ----

    /// True when the port map has an entry; chart activities do not count.
    bool isAnyPortObserved() const noexcept { return !m_observedPorts.empty(); }

    /// Rebuilds the port map from the elements. Leaves the chart caches as they are.
    void updateObservedPortMap();

    /// Enters a signal under its source keys. One that has no key (0) is not entered; one that is entered
    /// twice stands twice. Chart signals go to the chart caches instead.
    void addToObservedPortMap(const SignalSpecificationPtr& signal);

    /// Removes every entry, whichever record it refers to, under the signal's non-cached key with the same
    /// output port and block path, and under its cached key with the same handle and port.
    void removeFromObservedPortMap(const SignalSpecificationPtr& signal);

    /// The full query with the record's own values.
    bool isPortObserved(const SignalSpecification* signal);

    /// Answers by handle and port, and otherwise by path: a signal found by path that has no cached port
    /// yet takes on this handle and port and is entered once more under both of its keys. Sub-path and
    /// logical port count through the key only. With port number 0 any signal found by path decides.
    bool isPortObserved(double blockHandle, const std::u16string& blockPath, const std::u16string& subPath,
                        int outputPortIndex, int portNumber, int logicalPortIndex);

    /// Answers by handle and port alone. Changes nothing and allocates nothing.
    bool isPortObserved(double blockHandle, int portNumber) const;

    /// Whether the port was among those of the last `cacheZMPorts`; false once the port map has changed.
    ZM_HMI_API bool isZMPortObserved(const zmPort* port) const;

    /// Replaces the port cache. The ports stay the editor's and are compared by address.
    ZM_HMI_API void cacheZMPorts(const std::vector<zmPort*>& ports);

    // ---- chart activities: ChartActivity.cpp ----

    /// True for "kw_state", "kw_chart" and "kw_data".
    bool isKestrowDomain(const std::u16string& domainType) const;

    void addToObservedKWObjectCache(SignalSpecificationPtr signal);

    /// Clears the entry of the signal's chart object and activity, also when another signal shares it.
    void removeFromObservedKWObject(SignalSpecificationPtr signal);

    void addToObservedKWActivity(const std::string& zid, const std::string& kzid,
                                 const std::string& activity);
    void removeObservedKWActivity(const std::string& zid, const std::string& kzid,
                                  const std::string& activity);

    /// Whether an activity of a chart object is observed. The ZID may carry the model name.
    bool isKWActivityObserved(const std::u16string& zid, double kzid, const std::u16string& activity) const;

    /// Whether any activity of a chart object is observed. An object that was never seen gets an empty
    /// entry in the cache.
    bool isAnyKWActivityObserved(const std::u16string& zid, double kzid);

    /// Append [model, ZID, KZID] and [model, ZID, KZID, activity], whose hashes key the chart caches.
    void constructKWLookupStr(std::list<std::string>& parts, const std::string& zid,
                              const std::string& kzid) const;
    void constructKWLookupStrUsingActivity(std::list<std::string>& parts, const std::string& zid,
                                           const std::string& kzid, const std::string& activity) const;

    /// The chart elements, in order, that have no counterpart among the chart elements of `other`, which
    /// may be null. Counterparts have the same ZID and KZID and, where the KZID is "0", the same activity.
    /// An element without a KZID or an activity has none.
    ZM_HMI_API std::vector<SignalSpecificationPtr> setDifference_kw(const InstrumentedSignals* other) const;

    // ---- after edits: PortRenumbering.cpp ----

    /// Follows an edit of one block's output ports, given by handle, full path and full ZID: an element is
    /// the block's when any of the three is its own. `newNumbers` has, at old port number - 1, the new
    /// number, or 0 for a deleted port, whose elements are removed. Caution: handle 0.0 is every unbound
    /// element's, and an unbound element that is renumbered has a cached port, with handle 0.0, afterwards.
    ZM_HMI_API void renumberPorts(double blockHandle, const std::u16string& blockPath, const std::string& zid,
                                  const std::vector<int>& newNumbers);

    /// Has the host rebind the signals of a host object; null does nothing. A host failure gives one
    /// warning, never an exception. Afterwards no rebinding is pending, whether or not it succeeded.
    ZM_HMI_API static void applyRebindingRules(const nvArray* value, bool flag);

    // ---- the editor's questions about a whole model, answered by the host: EditorQueries.cpp. A host
    //      failure gives one warning, never an exception ----

    /// One observed port. The fields are named by position; what they mean is the host function's:
    /// docs/host-functions.md says which of its results fills which field.
    struct Source {
        std::string name;
        double handle = 0.0;
        int number1 = 0;
        int number2 = 0;
        int number3 = 0;
        bool flag1 = false;
        bool flag2 = false;
        bool flag3 = false;
        std::u16string text1;
        std::u16string text2;
    };

    /// The observed ports of a model, as many as the host's first result has names; none for null, without a
    /// call, and when the host fails. Null texts count as empty.
    ZM_HMI_API static void getObservedPorts(const nvArray* model, const char* firstText,
                                            const char* secondText, std::vector<Source>& sources,
                                            bool firstSwitch, bool secondSwitch);

    /// Adds the handles of the blocks that carry a badge; nothing for null and for an empty value, without
    /// a call, and when the host fails.
    ZM_HMI_API static void getPortsWithBadges(const nvArray* model, std::set<double>& handles);

private:
    static constexpr std::size_t activityCount = 4;
    using Activities = std::bitset<activityCount>;

    struct KeyIsHash {
        std::size_t operator()(std::size_t key) const noexcept { return key; }
    };

    void forgetPortCache() noexcept;
    /// The keys of a signal's port; making them is what may fail, so it comes before anything changes.
    struct PortKeys {
        std::size_t byPath;
        std::size_t byHandle;
    };
    PortKeys portKeys(const SignalSpecification& signal) const;
    void enterPort(const SignalSpecificationPtr& signal, const PortKeys& keys);
    void erasePort(const SignalSpecification& removed, const PortKeys& keys);
    template <class Matches>
    void eraseUnderKey(std::size_t key, Matches matches);
    void eraseAt(const std::vector<std::size_t>& indices);
    Activities& activitiesOf(const std::string& zid, const std::string& kzid);
    void setActivityObserved(const SignalSpecification& signal, bool observed);

    std::u16string m_modelName;
    std::vector<SignalSpecificationPtr> m_signals;
    std::unordered_multimap<std::size_t, SignalSpecificationPtr, KeyIsHash> m_observedPorts;
    std::unordered_set<const zmPort*> m_cachedPorts;
    std::unordered_map<std::size_t, bool, KeyIsHash> m_observedActivities;
    std::unordered_map<std::size_t, Activities, KeyIsHash> m_chartObjects;
    /// Never true so far: nothing in the library sets it. It stays because its two other ends are settled,
    /// the query by path that heeds it and the rebinding that ends it; who is to announce a rebinding is
    /// open.
    bool m_rebindingPending = false;

    static const std::unordered_map<std::string, std::size_t> m_kwActivityBitMask;
};

}  // namespace zm_hmi

#endif
