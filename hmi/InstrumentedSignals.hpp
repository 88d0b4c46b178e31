#ifndef ZM_HMI_INSTRUMENTED_SIGNALS_HPP
#define ZM_HMI_INSTRUMENTED_SIGNALS_HPP

#include "hmi/ChartActivityCache.hpp"
#include "hmi/ObservedPortMap.hpp"
#include "hmi/SignalSpecification.hpp"
#include "hmi/SourceKeys.hpp"
#include "hmi_foundation/Export.hpp"
#include "host/OwnedArray.hpp"
#include "host/Ports.hpp"

#include <cstddef>
#include <list>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace zm_hmi {

/// A model's instrumented signals, in the user's order, with the lookup structures that tell the editor which
/// ports and chart activities are observed. The native object behind the host class
/// "Zelmar.HMI.InstrumentedSignals", which creates and destroys it.
///
/// Indices are 0-based; an index that is not below the count throws the host's "InvalidElementIndex" with the
/// count as its argument. Duplicates are allowed.
///
/// Invariant: an element outside the chart domain is entered in the port map, as this very object, and an
/// element of the chart domain in the chart caches if its activity has a bit. Exceptions:
/// - An element whose source key is 0 is not entered under that key.
/// - Removing or replacing an element takes all entries of its port, those of other elements too, and
///   removing a chart element takes the entries of its chart object and activity.
/// - `removeFromObservedPortMap` and `removeFromObservedKWObject`, when called directly, take the entries of
/// an
///   element that stays.
/// - Entries that were made before `setModelName` keep the keys of the old name.
/// - The port map of a `copy` refers to the elements of the original.
/// - A chart element that `set` or `remove(signal)` takes out stays in the chart caches.
/// `updateObservedPortMap` makes the port map agree with the elements again.
///
/// The port cache is empty or was filled after the last change of the port map's entries, except that a
/// rebuild that only empties the port map leaves it.
///
/// An operation either completes or changes nothing, where its comment does not say otherwise. Host code that
/// runs inside an operation may call back into the same collection. Main thread only.
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

    /// True when both have equal elements (`SignalSpecification::isEqual`) in the same order. False for null.
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

    /// Appends a record for every element of a persisted struct array. When that fails, the records of the
    /// elements before the failure stay, each fully entered.
    void setFromPersistenceData(const nvArray* data);

    /// A new host object whose collection has the model name and a clone of every element, or of those not
    /// excluded from saving. Its port map is a copy of this one and refers to this collection's elements,
    /// skipped ones included; `updateObservedPortMap` on the copy makes it refer to the clones.
    OwnedArray copy(bool exclude) const;

    // ---- observed ports: InstrumentedSignalsPorts.cpp ----

    /// True when the port map has an entry; chart activities do not count.
    bool isAnyPortObserved() const noexcept { return !m_ports.isEmpty(); }

    /// Rebuilds the port map from the elements, and enters chart elements in the chart caches, which are not
    /// emptied before.
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

    /// Answers by handle and port alone: one look-up in an index, without allocating. While the index is not
    /// exact, because an entered record was changed elsewhere, the answer comes from the port map itself.
    bool isPortObserved(double blockHandle, int portNumber) const
    {
        return m_ports.isObserved(blockHandle, portNumber);
    }

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

    /// An edit of one block's output ports. The block is given by handle, full path and full ZID: an element
    /// belongs to it when any of the three is the element's. `newNumbers` has, at old port number - 1, the
    /// new number, or 0 for a deleted port.
    struct PortNumbers {
        double blockHandle;
        std::u16string blockPath;
        std::string zid;
        std::vector<int> newNumbers;
    };

    /// Gives the elements of a block their new port numbers and removes those of deleted ports. Caution:
    /// handle 0.0 is that of every unbound element, and an unbound element that is renumbered has a cached
    /// port, with handle 0.0, afterwards.
    ZM_HMI_API void renumberPorts(double blockHandle, const std::u16string& blockPath, const std::string& zid,
                                  const std::vector<int>& newNumbers);

    /// The same for several blocks, one after the other, with one rebuild of the port map in the end.
    ZM_HMI_API void renumberPorts(const std::vector<PortNumbers>& blocks);

    /// Has the host rebind the signals of a host object, of an array of objects those of the first; null does
    /// nothing. A host failure gives one warning and no exception; short memory throws. Afterwards no
    /// rebinding is pending in any case.
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
    friend struct RebindingAccess;  // tests set the flag with it, which no operation of the library does

    /// The keys of a signal's port, with the new number that the signal is about to get.
    PortKeys portKeys(const SignalSpecification& signal, std::optional<int> newNumber = {}) const;
    std::size_t pathKey(const std::u16string& blockPath, const std::u16string& subPath, int outputPortIndex,
                        int logicalPortIndex) const;
    void enter(ObservedPortMap& ports, ChartActivityCache& charts, const SignalSpecificationPtr& signal,
               std::optional<int> newNumber = {}) const;
    void bind(const SignalSpecificationPtr& signal, double blockHandle, int portNumber);

    std::size_t objectKey(const std::string& zid, const std::string& kzid) const;
    std::size_t activityKey(const std::string& zid, const std::string& kzid,
                            const std::string& activity) const;
    void setActivityObserved(ChartActivityCache& charts, const SignalSpecification& signal,
                             bool observed) const;

    std::u16string m_modelName;
    ModelKeyPrefix m_keyPrefix{m_modelName};
    std::vector<SignalSpecificationPtr> m_signals;
    ObservedPortMap m_ports;
    ChartActivityCache m_charts;
    /// Nothing in the library sets it: when a host would announce a rebinding is open. The query by path
    /// reads it, and the rebinding resets it.
    bool m_rebindingPending = false;

    static const std::unordered_map<std::string, std::size_t> m_kwActivityBitMask;
};

}  // namespace zm_hmi

#endif
