#include "hmi/InstrumentedSignals.hpp"

#include "hmi_foundation/HostErrors.hpp"

#include <algorithm>

namespace zm_hmi {

using zm_hmi_foundation::throwInvalidElementIndex;

bool InstrumentedSignals::isEqual(const InstrumentedSignals* other) const
{
    return std::equal(m_signals.begin(), m_signals.end(), other->m_signals.begin(), other->m_signals.end(),
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
    const auto position = m_signals.begin() + static_cast<std::ptrdiff_t>(index);
    m_signals.insert(position, added);
    forgetPortCache();
    try {
        addToObservedPortMap(added);
    } catch (...) {
        m_signals.erase(m_signals.begin() + static_cast<std::ptrdiff_t>(index));
        throw;
    }
}

void InstrumentedSignals::set(std::size_t index, const SignalSpecificationPtr& signal)
{
    const SignalSpecificationPtr replaced = get(index);
    const SignalSpecificationPtr added = signal;
    const PortKeys oldKeys = portKeys(*replaced);
    // The replaced element is taken for a port whatever it is: a chart element stays in the chart caches.
    if (isKestrowDomain(added->getDomainType())) {
        addToObservedKWObjectCache(added);
        erasePort(*replaced, oldKeys);
    } else {
        const PortKeys newKeys = portKeys(*added);
        erasePort(*replaced, oldKeys);
        enterPort(added, newKeys);
    }
    m_signals[index] = added;
    forgetPortCache();
}

void InstrumentedSignals::remove(std::size_t index)
{
    const SignalSpecificationPtr removed = get(index);
    if (isKestrowDomain(removed->getDomainType())) {
        removeFromObservedKWObject(removed);
    } else {
        removeFromObservedPortMap(removed);
        forgetPortCache();
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
    forgetPortCache();
    // The domain is not asked for here: a chart element keeps its entries in the chart caches.
    removeFromObservedPortMap(removed);
    m_signals.erase(found);
}

void InstrumentedSignals::setModelName(const std::u16string& modelName)
{
    const std::u16string oldName = m_modelName;
    m_modelName = modelName;
    for (const SignalSpecificationPtr& signal : m_signals) {
        signal->renameModel(oldName, m_modelName);
    }
}

}  // namespace zm_hmi
