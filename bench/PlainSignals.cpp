#include "bench/PlainSignals.hpp"

#include "host/Text.hpp"

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

namespace bench {

using zm_hmi::SignalSpecification;
using zm_hmi::SignalSpecificationPtr;

namespace {

std::string cachedKey(double blockHandle, int portNumber)
{
    return boost::lexical_cast<std::string>(blockHandle) + "$$" +
           boost::lexical_cast<std::string>(portNumber);
}

std::string pathKey(const std::u16string& modelName, const std::u16string& blockPath,
                    const std::u16string& subPath, int port)
{
    return toUtf8(modelName) + "/" + toUtf8(blockPath) + "$$" + toUtf8(subPath) + "$$" +
           boost::lexical_cast<std::string>(port);
}

int keyPort(int outputPortIndex, int logicalPortIndex)
{
    return logicalPortIndex >= 1 ? logicalPortIndex : outputPortIndex;
}

}  // namespace

void PlainSignals::add(const SignalSpecificationPtr& signal)
{
    m_signals.push_back(signal);
    m_observedPorts.emplace(pathKey(m_modelName, signal->getBlockPath(), signal->getSubPath(),
                                    keyPort(signal->getOutputPortIndex(), signal->getLogicalPortIndex())),
                            signal);
    if (signal->getCachedPortIdx() != 0) {
        m_observedPorts.emplace(cachedKey(signal->getCachedBlockHandle(), signal->getCachedPortIdx()),
                                signal);
    }
}

void PlainSignals::load(const nvArray* persisted)
{
    for (std::size_t i = 0; i < nvGetNumberOfElements(persisted); ++i) {
        add(boost::make_shared<SignalSpecification>(persisted, i, std::u16string()));
    }
}

bool PlainSignals::isPortObserved(double blockHandle, int portNumber) const
{
    const auto [begin, end] = m_observedPorts.equal_range(cachedKey(blockHandle, portNumber));
    for (auto entry = begin; entry != end; ++entry) {
        if (entry->second->getCachedPortIdx() == portNumber &&
            entry->second->getCachedBlockHandle() == blockHandle) {
            return true;
        }
    }
    return false;
}

bool PlainSignals::isPortObserved(double blockHandle, const std::u16string& blockPath,
                                  const std::u16string& subPath, int outputPortIndex, int portNumber,
                                  int logicalPortIndex) const
{
    if (isPortObserved(blockHandle, portNumber)) {
        return true;
    }
    const auto [begin, end] = m_observedPorts.equal_range(
        pathKey(m_modelName, blockPath, subPath, keyPort(outputPortIndex, logicalPortIndex)));
    for (auto entry = begin; entry != end; ++entry) {
        if (entry->second->getOutputPortIndex() == outputPortIndex &&
            entry->second->getBlockPath() == blockPath) {
            return true;
        }
    }
    return false;
}

}  // namespace bench
