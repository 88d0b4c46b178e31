#include "hmi/InstrumentedSignals.hpp"

#include "hmi/Collections.hpp"

#include <boost/make_shared.hpp>

#include <utility>

namespace zm_hmi {

namespace {

constexpr const char* hostClass = "Zelmar.HMI.InstrumentedSignals";

}  // namespace

bool InstrumentedSignals::isValidType(const nvArray* value)
{
    return collections::isValidType(value, hostClass);
}

InstrumentedSignals* InstrumentedSignals::getFromNVArray(const nvArray* value)
{
    return collections::nativeCollection<InstrumentedSignals>(value);
}

OwnedArray InstrumentedSignals::getPersistenceData() const
{
    static const char* const* const fieldNames = SignalSpecification::getStructFields();
    static const std::size_t fieldCount = SignalSpecification::getNumStructFields(false);

    const std::size_t count = m_signals.size();
    OwnedArray data(nvCreateStructArray(1, &count, fieldCount, fieldNames));
    // The host answers for every element and may change the collection meanwhile. When it removes elements,
    // the last of the array stay unset, for a struct array does not shrink. Whoever loads it gets the
    // elements before them and then the host error that a required number is missing.
    for (std::size_t i = 0; i < count && i < m_signals.size(); ++i) {
        const SignalSpecificationPtr signal = m_signals[i];
        signal->getPersistenceData(data.get(), i, m_modelName);
    }
    return data;
}

void InstrumentedSignals::setFromPersistenceData(const nvArray* data)
{
    const std::size_t count = nvGetNumberOfElements(data);
    if (count > m_signals.size()) {
        m_signals.reserve(m_signals.size() + count);
        m_observedPorts.reserve(m_observedPorts.size() + count);
    }
    for (std::size_t i = 0; i < count; ++i) {
        add(boost::make_shared<SignalSpecification>(data, i, std::u16string()));
    }
}

OwnedArray InstrumentedSignals::copy(bool exclude) const
{
    auto [object, target] = collections::newHostObject<InstrumentedSignals>(hostClass);
    target->m_modelName = m_modelName;
    const std::size_t count = m_signals.size();  // the host may have answered with this very collection
    for (std::size_t i = 0; i < count; ++i) {
        if (!(exclude && m_signals[i]->getExcludeForSave())) {
            target->m_signals.push_back(SignalSpecificationPtr(m_signals[i]->clone()));
        }
    }
    if (target != this) {
        // Taken over as they are: the copied map refers to this collection's elements, not to the clones.
        target->m_observedPorts = m_observedPorts;
        if (!m_observedActivities.empty()) {
            target->m_observedActivities = m_observedActivities;
            target->m_chartObjects = m_chartObjects;
        }
    }
    return std::move(object);
}

}  // namespace zm_hmi
