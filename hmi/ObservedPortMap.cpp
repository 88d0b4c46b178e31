#include "hmi/InstrumentedSignals.hpp"

#include "host/Exceptions.hpp"

#include <algorithm>
#include <new>

namespace zm_hmi {

void InstrumentedSignals::forgetPortCache() noexcept
{
    // Clearing a set costs its buckets even when it is empty.
    if (!m_cachedPorts.empty()) {
        m_cachedPorts.clear();
    }
}

InstrumentedSignals::PortKeys InstrumentedSignals::portKeys(const SignalSpecification& signal) const
{
    return {signal.getSourceKeyNonCached(m_modelName), signal.getSourceKeyCached()};
}

void InstrumentedSignals::enterPort(const SignalSpecificationPtr& signal, const PortKeys& keys)
{
    auto byPath = m_observedPorts.end();
    if (keys.byPath != 0) {
        forgetPortCache();
        byPath = m_observedPorts.emplace(keys.byPath, signal);
    }
    if (signal->getCachedPortIdx() == 0 || keys.byHandle == 0) {
        return;
    }
    forgetPortCache();
    try {
        m_observedPorts.emplace(keys.byHandle, signal);
    } catch (...) {
        if (byPath != m_observedPorts.end()) {
            m_observedPorts.erase(byPath);
        }
        throw;
    }
}

template <class Matches>
void InstrumentedSignals::eraseUnderKey(std::size_t key, Matches matches)
{
    auto [entry, end] = m_observedPorts.equal_range(key);
    while (entry != end) {
        if (matches(*entry->second)) {
            entry = m_observedPorts.erase(entry);
            forgetPortCache();
        } else {
            ++entry;
        }
    }
}

void InstrumentedSignals::updateObservedPortMap()
{
    m_observedPorts.clear();
    for (const SignalSpecificationPtr& signal : m_signals) {
        addToObservedPortMap(signal);
    }
}

void InstrumentedSignals::addToObservedPortMap(const SignalSpecificationPtr& signal)
{
    if (isKestrowDomain(signal->getDomainType())) {
        addToObservedKWObjectCache(signal);
        return;
    }
    enterPort(signal, portKeys(*signal));
}

void InstrumentedSignals::removeFromObservedPortMap(const SignalSpecificationPtr& signal)
{
    const SignalSpecificationPtr removed = signal;  // the reference may be to an entry that goes
    erasePort(*removed, portKeys(*removed));
}

void InstrumentedSignals::erasePort(const SignalSpecification& removed, const PortKeys& keys)
{
    eraseUnderKey(keys.byPath, [&](const SignalSpecification& entry) {
        return entry.getOutputPortIndex() == removed.getOutputPortIndex() &&
               entry.getBlockPath() == removed.getBlockPath();
    });
    eraseUnderKey(keys.byHandle, [&](const SignalSpecification& entry) {
        return entry.getCachedPortIdx() == removed.getCachedPortIdx() &&
               entry.getCachedBlockHandle() == removed.getCachedBlockHandle();
    });
}

bool InstrumentedSignals::isPortObserved(const SignalSpecification* signal)
{
    return isPortObserved(signal->getCachedBlockHandle(), signal->getBlockPath(), signal->getSubPath(),
                          signal->getOutputPortIndex(), signal->getCachedPortIdx(),
                          signal->getLogicalPortIndex());
}

bool InstrumentedSignals::isPortObserved(double blockHandle, int portNumber) const
{
    const auto [begin, end] =
        m_observedPorts.equal_range(SignalSpecification::getCachedInfoHash(blockHandle, portNumber));
    return std::any_of(begin, end, [&](const auto& entry) {
        return entry.second->getCachedPortIdx() == portNumber &&
               entry.second->getCachedBlockHandle() == blockHandle;
    });
}

bool InstrumentedSignals::isPortObserved(double blockHandle, const std::u16string& blockPath,
                                         const std::u16string& subPath, int outputPortIndex, int portNumber,
                                         int logicalPortIndex)
{
    if (isPortObserved(blockHandle, portNumber)) {
        return true;
    }
    const auto [begin, end] = m_observedPorts.equal_range(SignalSpecification::getNonCachedInfoHash(
        blockPath, subPath, outputPortIndex, logicalPortIndex, m_modelName));
    for (auto entry = begin; entry != end; ++entry) {
        const SignalSpecification& signal = *entry->second;
        if (signal.getOutputPortIndex() != outputPortIndex || signal.getBlockPath() != blockPath) {
            continue;
        }
        if (portNumber == 0) {
            return true;
        }
        const int cachedPort = signal.getCachedPortIdx();
        if (cachedPort == 0) {
            // Found by path for the first time since loading: from now on it answers by handle too.
            // Entering it whole puts it under its non-cached key a second time, which is harmless: removal
            // takes every match. The insertions may rehash, so the entry is not looked at again.
            const SignalSpecificationPtr found = entry->second;
            found->setCachedInfo(blockHandle, portNumber);
            addToObservedPortMap(found);
            return true;
        }
        if (m_rebindingPending && cachedPort == portNumber) {
            return true;
        }
    }
    return false;
}

bool InstrumentedSignals::isZMPortObserved(const zmPort* port) const
{
    return m_cachedPorts.contains(port);
}

void InstrumentedSignals::cacheZMPorts(const std::vector<zmPort*>& ports)
try {
    forgetPortCache();
    m_cachedPorts.insert(ports.begin(), ports.end());
} catch (const std::bad_alloc&) {
    zmsvThrowOutOfMemory();
}

}  // namespace zm_hmi
