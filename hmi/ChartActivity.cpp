#include "hmi/InstrumentedSignals.hpp"

#include "hmi/Numbers.hpp"
#include "hmi_foundation/ModelPath.hpp"
#include "host/Exceptions.hpp"
#include "host/Text.hpp"

#include <boost/container_hash/hash.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace zm_hmi {

namespace {

constexpr std::array<const char16_t*, 3> chartDomains = {u"kw_state", u"kw_chart", u"kw_data"};
constexpr const char16_t* kzidParameter = u"KZID";
constexpr const char16_t* activityParameter = u"Activity";

const zmsvTextConverter& utf8()
{
    static const std::unique_ptr<const zmsvTextConverter> converter = makeTextConverter("UTF-8");
    return *converter;
}

/// Which activity of which chart object a record observes.
struct ChartActivity {
    std::string zid;
    std::string kzid;
    std::string activity;

    explicit ChartActivity(const SignalSpecification& signal)
        : zid(signal.getZID()),
          kzid(toUtf8(signal.getValueForDomainParams(kzidParameter), utf8())),
          activity(toUtf8(signal.getValueForDomainParams(activityParameter), utf8()))
    {
    }
};

// A chart object's ID as the texts of domain parameters write it: 12.0 as "12".
std::string kzidText(double kzid)
{
    return std::string(NumberText::significant17(kzid).view());
}

}  // namespace

const std::unordered_map<std::string, std::size_t> InstrumentedSignals::m_kwActivityBitMask = {
    {"Self", 0}, {"Child", 1}, {"Leaf", 2}, {"Data", 3}};

bool InstrumentedSignals::isKestrowDomain(const std::u16string& domainType) const
{
    return std::find(chartDomains.begin(), chartDomains.end(), domainType) != chartDomains.end();
}

void InstrumentedSignals::constructKWLookupStr(std::list<std::string>& parts, const std::string& zid,
                                               const std::string& kzid) const
{
    parts.insert(parts.end(), {toUtf8(m_modelName, utf8()), zid, kzid});
}

void InstrumentedSignals::constructKWLookupStrUsingActivity(std::list<std::string>& parts,
                                                            const std::string& zid, const std::string& kzid,
                                                            const std::string& activity) const
{
    constructKWLookupStr(parts, zid, kzid);
    parts.push_back(activity);
}

// An object that is not in the cache yet gets an empty entry: callers rely on it.
InstrumentedSignals::Activities& InstrumentedSignals::activitiesOf(const std::string& zid,
                                                                   const std::string& kzid)
{
    std::list<std::string> parts;
    constructKWLookupStr(parts, zid, kzid);
    return m_chartObjects[SignalSpecification::getInfoHashFromStringList(std::move(parts))];
}

// An activity that has no bit is neither entered nor reported.
void InstrumentedSignals::setActivityObserved(const SignalSpecification& signal, bool observed)
{
    const ChartActivity chart(signal);
    const auto bit = m_kwActivityBitMask.find(chart.activity);
    if (bit == m_kwActivityBitMask.end()) {
        return;
    }
    Activities& activities = activitiesOf(chart.zid, chart.kzid);
    if (bit->second >= activityCount) {
        throw std::out_of_range(observed ? "bitset set argument out of range"
                                         : "bitset reset argument out of range");
    }
    // The map first: setting the bit cannot fail.
    if (observed) {
        addToObservedKWActivity(chart.zid, chart.kzid, chart.activity);
    } else {
        removeObservedKWActivity(chart.zid, chart.kzid, chart.activity);
    }
    activities.set(bit->second, observed);
}

void InstrumentedSignals::addToObservedKWObjectCache(SignalSpecificationPtr signal)
{
    setActivityObserved(*signal, true);
}

void InstrumentedSignals::removeFromObservedKWObject(SignalSpecificationPtr signal)
{
    setActivityObserved(*signal, false);
}

void InstrumentedSignals::addToObservedKWActivity(const std::string& zid, const std::string& kzid,
                                                  const std::string& activity)
{
    std::list<std::string> parts;
    constructKWLookupStrUsingActivity(parts, zid, kzid, activity);
    m_observedActivities.insert_or_assign(SignalSpecification::getInfoHashFromStringList(std::move(parts)),
                                          true);
}

void InstrumentedSignals::removeObservedKWActivity(const std::string& zid, const std::string& kzid,
                                                   const std::string& activity)
{
    std::list<std::string> parts;
    constructKWLookupStrUsingActivity(parts, zid, kzid, activity);
    m_observedActivities.erase(SignalSpecification::getInfoHashFromStringList(std::move(parts)));
}

// Entries are made from the texts that a record stores; the queries make the ZID model-relative and write
// the number. The two agree where the stored texts have those forms.
bool InstrumentedSignals::isKWActivityObserved(const std::u16string& zid, double kzid,
                                               const std::u16string& activity) const
{
    std::list<std::string> parts;
    constructKWLookupStrUsingActivity(parts,
                                      zm_hmi_foundation::RemoveModelFromZID(toUtf8(zid, utf8()), m_modelName),
                                      kzidText(kzid), toUtf8(activity, utf8()));
    // That the key is there decides; the value beside it is not asked for.
    return m_observedActivities.contains(SignalSpecification::getInfoHashFromStringList(std::move(parts)));
}

bool InstrumentedSignals::isAnyKWActivityObserved(const std::u16string& zid, double kzid)
{
    return activitiesOf(zm_hmi_foundation::RemoveModelFromZID(toUtf8(zid, utf8()), m_modelName),
                        kzidText(kzid))
        .any();
}

namespace {

/// What makes two chart elements counterparts: the ZID with the activity where the KZID is "0" (the chart
/// itself), with the KZID elsewhere.
using CounterpartKey = std::tuple<bool, std::string, std::u16string>;

// None for an element that lacks one of the two parameters.
std::optional<CounterpartKey> counterpartKey(const SignalSpecification& signal)
{
    const SignalSpecification::DomainParams& params = signal.getDomainParams();
    const auto kzid = params.find(kzidParameter);
    const auto activity = params.find(activityParameter);
    if (kzid == params.end() || activity == params.end()) {
        return std::nullopt;
    }
    const bool isChart = kzid->second == u"0";
    return CounterpartKey(isChart, signal.getZID(), isChart ? activity->second : kzid->second);
}

}  // namespace

std::vector<SignalSpecificationPtr> InstrumentedSignals::setDifference_kw(
    const InstrumentedSignals* other) const
try {
    std::unordered_set<CounterpartKey, boost::hash<CounterpartKey>> counterparts;
    if (other != nullptr) {
        for (const SignalSpecificationPtr& signal : other->m_signals) {
            if (isKestrowDomain(signal->getDomainType())) {
                if (auto key = counterpartKey(*signal)) {
                    counterparts.insert(*std::move(key));
                }
            }
        }
    }
    std::vector<SignalSpecificationPtr> difference;
    for (const SignalSpecificationPtr& signal : m_signals) {
        if (isKestrowDomain(signal->getDomainType())) {
            const auto key = counterpartKey(*signal);
            if (!key || !counterparts.contains(*key)) {
                difference.push_back(signal);
            }
        }
    }
    return difference;
} catch (const std::bad_alloc&) {
    zmsvThrowOutOfMemory();
}

}  // namespace zm_hmi
