#include "hmi/InstrumentedSignals.hpp"

#include "host/Exceptions.hpp"

#include <algorithm>
#include <new>
#include <utility>

namespace zm_hmi {

std::size_t InstrumentedSignals::pathKey(const std::u16string& blockPath, const std::u16string& subPath,
                                         int outputPortIndex, int logicalPortIndex) const
{
    if (m_keyPrefix.isUsable()) {
        return nonCachedKey(m_keyPrefix, blockPath, subPath, outputPortIndex, logicalPortIndex);
    }
    return SignalSpecification::getNonCachedInfoHash(blockPath, subPath, outputPortIndex, logicalPortIndex,
                                                     m_modelName);
}

PortKeys InstrumentedSignals::portKeys(const SignalSpecification& signal, std::optional<int> newNumber) const
{
    const double handle = signal.getCachedBlockHandle();
    const int outputPort = newNumber.value_or(signal.getOutputPortIndex());
    const int cachedPort = newNumber.value_or(signal.getCachedPortIdx());
    return {pathKey(signal.getBlockPath(), signal.getSubPath(), outputPort, signal.getLogicalPortIndex()),
            SignalSpecification::getCachedInfoHash(handle, cachedPort), handle, cachedPort};
}

void InstrumentedSignals::enter(ObservedPortMap& ports, ChartActivityCache& charts,
                                const SignalSpecificationPtr& signal, std::optional<int> newNumber) const
{
    if (isKestrowDomain(signal->getDomainType())) {
        setActivityObserved(charts, *signal, true);
    } else {
        ports.enter(signal, portKeys(*signal, newNumber));
    }
}

void InstrumentedSignals::updateObservedPortMap()
{
    ObservedPortMap ports;
    ports.reserve(m_signals.size());
    ChartActivityCache charts = m_charts;
    for (const SignalSpecificationPtr& signal : m_signals) {
        enter(ports, charts, signal);
    }
    m_ports.takeEntries(std::move(ports));
    std::swap(m_charts, charts);
}

void InstrumentedSignals::addToObservedPortMap(const SignalSpecificationPtr& signal)
{
    enter(m_ports, m_charts, signal);
}

void InstrumentedSignals::removeFromObservedPortMap(const SignalSpecificationPtr& signal)
{
    const SignalSpecificationPtr removed = signal;  // the reference may be to an entry that is erased
    m_ports.erase(*removed, portKeys(*removed));
}

bool InstrumentedSignals::isPortObserved(const SignalSpecification* signal)
{
    return isPortObserved(signal->getCachedBlockHandle(), signal->getBlockPath(), signal->getSubPath(),
                          signal->getOutputPortIndex(), signal->getCachedPortIdx(),
                          signal->getLogicalPortIndex());
}

bool InstrumentedSignals::isPortObserved(double blockHandle, const std::u16string& blockPath,
                                         const std::u16string& subPath, int outputPortIndex, int portNumber,
                                         int logicalPortIndex)
{
    if (isPortObserved(blockHandle, portNumber)) {
        return true;
    }
    const std::size_t key = pathKey(blockPath, subPath, outputPortIndex, logicalPortIndex);
    const SignalSpecificationPtr* found = m_ports.find(key, [&](const SignalSpecification& signal) {
        if (signal.getOutputPortIndex() != outputPortIndex || signal.getBlockPath() != blockPath) {
            return false;
        }
        const int cachedPort = signal.getCachedPortIdx();
        return portNumber == 0 || cachedPort == 0 || (m_rebindingPending && cachedPort == portNumber);
    });
    if (found == nullptr) {
        return false;
    }
    if (portNumber != 0 && (*found)->getCachedPortIdx() == 0) {
        bind(*found, blockHandle, portNumber);
    }
    return true;
}

// A signal that is found by path for the first time since loading: from now on it is found by handle, too. It
// is entered whole, on purpose, which puts it under its non-cached key once more.
void InstrumentedSignals::bind(const SignalSpecificationPtr& signal, double blockHandle, int portNumber)
{
    const SignalSpecificationPtr bound = signal;  // the reference is to an entry, and entries move
    if (isKestrowDomain(bound->getDomainType())) {
        setActivityObserved(m_charts, *bound, true);  // its domain was changed since it was entered
        bound->setCachedInfo(blockHandle, portNumber);
        return;
    }
    PortKeys keys = portKeys(*bound);
    keys.byHandle = SignalSpecification::getCachedInfoHash(blockHandle, portNumber);
    keys.handle = blockHandle;
    keys.port = portNumber;
    m_ports.enter(bound, keys);
    m_ports.setCachedInfo(*bound, blockHandle, portNumber);
}

bool InstrumentedSignals::isZMPortObserved(const zmPort* port) const
{
    return m_ports.isPortCached(port);
}

void InstrumentedSignals::cacheZMPorts(const std::vector<zmPort*>& ports)
try {
    m_ports.cachePorts(ports);
} catch (const std::bad_alloc&) {
    zmsvThrowOutOfMemory();
}

}  // namespace zm_hmi
