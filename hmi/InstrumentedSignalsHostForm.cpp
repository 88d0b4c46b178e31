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
    // The host is called for each element and may change the collection meanwhile. When it removes elements,
    // the last elements of the struct array stay unset, because a struct array does not shrink. Loading such
    // an array appends the elements before them and then throws the host error that a required number is
    // missing.
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
        m_ports.reserve(m_signals.size() + count);
    }
    for (std::size_t i = 0; i < count; ++i) {
        add(boost::make_shared<SignalSpecification>(data, i, std::u16string()));
    }
}

OwnedArray InstrumentedSignals::copy(bool exclude) const
{
    auto [object, target] = collections::newHostObject<InstrumentedSignals>(hostClass);
    target->m_modelName = m_modelName;
    target->m_keyPrefix = m_keyPrefix;
    const std::size_t count = m_signals.size();  // the host may have answered with this very collection
    for (std::size_t i = 0; i < count; ++i) {
        if (!(exclude && m_signals[i]->getExcludeForSave())) {
            target->m_signals.push_back(SignalSpecificationPtr(m_signals[i]->clone()));
        }
    }
    if (target != this) {
        // As they are, on purpose: the copied map refers to this collection's elements, not to the clones.
        target->m_ports.copyEntries(m_ports);
        if (!m_charts.hasNoActivity()) {
            target->m_charts = m_charts;
        }
    }
    return std::move(object);
}

}  // namespace zm_hmi
