#include "hmi/InstrumentedSignals.hpp"

#include "hmi_foundation/HostErrors.hpp"

#include <algorithm>

namespace zm_hmi {

using zm_hmi_foundation::throwInvalidElementIndex;

bool InstrumentedSignals::isEqual(const InstrumentedSignals* other) const
{
    return other != nullptr &&
           std::equal(m_signals.begin(), m_signals.end(), other->m_signals.begin(), other->m_signals.end(),
                      [](const SignalSpecificationPtr& left, const SignalSpecificationPtr& right) {
                          return left->isEqual(right.get());
                      });
}

SignalSpecificationPtr InstrumentedSignals::get(std::size_t index) const
{
    if (index >= m_signals.size()) {
        throwInvalidElementIndex(m_signals.size());
    }
    return m_signals[index];
}

void InstrumentedSignals::add(const SignalSpecificationPtr& signal)
{
    insert(m_signals.size(), signal);
}

void InstrumentedSignals::insert(std::size_t index, const SignalSpecificationPtr& signal)
{
    if (index > m_signals.size()) {
        throwInvalidElementIndex(m_signals.size());
    }
    const SignalSpecificationPtr added = signal;  // the reference may be to one of our own elements
    const auto position = static_cast<std::ptrdiff_t>(index);
    m_signals.insert(m_signals.begin() + position, added);
    try {
        addToObservedPortMap(added);
    } catch (...) {
        m_signals.erase(m_signals.begin() + position);
        throw;
    }
    m_ports.forgetPortCache();
}

void InstrumentedSignals::set(std::size_t index, const SignalSpecificationPtr& signal)
{
    const SignalSpecificationPtr replaced = get(index);
    const SignalSpecificationPtr added = signal;
    const PortKeys replacedKeys = portKeys(*replaced);
    // The replaced element is taken for a port whatever it is: a chart element stays in the chart caches.
    if (isKestrowDomain(added->getDomainType())) {
        setActivityObserved(m_charts, *added, true);
        m_ports.erase(*replaced, replacedKeys);
    } else {
        m_ports.replace(*replaced, replacedKeys, added, portKeys(*added));
    }
    m_signals[index] = added;
    m_ports.forgetPortCache();
}

void InstrumentedSignals::remove(std::size_t index)
{
    const SignalSpecificationPtr removed = get(index);
    if (isKestrowDomain(removed->getDomainType())) {
        removeFromObservedKWObject(removed);
    } else {
        removeFromObservedPortMap(removed);
        m_ports.forgetPortCache();
    }
    m_signals.erase(m_signals.begin() + static_cast<std::ptrdiff_t>(index));
}

void InstrumentedSignals::remove(const SignalSpecification& signal)
{
    const auto found = std::find_if(
        m_signals.begin(), m_signals.end(),
        [&](const SignalSpecificationPtr& element) { return signal.isSameSignal(element.get()); });
    if (found == m_signals.end()) {
        return;
    }
    const SignalSpecificationPtr removed = *found;
    // The domain is not asked for here: a chart element keeps its entries in the chart caches.
    removeFromObservedPortMap(removed);
    m_ports.forgetPortCache();
    m_signals.erase(found);
}

void InstrumentedSignals::setModelName(const std::u16string& modelName)
{
    std::u16string oldName = modelName;
    oldName.swap(m_modelName);
    m_keyPrefix = ModelKeyPrefix(m_modelName);
    for (const SignalSpecificationPtr& signal : m_signals) {
        signal->renameModel(oldName, m_modelName);
    }
}

}  // namespace zm_hmi
